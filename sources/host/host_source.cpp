#include "sources/host/host_source.h"

#include <poll.h>
#include <syslog.h>

#include <exception>

#include "sources/host/host_mirror.h"

namespace sources {
namespace {

// Each change of a link has a transaction, and so its events, of its own.
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
    ReadEverything();
}

void HostSource::Follow()
{
    follower_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

void HostSource::Run(const std::stop_token& stop)
{
    constexpr int forever = -1;
    constexpr int retryAfter = 1000;  // milliseconds
    const std::stop_callback onStop(stop, [this] { stopEvent_.Raise(); });
    while (!stop.stop_requested()) {
        pollfd waitedFor[] = {{notifications_.Descriptor(), POLLIN, 0},
                              {stopEvent_.Descriptor(), POLLIN, 0}};
        const bool hasWork = mustReadEverything_ || forwarding_.HasUnused();
        poll(waitedFor, std::size(waitedFor), hasWork ? retryAfter : forever);
        try {
            TakeChanges();
        } catch (const std::exception& error) {
            syslog(LOG_ERR, "following the host: %s\n", error.what());
            mustReadEverything_ = true;
        }
    }
}

void HostSource::TakeChanges()
{
    const KernelChanges changes = notifications_.Take();
    mustReadEverything_ |= changes.overrun;
    MirrorChanges(changes.links);
    if (mustReadEverything_) {
        ReadEverything();
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

// A change from before the last reading may not fit the rows any more: another link may have its
// name by now.
void HostSource::MirrorChanges(const std::vector<LinkChange>& changes)
{
    for (const LinkChange& change : changes) {
        try {
            MirrorChange(change);
        } catch (const standin::Error&) {
            mustReadEverything_ = true;
        }
    }
}

void HostSource::ReadEverything()
{
    standin::Transaction transaction;
    MirrorLinks(transaction, kernel_.Links());
    ReadAddressesAndRoutes(transaction);
    transaction.Commit();
    mustReadEverything_ = false;
}

// Routes go without a word when their link or their source address does, so any change is a reason
// to read them all.
void HostSource::ReadAddressesAndRoutes(standin::Transaction& transaction)
{
    kernel_.Settle();
    MirrorTable(transaction, *standin::FindTable("am_ipv4_address"),
                AddressRows(kernel_.Addresses()));
    MirrorRoutes(transaction, forwarding_, kernel_.Routes());
}

}  // namespace sources
