#include "sources/ovsdb/ovsdb_servers.h"

#include <algorithm>
#include <optional>
#include <sstream>

#include <standin/store.h>

namespace sources::ovsdb {
namespace {

// What stands behind the prefix, if the text begins with it.
std::optional<std::string> Behind(const std::string& prefix, const std::string& text)
{
    return text.starts_with(prefix) ? std::optional(text.substr(prefix.size())) : std::nullopt;
}

[[noreturn]] void Refuse(const std::string& part)
{
    throw standin::Error("\"" + part +
                         "\" is none of unix:PATH, tcp:HOST:PORT, ssl:HOST:PORT, private-key=FILE, "
                         "certificate=FILE and ca-certificate=FILE");
}

Server NetworkServer(const std::string& name, Transport transport, const std::string& address)
{
    const size_t colon = address.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == address.size()) {
        Refuse(name);
    }
    std::string host = address.substr(0, colon);
    if (host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    return {name, transport, host, address.substr(colon + 1)};
}

void Add(Servers& servers, const std::string& part)
{
    if (const auto path = Behind("unix:", part)) {
        servers.all.push_back({part, Transport::Unix, *path, ""});
    } else if (const auto tcp = Behind("tcp:", part)) {
        servers.all.push_back(NetworkServer(part, Transport::Tcp, *tcp));
    } else if (const auto tls = Behind("ssl:", part)) {
        servers.all.push_back(NetworkServer(part, Transport::Tls, *tls));
    } else if (const auto key = Behind("private-key=", part)) {
        servers.credentials.privateKey = *key;
    } else if (const auto own = Behind("certificate=", part)) {
        servers.credentials.certificate = *own;
    } else if (const auto authority = Behind("ca-certificate=", part)) {
        servers.credentials.caCertificate = *authority;
    } else {
        Refuse(part);
    }
}

}  // namespace

Servers ParseServers(const std::string& text)
{
    Servers servers;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ',');) {
        Add(servers, part);
    }
    if (servers.all.empty()) {
        throw standin::Error("no server is named");
    }
    const Credentials& given = servers.credentials;
    const bool anyTls = std::ranges::count(servers.all, Transport::Tls, &Server::transport) != 0;
    if (anyTls &&
        (given.privateKey.empty() || given.certificate.empty() || given.caCertificate.empty())) {
        throw standin::Error("ssl: needs private-key=, certificate= and ca-certificate=");
    }
    return servers;
}

}  // namespace sources::ovsdb
