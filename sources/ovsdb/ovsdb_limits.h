// Time and size limits of the connections to servers. docs/cluster.md lists them for users.
#pragma once

#include <chrono>
#include <cstddef>

namespace sources {

struct OvsdbLimits {
    using Milliseconds = std::chrono::milliseconds;

    // How long the first contents, and each write, wait for a server and its answer.
    Milliseconds requestTimeout{10'000};
    // After this long without a byte the server is sent an echo request; after three times as long
    // the connection ends.
    Milliseconds probeInterval{5'000};
    // The pause after an attempt on every server has failed. It doubles with each further round.
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

    // Bytes of answers to echo requests that may wait to be sent.
    size_t mostEchoBytes = size_t{1} << 20;
};

// A server that is busy with a large request sends nothing meanwhile: limits grow by a second for
// each megabyte that was sent.
inline std::chrono::milliseconds ExtraTime(size_t bytesSent)
{
    return std::chrono::milliseconds(bytesSent >> 10);
}

}  // namespace sources
