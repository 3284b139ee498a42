// The routes of the main table, followed change by change.
//
// Kept for each destination: every route to it, also those that the kernel does not use now, in the
// kernel's order of preference. Notifications of routes are applied as they arrive. The kernel does
// not announce that routes disappear with their link, with a next-hop object or (depending on its
// version) with their source address, nor that single next hops die or revive. Indexes from
// interface, next-hop object and source address lead to these routes:
//
//   link deleted             its routes are removed; those of next-hop objects lose the next hop
//   next-hop object deleted  its routes are removed
//   link up or down          the routes of the link are read again
//   group lost a next hop    the routes of the links that it used are read again
//   address added, deleted   the routes of its link are read again, and those of the links of
//                            routes that have it as their source
//
// Reading again happens later than the notification, so what is read may be ahead of notifications
// that are still to come. Applying these leads to the same state in the end, because each
// determines its route's state and place whatever they were before. The exception is a route that
// replaces another: which one is only certain if nothing is ahead. If it isn't, the others of equal
// metric are read again.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include "sources/host/host_forwarding.h"
#include "sources/host/host_route_index.h"
#include "sources/host/host_state.h"

namespace sources {

class RouteTable {
public:
    // Replaces everything by what was read. Equal destinations and metrics are in order.
    void Assign(const std::vector<Route>& routes);

    // Replaces the routes that have a next hop on the interface by those that were read.
    void AssignInterface(uint32_t interface, const std::vector<Route>& routes);

    void Apply(const RouteChange& change);
    void Apply(const NextHopObjectChange& change);
    void RemoveLink(uint32_t interface);
    void LinkChanged(uint32_t interface);
    void AddressDeleted(uint32_t address);

    // What has to be read again: routes of interfaces, or all. Empties the list of what is to be
    // read. Some causes no longer apply if the kernel has announced their effects, so call it after
    // those have been applied.
    struct Unknown {
        std::set<uint32_t> interfaces;
        bool all = false;
    };
    bool HasUnknown() const;
    Unknown TakeUnknown();

    // After reading, until the notifications of everything that was read have been applied.
    bool IsAhead() const { return isAhead_; }
    void CaughtUp() { isAhead_ = false; }

    // The destinations that have changed since the last call, each once.
    std::vector<Destination> TakeChanged();

    // The next hops that the kernel uses for a destination now: none if it is refused, nullopt if
    // there is no route.
    std::optional<NextHopGroup> NextHopsOf(const Destination& destination) const;

private:
    using Candidates = std::vector<Route>;  // by metric, then in the kernel's order
    using Condition = std::function<bool(const Route&)>;

    Candidates::iterator Insert(Candidates& candidates, Candidates::iterator place,
                                const Route& route);
    Candidates::iterator Erase(Candidates& candidates, Candidates::iterator place);
    void Put(const Route& route, RoutePlacement placement);
    void Remove(const Route& route);
    void RemoveIf(const Destination& destination, const Condition& condition);
    void RemoveHops(const Destination& destination, uint32_t interface, const Condition& condition);
    void MarkUnknown(const Route& route);
    template <typename Action>
    void ForEachUse(const Route& route, Action action);

    std::unordered_map<Destination, Candidates, DestinationHash> routes_;
    RouteIndex ofInterface_;
    RouteIndex ofNextHopObject_;
    RouteIndex ofSource_;
    std::vector<Destination> changed_;  // some of them more than once
    std::set<uint32_t> deletedSources_;
    Unknown unknown_;
    bool isAhead_ = false;
};

}  // namespace sources
