// This host as a device: the kernel's links, addresses and IPv4 routes, mirrored into the database
// and followed change by change. docs/host-source.md documents the mapping.
#pragma once

#include <atomic>
#include <map>
#include <set>
#include <stop_token>
#include <thread>

#include <standin/event_descriptor.h>

#include "sources/host/host_forwarding.h"
#include "sources/host/host_kernel.h"
#include "sources/host/host_notifications.h"
#include "sources/host/host_routes.h"
#include "sources/source.h"

namespace sources {

struct HostOptions {
    // Bytes of notifications that may wait. If more arrive everything is read again: intermediate
    // states may be missed, the final state is not.
    int receiveBuffer = 1 << 20;
    // Let the kernel send only the routes of one interface, where it can.
    bool filteredQueries = true;
};

// Mirrors the network namespace of the thread that makes it. The tables that it fills are its own:
// rows that others put there are deleted when everything is read again.
class HostSource final : public Source {
public:
    // Fills the tables with what is there now. Throws std::runtime_error if the kernel cannot be
    // queried.
    explicit HostSource(const HostOptions& options = {});

    // From here on a thread writes each change as it comes, until the host is destroyed.
    void Follow() override;

    // How many times all routes were read. Any thread.
    uint64_t FullReadings() const { return fullReadings_; }

private:
    void Run(const std::stop_token& stop);
    void TakeChanges();
    enum class Pending : uint8_t { Ignore, Await };
    void ApplyNotifications(Pending pending);
    void Apply(const LinkChange& change);
    void Apply(const AddressChange& change);
    void Apply(const RouteChange& change) { routes_.Apply(change); }
    void Apply(const NextHopObjectChange& change) { routes_.Apply(change); }
    void ReadUnknownRoutes();
    void ReadRoutes();
    void ReadEverything();
    void WriteAddresses(standin::Transaction& transaction);
    RowChanges UpdateForwarding();
    void WriteChanges();

    Notifications notifications_;  // made before anything is read, so that no change falls between
    Kernel kernel_;
    std::map<uint32_t, LinkState> links_;
    std::set<uint32_t> changedAddresses_;  // the interfaces
    RouteTable routes_;
    Forwarding forwarding_;
    bool needsResync_ = false;
    std::atomic<uint64_t> fullReadings_ = 0;
    standin::EventDescriptor stopEvent_;
    std::jthread follower_;  // last: it ends before what it uses
};

}  // namespace sources
