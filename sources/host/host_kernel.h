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
    uint32_t gateway = 0;  // 0: the destination is on the link
    uint32_t interface = 0;

    friend auto operator<=>(const NextHop&, const NextHop&) = default;
};

struct Route {
    uint32_t destination = 0;
    uint8_t prefixLength = 0;
    uint32_t metric = 0;
    std::vector<NextHop> nextHops;  // empty: a blackhole, unreachable, prohibit or throw route
};

struct SocketDeleter {
    void operator()(nl_sock* socket) const;
};
using Socket = std::unique_ptr<nl_sock, SocketDeleter>;

// Netlink queries. A failing query throws std::runtime_error with the query and the reason.
class Kernel {
public:
    Kernel();

    std::vector<Link> Links();
    std::vector<Address> Addresses();  // in the kernel's order: primary address of a link first
    std::vector<Route> Routes();       // only routes that are in use

    // Waits until the kernel has completed changes that are in progress. When a link or an address
    // is removed, the kernel notifies of that first and then removes routes without notifications.
    // A query of routes before this call may therefore return routes that are about to go.
    void WaitForPendingChanges();

private:
    Socket socket_;
};

struct LinkChange {
    bool removed;
    Link link;  // all of its state after the change
};

struct KernelChanges {
    std::vector<LinkChange> links;  // in the order in which they happened
    bool any = false;               // links, addresses, routes or next hops have changed
    bool overrun = false;           // notifications were lost
};

// Netlink notifications.
class Notifications {
public:
    // receiveBuffer: size of the socket's receive buffer in bytes. If it is full, notifications are
    // lost.
    explicit Notifications(int receiveBuffer);

    int Descriptor() const;  // readable while notifications are pending
    KernelChanges Take();    // the pending notifications; does not block

private:
    Socket socket_;
};

}  // namespace sources
