// Netlink notifications about links, IPv4 addresses, IPv4 routes and next-hop objects.
#pragma once

#include "sources/host/host_netlink.h"
#include "sources/host/host_state.h"

namespace sources {

struct KernelChanges {
    std::vector<KernelChange> changes;  // in the order in which they happened
    bool overrun = false;               // some were lost
    bool drained = false;               // no others were waiting
};

// Follows the network namespace of the thread that constructs it. Failures throw
// std::runtime_error.
class Notifications {
public:
    // receiveBuffer: bytes of notifications that may wait before some are lost. Without privilege
    // the system's limit applies (net.core.rmem_max).
    explicit Notifications(int receiveBuffer);

    int Descriptor() const;  // readable when there is something to take
    KernelChanges Take();    // what has arrived, without waiting

    // Discards what has arrived. Call it after an overrun, and read everything after it: a change
    // that is still queued may have been undone by one that was lost.
    void Discard();

private:
    NetlinkSocket socket_;
};

}  // namespace sources
