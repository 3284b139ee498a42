#include "sources/host/host_source.h"

#include <poll.h>
#include <syslog.h>

#include <exception>
#include <utility>

#include "sources/host/host_mirror.h"

namespace sources {
namespace {

// Beyond this many, one query for all interfaces costs less than one for each.
constexpr size_t MOST_INTERFACE_QUERIES = 16;

}  // namespace

HostSource::HostSource(const HostOptions& options)
    : notifications_(options.receiveBuffer), kernel_(options.filteredQueries)
{
    ReadEverything();
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
    ApplyNotifications(routes_.IsAhead() ? Pending::Await : Pending::Ignore);
    if (routes_.HasUnknown()) {
        ApplyNotifications(Pending::Await);  // of the effects, as far as they are announced
    }
    if (needsResync_) {
        ReadEverything();
    } else {
        ReadUnknownRoutes();
        WriteChanges();
    }
}

void HostSource::ApplyNotifications(Pending pending)
{
    if (pending == Pending::Await) {
        kernel_.WaitForPendingChanges();
    }
    const KernelChanges taken = notifications_.Take();
    needsResync_ |= taken.overrun;
    for (const KernelChange& change : taken.changes) {
        std::visit([this](const auto& known) { Apply(known); }, change);
    }
    if (pending == Pending::Await && taken.drained) {
        routes_.CaughtUp();
    }
}

// Each change of a link is a transaction, and so raises events, of its own. A change from before
// the last reading may be refused: another link may have its name by now.
void HostSource::Apply(const LinkChange& change)
{
    const uint32_t index = change.link.index;
    if (change.removed) {
        routes_.RemoveLink(index);
        links_.erase(index);
    } else {
        const LinkState state = StateOf(change.link);
        const auto [known, isNew] = links_.try_emplace(index, state);
        if (isNew || std::exchange(known->second, state) != state) {
            routes_.LinkChanged(index);
        }
    }
    try {
        standin::Transaction transaction;
        MirrorRows(transaction, LinkRowChanges(change));
        transaction.Commit();
    } catch (const standin::Error&) {
        needsResync_ = true;
    }
}

void HostSource::Apply(const AddressChange& change)
{
    changedAddresses_.insert(change.address.interface);
    // The loss of the last address ends the link's routes as if it went down, without
    // notifications; an address brings them back.
    routes_.LinkChanged(change.address.interface);
    if (change.removed) {
        routes_.AddressDeleted(change.address.address);
    }
}

void HostSource::ReadUnknownRoutes()
{
    while (routes_.HasUnknown()) {
        const auto unknown = routes_.TakeUnknown();
        if (unknown.all || unknown.interfaces.size() > MOST_INTERFACE_QUERIES) {
            ReadRoutes();
            return;
        }
        for (const uint32_t interface : unknown.interfaces) {
            routes_.AssignInterface(interface, kernel_.Routes(interface));
        }
    }
}

void HostSource::ReadRoutes()
{
    routes_.Assign(kernel_.Routes());
    ++fullReadings_;
}

void HostSource::ReadEverything()
{
    notifications_.Discard();
    const std::vector<Link> links = kernel_.Links();
    links_.clear();
    for (const Link& link : links) {
        links_.emplace(link.index, StateOf(link));
    }
    kernel_.WaitForPendingChanges();
    ReadRoutes();
    UpdateForwarding();

    standin::Transaction transaction;
    MirrorLinks(transaction, links);
    MirrorAddresses(transaction, kernel_.Addresses());
    MirrorForwarding(transaction, forwarding_);
    transaction.Commit();
    changedAddresses_.clear();
    needsResync_ = false;
}

// Addresses are read again rather than changed one by one: the kernel may insert and promote an
// address in the middle of its interface's list.
void HostSource::WriteAddresses(standin::Transaction& transaction)
{
    const std::set<uint32_t> interfaces = std::exchange(changedAddresses_, {});
    if (interfaces.size() > MOST_INTERFACE_QUERIES) {
        MirrorAddresses(transaction, kernel_.Addresses());
        return;
    }
    for (const uint32_t interface : interfaces) {
        const Rows rows = AddressRows(kernel_.Addresses(interface));
        if (rows.empty()) {
            RemoveRow(transaction, AddressKey(interface));
        } else {
            MirrorRow(transaction, rows.front());
        }
    }
}

RowChanges HostSource::UpdateForwarding()
{
    const auto now = std::chrono::steady_clock::now();
    RowChanges changes;
    for (const Destination& destination : routes_.TakeChanged()) {
        forwarding_.Set(destination, routes_.NextHopsOf(destination), now, changes);
    }
    forwarding_.Expire(now, changes);
    return changes;
}

void HostSource::WriteChanges()
{
    standin::Transaction transaction;
    WriteAddresses(transaction);
    MirrorRows(transaction, UpdateForwarding());
    if (!transaction.Empty()) {
        transaction.Commit();
    }
}

}  // namespace sources
