// A non-blocking stream of bytes to and from a server.
#pragma once

#include <poll.h>

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sources/ovsdb/ovsdb_limits.h"
#include "sources/ovsdb/ovsdb_resolver.h"
#include "sources/ovsdb/ovsdb_servers.h"
#include "sources/ovsdb/ovsdb_tls.h"

namespace sources::ovsdb {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

// A file descriptor that is closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;

    int Get() const { return descriptor_; }
    int Release();

private:
    int descriptor_;
};

class Stream {
public:
    // Begins to connect. server, tls and limits must outlive the stream. Throws where the server
    // can't be reached at all.
    Stream(const Server& server, const TlsContext& tls, const OvsdbLimits& limits);

    // What to wait for before the next call; sends: whether there is something to write.
    pollfd Wanted(bool sends) const;

    // Goes on connecting. True once connected; then bytes can be read and written. Tries all
    // addresses of the server one after another. Throws what was wrong with the last one.
    bool Connect();
    // When connecting to the present address fails; the end of time once connected.
    Clock::time_point ConnectDeadline() const;

    // As many bytes as can be read or written without waiting. Throw when the connection has ended.
    size_t Read(std::span<char> bytes);
    size_t Write(std::string_view bytes);

private:
    bool ConnectToAddress();
    int TryNextAddress();  // these two: 0, EINPROGRESS or an error
    int ResultOfConnecting() const;
    void Establish();
    size_t Transferred(int result) const;

    const Server& server_;
    const TlsContext& tls_;
    const OvsdbLimits& limits_;

    // While connecting.
    std::optional<Resolver> resolver_;
    std::vector<SocketAddress> untried_;  // last one first
    Descriptor socket_{-1};
    Clock::time_point deadline_;

    std::unique_ptr<BIO, decltype(&BIO_free_all)> bio_{nullptr, BIO_free_all};  // once connected
    bool waitsToRead_ = false;                                                  // to write more
};

}  // namespace sources::ovsdb
