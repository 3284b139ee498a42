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
    // Begins to connect. server, tls and limits must outlive the stream. Throws if connecting fails
    // immediately.
    Stream(const Server& server, const TlsContext& tls, const OvsdbLimits& limits);

    // The descriptor and events to poll for before the next call. sends: there is data to write.
    pollfd PollEntry(bool sends) const;

    // Continues to connect, to one address of the server after another. Returns true once
    // connected; bytes can be read and written then. Throws the error of the last address if all
    // fail.
    bool Connect();
    // The timeout of connecting to the present address; time_point::max() once connected.
    Clock::time_point ConnectDeadline() const;

    // Transfer as many bytes as possible without blocking. Throw if the connection is closed.
    size_t Read(std::span<char> bytes);
    size_t Write(std::string_view bytes);

private:
    bool ConnectToAddress();
    int TryNextAddress();  // both return 0, EINPROGRESS or an error
    int ResultOfConnecting() const;
    void Establish();
    size_t Transferred(int result) const;

    const Server& server_;
    const TlsContext& tls_;
    const OvsdbLimits& limits_;

    // While connecting.
    std::optional<Resolver> resolver_;
    std::vector<SocketAddress> untried_;  // in reverse order
    Descriptor socket_{-1};
    Clock::time_point deadline_;

    std::unique_ptr<BIO, decltype(&BIO_free_all)> bio_{nullptr, BIO_free_all};  // once connected
    bool waitsToRead_ = false;  // a TLS write requires reading first
};

}  // namespace sources::ovsdb
