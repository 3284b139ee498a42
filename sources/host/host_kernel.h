// Netlink queries: the kernel's links, IPv4 addresses and main IPv4 routing table.
#pragma once

#include "sources/host/host_netlink.h"
#include "sources/host/host_state.h"

namespace sources {

// Queries the network namespace of the thread that constructs it. Failures throw
// std::runtime_error.
class Kernel {
public:
    static constexpr uint32_t ALL_INTERFACES = 0;

    // filters: let the kernel send only what was asked for, where it can.
    explicit Kernel(bool filters = true);

    std::vector<Link> Links();

    // In the kernel's order: an interface's primary address first. None if the interface does not
    // exist.
    std::vector<Address> Addresses(uint32_t interface = ALL_INTERFACES);

    // In the order in which the kernel tries routes of equal destination and metric. Of an
    // interface: those that have a next hop there.
    std::vector<Route> Routes(uint32_t interface = ALL_INTERFACES);

    // Waits until changes under way are complete. The kernel removes some routes without a
    // notification, after the notification of the cause, so read routes only after this.
    void WaitForPendingChanges();

private:
    NetlinkSocket socket_;
};

}  // namespace sources
