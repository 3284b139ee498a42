#include "sources/host/host_source.h"

#include <poll.h>
#include <syslog.h>

#include <exception>

#include "sources/host/host_mirror.h"

namespace sources {
namespace {

// Each change of a link is a transaction of its own, so that it has its own events.
void MirrorChange(const LinkChange& change)
{
    standin::Transaction transaction;
    for (const standin::Row& row : LinkRows(change.link)) {
        if (change.removed) {
            RemoveRow(transaction, row);
        } else {
            MirrorRow(transaction, row);
        }
    }
    transaction.Commit();
}

}  // namespace

HostSource::HostSource(int receiveBuffer) : notifications_(receiveBuffer)
{
    Resync();
}

void HostSource::Follow()
{
    follower_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

void HostSource::Run(const std::stop_token& stop)
{
    constexpr int FOREVER = -1;
    constexpr int RETRY_AFTER = 1000;  // milliseconds
    const std::stop_callback onStop(stop, [this] { stopEvent_.Raise(); });
    while (!stop.stop_requested()) {
        pollfd waitedFor[] = {{notifications_.Descriptor(), POLLIN, 0},
                              {stopEvent_.Descriptor(), POLLIN, 0}};
        const bool hasWork = needsResync_ || forwarding_.HasUnused();
        poll(waitedFor, std::size(waitedFor), hasWork ? RETRY_AFTER : FOREVER);
        try {
            TakeChanges();
        } catch (const std::exception& error) {
            syslog(LOG_ERR, "following the host: %s\n", error.what());
            needsResync_ = true;
        }
    }
}

void HostSource::TakeChanges()
{
    const KernelChanges changes = notifications_.Take();
    needsResync_ |= changes.overrun;
    MirrorChanges(changes.links);
    if (needsResync_) {
        Resync();
    } else if (changes.any) {
        standin::Transaction transaction;
        ReadAddressesAndRoutes(transaction);
        transaction.Commit();
    } else if (forwarding_.HasUnused()) {
        RemoveUnusedNextHops();
    }
}

void HostSource::RemoveUnusedNextHops()
{
    standin::Transaction transaction;
    forwarding_.Expire(std::chrono::steady_clock::now());
    MirrorNextHops(transaction, forwarding_);
    transaction.Commit();
}

// A change that is older than the last resynchronisation may conflict with newer rows: another link
// may have its name.
void HostSource::MirrorChanges(const std::vector<LinkChange>& changes)
{
    for (const LinkChange& change : changes) {
        try {
            MirrorChange(change);
        } catch (const standin::Error&) {
            needsResync_ = true;
        }
    }
}

void HostSource::Resync()
{
    standin::Transaction transaction;
    MirrorLinks(transaction, kernel_.Links());
    ReadAddressesAndRoutes(transaction);
    transaction.Commit();
    needsResync_ = false;
}

// The kernel removes routes without a notification when their link or source address is removed, so
// every change requires reading all routes.
void HostSource::ReadAddressesAndRoutes(standin::Transaction& transaction)
{
    kernel_.WaitForPendingChanges();
    MirrorTable(transaction, *standin::FindTable("am_ipv4_address"),
                AddressRows(kernel_.Addresses()));
    MirrorRoutes(transaction, forwarding_, kernel_.Routes());
}

}  // namespace sources
