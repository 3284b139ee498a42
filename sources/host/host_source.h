// This host as a device: the kernel's links, addresses and IPv4 routes, mirrored into the database
// and followed as they change. docs/host-source.md tells what goes where.
#pragma once

#include <stop_token>
#include <thread>

#include <standin/event_descriptor.h>

#include "sources/host/host_kernel.h"
#include "sources/host/host_rows.h"
#include "sources/source.h"

namespace sources {

// Mirrors the network namespace of the thread that makes it. The tables that it fills are its own:
// rows that others put there go.
class HostSource final : public Source {
public:
    static constexpr int defaultReceiveBuffer = 1 << 20;

    // Fills the tables with what is there now. Throws std::runtime_error where the kernel can't be
    // asked. receiveBuffer: bytes of changes that may wait. Where more come everything is read
    // anew: what lies between may be lost, what comes of it is not.
    explicit HostSource(int receiveBuffer = defaultReceiveBuffer);

    // From here on a thread writes each change as it comes, until the host is destroyed.
    void Follow() override;

private:
    void Run(const std::stop_token& stop);
    void TakeChanges();
    void MirrorChanges(const std::vector<LinkChange>& changes);
    void RemoveUnusedNextHops();
    void ReadEverything();
    void ReadAddressesAndRoutes(standin::Transaction& transaction);

    Notifications notifications_;  // made before anything is read, so that no change falls between
    Kernel kernel_;
    Forwarding forwarding_;
    bool mustReadEverything_ = false;
    standin::EventDescriptor stopEvent_;
    std::jthread follower_;  // last: it ends before what it uses
};

}  // namespace sources
