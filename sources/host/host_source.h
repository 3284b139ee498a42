// This host as a device: the kernel's links, addresses and IPv4 routes, mirrored into the database
// and followed as they change. docs/host-source.md describes the mapping.
#pragma once

#include <stop_token>
#include <thread>

#include <standin/event_descriptor.h>

#include "sources/host/host_kernel.h"
#include "sources/host/host_rows.h"
#include "sources/source.h"

namespace sources {

// Mirrors the network namespace of the thread that constructs it. The source owns the tables that
// it fills: rows that others write there are deleted.
class HostSource final : public Source {
public:
    static constexpr int DEFAULT_RECEIVE_BUFFER = 1 << 20;

    // Fills the tables with the present state. Throws std::runtime_error if a netlink query fails.
    // receiveBuffer: size in bytes of the buffer for notifications. If it overflows, the source
    // resynchronises: intermediate states may be missed, the resulting state is not.
    explicit HostSource(int receiveBuffer = DEFAULT_RECEIVE_BUFFER);

    // Starts a thread that writes each change, until the source is destroyed.
    void Follow() override;

private:
    void Run(const std::stop_token& stop);
    void TakeChanges();
    void MirrorChanges(const std::vector<LinkChange>& changes);
    void RemoveUnusedNextHops();
    void Resync();
    void ReadAddressesAndRoutes(standin::Transaction& transaction);

    Notifications notifications_;  // before the first read, so that no change is missed
    Kernel kernel_;
    Forwarding forwarding_;
    bool needsResync_ = false;
    standin::EventDescriptor stopEvent_;
    std::jthread follower_;  // last: it stops before the members that it uses are destroyed
};

}  // namespace sources
