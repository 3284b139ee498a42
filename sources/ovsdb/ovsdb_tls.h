// What the TLS connections to servers have in common.
#pragma once

#include <memory>
#include <string>

#include <openssl/ssl.h>

#include "sources/ovsdb/ovsdb_servers.h"

namespace sources::ovsdb {

// A server's certificate must be signed by the authority; its name is not compared.
class TlsContext {
public:
    // Reads the files, none if none is named. Throws std::runtime_error with the name of a file
    // that can't be used. An encrypted private key is refused rather than asked a password for.
    explicit TlsContext(const Credentials& credentials);

    SSL_CTX* Get() const { return context_.get(); }

private:
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_;
};

// The reason of this thread's oldest TLS error, which is removed; for a certificate that was not
// accepted, what is wrong with it. connection may be null.
std::string TlsFailure(SSL* connection);

}  // namespace sources::ovsdb
