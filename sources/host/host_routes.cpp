#include "sources/host/host_routes.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace sources {
namespace {

// Of the routes to one destination, those of the metric: begin and end.
auto WithMetric(std::vector<Route>& candidates, uint32_t metric)
{
    return std::pair(std::ranges::lower_bound(candidates, metric, {}, &Route::metric),
                     std::ranges::upper_bound(candidates, metric, {}, &Route::metric));
}

std::set<uint32_t> InterfacesOf(const Route& route)
{
    std::set<uint32_t> interfaces;
    for (const RouteHop& hop : route.hops) {
        interfaces.insert(hop.nextHop.interface);
    }
    return interfaces;
}

NextHopGroup LiveNextHops(const Route& route)
{
    NextHopGroup live;
    for (const RouteHop& hop : route.hops) {
        if (!hop.dead && std::ranges::find(live, hop.nextHop) == live.end()) {
            live.push_back(hop.nextHop);
        }
    }
    return live;
}

// Differs between the routes of one destination.
uint64_t RouteIdentity(const Route& route)
{
    return route.fingerprint ^ DestinationHash()(route.destination);
}

}  // namespace

// Calls action(index, used) for each thing that the route uses.
template <typename Action>
void RouteTable::ForEachUse(const Route& route, Action action)
{
    for (const uint32_t interface : InterfacesOf(route)) {
        action(ofInterface_, interface);
    }
    if (route.nextHopObject != 0) {
        action(ofNextHopObject_, route.nextHopObject);
    }
    if (route.source != 0) {
        action(ofSource_, route.source);
    }
}

RouteTable::Candidates::iterator RouteTable::Insert(Candidates& candidates,
                                                    Candidates::iterator place, const Route& route)
{
    ForEachUse(route,
               [&](RouteIndex& index, uint32_t used) { index.Add(used, route.destination); });
    changed_.push_back(route.destination);
    return candidates.insert(place, route);
}

RouteTable::Candidates::iterator RouteTable::Erase(Candidates& candidates,
                                                   Candidates::iterator place)
{
    const Destination destination = place->destination;
    ForEachUse(*place, [&](RouteIndex& index, uint32_t used) { index.Remove(used, destination); });
    changed_.push_back(destination);
    return candidates.erase(place);
}

void RouteTable::Put(const Route& route, RoutePlacement placement)
{
    Candidates& candidates = routes_[route.destination];
    const auto [first, last] = WithMetric(candidates, route.metric);
    const auto present = std::find_if(
        first, last, [&](const Route& other) { return other.fingerprint == route.fingerprint; });
    const bool isPresent = present != last;
    const bool replaces = placement == RoutePlacement::Replacing;
    const bool isExact = !replaces || !isAhead_;
    if (isPresent && isExact && (replaces || placement == RoutePlacement::Unchanged)) {
        if (*present != route) {
            Insert(candidates, Erase(candidates, present), route);
        }
        return;
    }

    if (placement == RoutePlacement::Only) {
        auto place = first;
        for (auto number = last - first; number > 0; --number) {
            place = Erase(candidates, place);
        }
    } else if (isPresent) {
        Erase(candidates, present);
    } else if (replaces && isExact && first != last) {
        Erase(candidates, first);
    }
    const auto [restBegin, restEnd] = WithMetric(candidates, route.metric);
    if (!isExact) {
        // The replaced route is one of these, or was already missing when they were read.
        for (auto other = restBegin; other != restEnd; ++other) {
            MarkUnknown(*other);
        }
        unknown_.all |= restBegin != restEnd && route.nextHopObject != 0;
    }
    const bool isLast = placement == RoutePlacement::Last || placement == RoutePlacement::Unchanged;
    Insert(candidates, isLast ? restEnd : restBegin, route);
}

void RouteTable::Remove(const Route& route)
{
    RemoveIf(route.destination, [&](const Route& other) {
        return other.metric == route.metric && other.fingerprint == route.fingerprint;
    });
}

void RouteTable::RemoveIf(const Destination& destination, const Condition& condition)
{
    const auto found = routes_.find(destination);
    if (found == routes_.end()) {
        return;
    }
    Candidates& candidates = found->second;
    for (auto route = candidates.begin(); route != candidates.end();) {
        route = condition(*route) ? Erase(candidates, route) : std::next(route);
    }
    if (candidates.empty()) {
        routes_.erase(found);
    }
}

