// Bytes to and from a server.
#pragma once

#include <chrono>
#include <memory>
#include <span>
#include <string_view>

#include <openssl/ssl.h>

#include "sources/ovsdb/ovsdb_servers.h"

namespace sources::ovsdb {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

// What TLS connections have in common. Servers must be vouched for by the authority; their names
// don't count.
class TlsContext {
public:
    // Throws std::runtime_error where a file is no use. Without files nothing is read.
    explicit TlsContext(const Credentials& credentials);

    SSL_CTX* Get() const { return context_.get(); }

private:
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_;
};

class Stream {
public:
    // Connects. Throws where that fails, lasts too long, or the descriptor becomes readable.
    Stream(const Server& server, const TlsContext& tls, int stop, Milliseconds patience);

    int Descriptor() const;

    // As many bytes as can be had or sent without waiting. Throw when the connection has ended.
    size_t Read(std::span<char> bytes);
    size_t Write(std::string_view bytes);

    // After Write: only then can more be sent when something has come.
    bool WaitsToRead() const { return waitsToRead_; }

private:
    std::unique_ptr<BIO, decltype(&BIO_free_all)> bio_;
    bool waitsToRead_ = false;
};

}  // namespace sources::ovsdb
