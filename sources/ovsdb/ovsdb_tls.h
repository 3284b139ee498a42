// The TLS configuration shared by all connections to servers.
#pragma once

#include <memory>
#include <string>

#include <openssl/ssl.h>

#include "sources/ovsdb/ovsdb_servers.h"

namespace sources::ovsdb {

// A server's certificate must be signed by the authority; its name is not compared.
class TlsContext {
public:
    // Reads the files, if any are named. Throws std::runtime_error with the name of a file that
    // can't be used. An encrypted private key is an error; there is no prompt for its password.
    explicit TlsContext(const Credentials& credentials);

    SSL_CTX* Get() const { return context_.get(); }

private:
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_;
};

// Removes this thread's oldest TLS error and returns its reason; if verification of a certificate
// failed, the reason for that. connection may be null.
std::string TlsFailure(SSL* connection);

}  // namespace sources::ovsdb