// Of the routes that fulfil the condition. The loss of one next hop ends a route, unless its next
// hops are those of a group of next-hop objects.
void RouteTable::RemoveHops(const Destination& destination, uint32_t interface,
                            const Condition& condition)
{
    std::vector<Route> shortened;
    RemoveIf(destination, [&](const Route& route) {
        if (!route.Uses(interface) || !condition(route)) {
            return false;
        }
        Route rest = route;
        std::erase_if(rest.hops,
                      [&](const RouteHop& hop) { return hop.nextHop.interface == interface; });
        if (route.nextHopObject == 0 || rest.hops.empty()) {
            return true;
        }
        shortened.push_back(std::move(rest));
        return false;
    });
    for (const Route& route : shortened) {
        MarkUnknown(route);
        Put(route, RoutePlacement::Unchanged);
    }
}

void RouteTable::MarkUnknown(const Route& route)
{
    if (route.hops.empty()) {
        unknown_.all = true;  // no interface by which to read it
    }
    unknown_.interfaces.merge(InterfacesOf(route));
}

void RouteTable::Assign(const std::vector<Route>& routes)
{
    for (const auto& [destination, candidates] : routes_) {
        changed_.push_back(destination);
    }
    routes_.clear();
    ofInterface_.Clear();
    ofNextHopObject_.Clear();
    ofSource_.Clear();
    deletedSources_.clear();
    unknown_ = {};
    isAhead_ = true;
    routes_.reserve(routes.size());
    for (const Route& route : routes) {
        Candidates& candidates = routes_[route.destination];
        Insert(candidates, WithMetric(candidates, route.metric).second, route);
    }
}

void RouteTable::AssignInterface(uint32_t interface, const std::vector<Route>& routes)
{
    isAhead_ = true;
    std::unordered_set<uint64_t> read;
    for (const Route& route : routes) {
        read.insert(RouteIdentity(route));
        Put(route, RoutePlacement::Unchanged);
    }
    for (const Destination& destination : ofInterface_.Of(interface)) {
        RemoveHops(destination, interface,
                   [&](const Route& route) { return !read.contains(RouteIdentity(route)); });
    }
}

void RouteTable::Apply(const RouteChange& change)
{
    if (change.removed) {
        Remove(change.route);
    } else {
        Put(change.route, change.placement);
    }
}

void RouteTable::Apply(const NextHopObjectChange& change)
{
    const auto usesObject = [&](const Route& route) { return route.nextHopObject == change.id; };
    for (const Destination& destination : ofNextHopObject_.Of(change.id)) {
        if (change.removed) {
            RemoveIf(destination, usesObject);
            continue;
        }
        for (const Route& route : routes_.at(destination)) {
            if (usesObject(route) && (!change.byUser || route.hops.empty())) {
                MarkUnknown(route);
            }
        }
    }
}

void RouteTable::RemoveLink(uint32_t interface)
{
    for (const Destination& destination : ofInterface_.Of(interface)) {
        RemoveHops(destination, interface, [](const Route&) { return true; });
    }
    unknown_.interfaces.erase(interface);
}

void RouteTable::LinkChanged(uint32_t interface)
{
    if (ofInterface_.Contains(interface)) {
        unknown_.interfaces.insert(interface);
    }
}

void RouteTable::AddressDeleted(uint32_t address)
{
    if (ofSource_.Contains(address)) {
        deletedSources_.insert(address);
    }
}

bool RouteTable::HasUnknown() const
{
    return unknown_.all || !unknown_.interfaces.empty() || !deletedSources_.empty();
}

RouteTable::Unknown RouteTable::TakeUnknown()
{
    for (const uint32_t source : std::exchange(deletedSources_, {})) {
        for (const Destination& destination : ofSource_.Of(source)) {
            for (const Route& route : routes_.at(destination)) {
                if (route.source == source) {
                    MarkUnknown(route);
                }
            }
        }
    }
    return std::exchange(unknown_, {});
}

std::vector<Destination> RouteTable::TakeChanged()
{
    std::vector<Destination> changed = std::exchange(changed_, {});
    std::ranges::sort(changed);
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
    return changed;
}

std::optional<NextHopGroup> RouteTable::NextHopsOf(const Destination& destination) const
{
    const auto found = routes_.find(destination);
    if (found == routes_.end()) {
        return std::nullopt;
    }
    for (const Route& route : found->second) {
        NextHopGroup live = LiveNextHops(route);
        if (route.refuses || !live.empty()) {
            return live;
        }
    }
    return std::nullopt;
}

}  // namespace sources
