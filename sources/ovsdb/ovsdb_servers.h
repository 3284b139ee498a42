// Where the servers of a cluster are, as a person writes it:
// "unix:/run/a.sock,tcp:192.0.2.1:6641,ssl:[2001:db8::1]:6641,ca-certificate=/etc/ca.pem".
#pragma once

#include <string>
#include <vector>

namespace sources::ovsdb {

enum class Transport : uint8_t { Unix, Tcp, Tls };

struct Server {
    std::string name;  // as it was written
    Transport transport;
    std::string host;  // or the socket's path
    std::string port;
};

// Files in PEM form.
struct Credentials {
    std::string privateKey;
    std::string certificate;
    std::string caCertificate;  // who vouches for the servers
};

struct Servers {
    std::vector<Server> all;  // at least one
    Credentials credentials;
};

// Throws standin::Error for what is none of this, and where servers are asked by TLS without all
// three credentials.
Servers ParseServers(const std::string& text);

}  // namespace sources::ovsdb
