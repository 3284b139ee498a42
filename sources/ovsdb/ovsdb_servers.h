// Parses the list of the servers of a cluster:
// "unix:/run/a.sock,tcp:192.0.2.1:6641,ssl:[2001:db8::1]:6641,ca-certificate=/etc/ca.pem".
#pragma once

#include <string>
#include <vector>

#include "sources/ovsdb/ovsdb_limits.h"

namespace sources::ovsdb {

enum class Transport : uint8_t { Unix, Tcp, Tls };

struct Server {
    std::string name;  // as specified
    Transport transport;
    std::string host;  // or the path of the socket
    std::string port;  // a number from 1 to 65535
};

// Files in PEM form.
struct Credentials {
    std::string privateKey;
    std::string certificate;
    std::string caCertificate;  // of the authority that signs the servers' certificates
};

struct Servers {
    std::vector<Server> all;  // at least one
    Credentials credentials;
    OvsdbLimits limits;
};

// Limits that the text does not set are taken from the argument. Throws standin::Error for an
// invalid part, and for TLS servers without all three credentials.
Servers ParseServers(const std::string& text, const OvsdbLimits& limits = {});

}  // namespace sources::ovsdb
