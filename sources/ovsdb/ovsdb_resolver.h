// Resolves a host name without blocking the caller.
#pragma once

#include <sys/socket.h>

#include <memory>
#include <string>
#include <vector>

namespace sources::ovsdb {

struct SocketAddress {
    sockaddr_storage storage;
    socklen_t size;
};

// Runs getaddrinfo on a thread of its own, which outlives the resolver if it takes longer.
class Resolver {
public:
    Resolver(const std::string& host, const std::string& port);
    ~Resolver();
    Resolver(Resolver&&) noexcept;
    Resolver& operator=(Resolver&&) noexcept;

    // Readable once the addresses are known.
    int Descriptor() const;

    bool IsDone() const;
    // The addresses, in the system's order of preference; not empty. Throws std::runtime_error
    // with the resolver's reason. Only once it is done.
    std::vector<SocketAddress> Take();

private:
    struct Lookup;
    std::shared_ptr<Lookup> lookup_;
};

}  // namespace sources::ovsdb
