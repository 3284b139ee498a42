#include "sources/ovsdb/ovsdb_resolver.h"

#include <netdb.h>

#include <atomic>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>

#include <standin/event_descriptor.h>

namespace sources::ovsdb {

struct Resolver::Lookup {
    std::string host;
    std::string port;
    standin::EventDescriptor finished;
    std::atomic<bool> isDone = false;  // set after the other members are written
    std::vector<SocketAddress> addresses;
    std::string failure;

    void Run(int flags);
};

// Sets the addresses or the error.
void Resolver::Lookup::Run(int flags)
{
    addrinfo hints{};
    addrinfo* found = nullptr;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    const int code = getaddrinfo(host.c_str(), port.c_str(), &hints, &found);
    failure = code == 0 ? "" : gai_strerror(code);
    for (const addrinfo* one = code == 0 ? found : nullptr; one != nullptr; one = one->ai_next) {
        SocketAddress address{{}, one->ai_addrlen};
        std::memcpy(&address.storage, one->ai_addr, one->ai_addrlen);
        addresses.push_back(address);
    }
    if (code == 0) {
        freeaddrinfo(found);
    }
}

Resolver::Resolver(const std::string& host, const std::string& port)
    : lookup_(std::make_shared<Lookup>())
{
    lookup_->host = host;
    lookup_->port = port;
    lookup_->Run(AI_NUMERICHOST);
    if (!lookup_->addresses.empty()) {
        lookup_->isDone = true;
        lookup_->finished.Raise();
        return;
    }
    std::thread([lookup = lookup_] {
        lookup->Run(0);
        lookup->isDone = true;
        lookup->finished.Raise();
    }).detach();
}

Resolver::~Resolver() = default;
Resolver::Resolver(Resolver&&) noexcept = default;
Resolver& Resolver::operator=(Resolver&&) noexcept = default;

int Resolver::Descriptor() const
{
    return lookup_->finished.Descriptor();
}

bool Resolver::IsDone() const
{
    return lookup_->isDone;
}

std::vector<SocketAddress> Resolver::Take()
{
    if (!lookup_->failure.empty()) {
        throw std::runtime_error(lookup_->failure);
    }
    return std::move(lookup_->addresses);
}

}  // namespace sources::ovsdb
