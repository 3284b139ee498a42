// The kernel's state of links, IPv4 addresses and the main IPv4 routing table, read and followed
// over netlink. Every socket belongs to the network namespace of the thread that made it.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct nl_sock;

namespace sources {

struct Link {
    uint32_t index = 0;
    std::string name;
    uint32_t hardware = 0;  // ARPHRD_*
    uint32_t mtu = 0;
    std::array<uint8_t, 6> mac{};
    bool carrier = false;
    bool running = false;  // administratively up, and operating
    bool bridgeMember = false;
};

// IPv4 addresses are numbers whose most significant byte is the first octet.
struct Address {
    uint32_t interface = 0;
    uint32_t address = 0;
    uint8_t prefixLength = 0;
};

struct NextHop {
    uint32_t gateway = 0;  // 0 where the destination is on the link itself
    uint32_t interface = 0;

    friend auto operator<=>(const NextHop&, const NextHop&) = default;
};

struct Route {
    uint32_t destination = 0;
    uint8_t prefixLength = 0;
    uint32_t metric = 0;
    std::vector<NextHop> nextHops;  // none: the route refuses what it covers
};

struct SocketDeleter {
    void operator()(nl_sock* socket) const;
};
using Socket = std::unique_ptr<nl_sock, SocketDeleter>;

// Asks. Failures throw std::runtime_error with what was asked and why it failed.
class Kernel {
public:
    Kernel();

    std::vector<Link> Links();
    std::vector<Address> Addresses();  // in the kernel's order: an interface's primary first
    std::vector<Route> Routes();       // only what the kernel would use now

    // Waits until the kernel has done what it was doing to links, addresses and routes. It takes
    // routes away, untold, after it has told why, so ask for routes only after this.
    void Settle();

private:
    Socket socket_;
};

struct LinkChange {
    bool removed;
    Link link;  // all of its state after the change
};

struct KernelChanges {
    std::vector<LinkChange> links;  // in the order in which they happened
    bool any = false;               // of links, addresses, routes or next hops
    bool overrun = false;           // some were lost
};

// Listens.
class Notifications {
public:
    // receiveBuffer: bytes of changes that may wait before some are lost.
    explicit Notifications(int receiveBuffer);

    int Descriptor() const;  // readable when there is something to take
    KernelChanges Take();    // what has come so far, without waiting

private:
    Socket socket_;
};

}  // namespace sources
