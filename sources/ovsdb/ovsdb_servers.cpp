#include "sources/ovsdb/ovsdb_servers.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <sstream>

#include <standin/store.h>

namespace sources::ovsdb {
namespace {

// Returns the rest of the text if it begins with the prefix.
std::optional<std::string> After(const std::string& prefix, const std::string& text)
{
    return text.starts_with(prefix) ? std::optional(text.substr(prefix.size())) : std::nullopt;
}

[[noreturn]] void Refuse(const std::string& part)
{
    throw standin::Error("\"" + part +
                         "\" is none of unix:PATH, tcp:HOST:PORT, ssl:HOST:PORT, private-key=FILE, "
                         "certificate=FILE, ca-certificate=FILE, request-timeout=SECONDS, "
                         "connect-timeout=SECONDS, message-timeout=SECONDS, "
                         "probe-interval=SECONDS and longest-message=MEGABYTES");
}

// A number from 1 to highest, or nothing.
std::optional<unsigned> NumberIn(const std::string& text, unsigned highest)
{
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    const bool isGood = stopped == end && error == std::errc() && number > 0 && number <= highest;
    return isGood ? std::optional(number) : std::nullopt;
}

Server NetworkServer(const std::string& name, Transport transport, const std::string& address)
{
    constexpr unsigned HIGHEST_PORT = 65535;
    const size_t colon = address.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        Refuse(name);
    }
    std::string host = address.substr(0, colon);
    const std::string port = address.substr(colon + 1);
    if (!NumberIn(port, HIGHEST_PORT)) {
        throw standin::Error(name + ": the port is not a number from 1 to 65535");
    }
    if (host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    return {name, transport, host, port};
}

bool AddServer(Servers& servers, const std::string& part)
{
    if (const auto path = After("unix:", part)) {
        servers.all.push_back({part, Transport::Unix, *path, ""});
    } else if (const auto tcp = After("tcp:", part)) {
        servers.all.push_back(NetworkServer(part, Transport::Tcp, *tcp));
    } else if (const auto tls = After("ssl:", part)) {
        servers.all.push_back(NetworkServer(part, Transport::Tls, *tls));
    } else {
        return false;
    }
    return true;
}

bool SetCredential(Credentials& credentials, const std::string& part)
{
    if (const auto key = After("private-key=", part)) {
        credentials.privateKey = *key;
    } else if (const auto own = After("certificate=", part)) {
        credentials.certificate = *own;
    } else if (const auto authority = After("ca-certificate=", part)) {
        credentials.caCertificate = *authority;
    } else {
        return false;
    }
    return true;
}

bool SetLimit(OvsdbLimits& limits, const std::string& part)
{
    const size_t equals = part.find('=');
    const std::string name = part.substr(0, equals);
    const auto number =
        equals == std::string::npos ? std::nullopt : NumberIn(part.substr(equals + 1), 86400);
    if (!number) {
        return false;
    }
    const std::chrono::seconds seconds(*number);
    if (name == "request-timeout") {
        limits.requestTimeout = seconds;
    } else if (name == "connect-timeout") {
        limits.connectTimeout = seconds;
    } else if (name == "message-timeout") {
        limits.messageTimeout = seconds;
    } else if (name == "probe-interval") {
        limits.probeInterval = seconds;
    } else if (name == "longest-message") {
        limits.SetLongestMessage(*number);
    } else {
        return false;
    }
    return true;
}

}  // namespace

Servers ParseServers(const std::string& text, const OvsdbLimits& limits)
{
    Servers servers{{}, {}, limits};
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ',');) {
        if (!AddServer(servers, part) && !SetCredential(servers.credentials, part) &&
            !SetLimit(servers.limits, part)) {
            Refuse(part);
        }
    }
    if (servers.all.empty()) {
        throw standin::Error("no server is given");
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
