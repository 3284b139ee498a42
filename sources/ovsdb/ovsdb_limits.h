// Time and size limits of the connections to servers. docs/cluster.md lists them for users.
#pragma once

#include <chrono>
#include <cstddef>

namespace sources {

struct OvsdbLimits {
    using Milliseconds = std::chrono::milliseconds;

    // How long the initial load, and each write, wait for a server and its reply.
    Milliseconds requestTimeout{10'000};
    // An echo request is sent after this time without received data; the connection is closed after
    // three times as long.
    Milliseconds probeInterval{5'000};
    // The pause after the attempts on all servers have failed. It doubles with each further round.
    Milliseconds initialBackoff{100};
    Milliseconds longestBackoff{5'000};

    // How long one address may take to accept a connection.
    Milliseconds connectTimeout{5'000};
    // How long a message may take from its first byte to its last.
    Milliseconds messageTimeout{60'000};
    // How long an attempt may go on before the next server is tried as well.
    Milliseconds attemptDelay{250};
    // The backoff starts again from initialBackoff only after a server was followed for this long.
    Milliseconds stableAfter{5'000};

    // Size of a message, in bytes and in JSON values. Parsed, a value takes up to about 100 bytes.
    size_t longestMessage = size_t{64} << 20;
    size_t mostValues = 2'000'000;
    void SetLongestMessage(size_t megabytes)
    {
        mostValues = mostValues / (longestMessage >> 20) * megabytes;
        longestMessage = megabytes << 20;
    }

    // Bytes of echo replies that may be queued.
    size_t mostEchoBytes = size_t{1} << 20;
};

// A server sends nothing while it processes a large request. Time limits therefore grow by a second
// for each megabyte sent.
inline std::chrono::milliseconds ExtraTime(size_t bytesSent)
{
    return std::chrono::milliseconds(bytesSent >> 10);
}

}  // namespace sources
