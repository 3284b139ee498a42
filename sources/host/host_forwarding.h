// The three forwarding tables: destinations, groups of next hops, next hops.
#pragma once

#include <chrono>
#include <optional>
#include <unordered_map>

#include "sources/host/host_numbering.h"
#include "sources/host/host_state.h"
#include "sources/mirror.h"

namespace sources {

using NextHopGroup = std::vector<NextHop>;  // in the kernel's order, each once

// Keeps what the tables should contain, and reports the rows that a change of it affects.
//
// A scan of "Fib.ConfigIpv4Fwd" meets longer prefixes first. Groups and next hops without users
// stay for Numbering::GRACE, so that an inquiry that has found the route can still read them.
class Forwarding {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Sets the next hops of a destination: none if it is refused, nullopt if there is no route.
    void Set(const Destination& destination, const std::optional<NextHopGroup>& hops, Time now,
             RowChanges& changes);

    // Removes what has not been used for the grace period.
    void Expire(Time now, RowChanges& changes);
    bool HasUnused() const { return groups_.HasUnused() || nextHops_.HasUnused(); }

    // Every row.
    Rows ForwardRows() const;
    Rows GroupNodeRows() const;
    Rows NextHopRows() const;

private:
    using Groups = Numbering<NextHopGroup>;
    using NextHops = Numbering<NextHop>;

    Groups::Item* Acquire(const NextHopGroup& hops, RowChanges& changes);
    void Release(Groups::Item* group, Time now);

    // Null: refused.
    std::unordered_map<Destination, Groups::Item*, DestinationHash> groupOf_;
    Groups groups_;
    NextHops nextHops_;
};

}  // namespace sources
