#include "sources/host/host_forwarding.h"

namespace sources {
namespace {

using standin::Row;

Row ForwardRow(const Destination& destination, uint32_t group)
{
    constexpr uint32_t LONGEST_PREFIX = 32;
    return Row("Fib.ConfigIpv4Fwd")
        .Set("destAddr", destination.address)
        .Set("prefixLen", destination.prefixLength)
        .Set("nhpGroupId", group)
        .SetRank(LONGEST_PREFIX - destination.prefixLength);
}

Row GroupNodeRow(uint32_t group, uint32_t nextHop)
{
    return Row("Fib.ConfigNhpGroupNode").Set("nhpGroupId", group).Set("primaryNhpId", nextHop);
}

Row NextHopRow(const NextHop& hop, uint32_t number)
{
    return Row("Fib.ConfigNhpStandard")
        .Set("nhpIndex", number)
        .Set("next_hop", hop.gateway)
        .Set("out_if_index", hop.interface);
}

// The group of refused destinations has no members: an inquiry fails.
uint32_t NumberOf(const Numbering<NextHopGroup>::Item* group)
{
    constexpr uint32_t NO_GROUP = 0;
    return group != nullptr ? group->second.number : NO_GROUP;
}

}  // namespace

void Forwarding::Set(const Destination& destination, const std::optional<NextHopGroup>& hops,
                     Time now, RowChanges& changes)
{
    const auto present = groupOf_.find(destination);
    const bool isNew = present == groupOf_.end();
    if (!hops) {
        if (!isNew) {
            changes.removed.push_back(ForwardRow(destination, NumberOf(present->second)));
            Release(present->second, now);
            groupOf_.erase(present);
        }
        return;
    }
    Groups::Item* const group = Acquire(*hops, changes);
    if (isNew || present->second != group) {
        changes.present.push_back(ForwardRow(destination, NumberOf(group)));
    }
    if (isNew) {
        groupOf_.emplace(destination, group);
    } else {
        Release(std::exchange(present->second, group), now);
    }
}

Forwarding::Groups::Item* Forwarding::Acquire(const NextHopGroup& hops, RowChanges& changes)
{
    if (hops.empty()) {
        return nullptr;
    }
    Groups::Item& group = groups_.Find(hops);
    if (groups_.Acquire(group)) {
        for (const NextHop& hop : hops) {
            NextHops::Item& nextHop = nextHops_.Find(hop);
            if (nextHops_.Acquire(nextHop)) {
                changes.present.push_back(NextHopRow(hop, nextHop.second.number));
            }
            changes.present.push_back(GroupNodeRow(NumberOf(&group), nextHop.second.number));
        }
    }
    return &group;
}

void Forwarding::Release(Groups::Item* group, Time now)
{
    if (group != nullptr && groups_.Release(*group, now)) {
        for (const NextHop& hop : group->first) {
            nextHops_.Release(nextHops_.Find(hop), now);
        }
    }
}

// A next hop is unused no longer than a group that contains it, so it still has its number when the
// group expires.
void Forwarding::Expire(Time now, RowChanges& changes)
{
    groups_.Expire(now, [&](const Groups::Item& group) {
        for (const NextHop& hop : group.first) {
            changes.removed.push_back(
                GroupNodeRow(NumberOf(&group), nextHops_.At(hop).second.number));
        }
    });
    nextHops_.Expire(now, [&](const NextHops::Item& nextHop) {
        changes.removed.push_back(NextHopRow(nextHop.first, nextHop.second.number));
    });
}

Rows Forwarding::ForwardRows() const
{
    Rows rows;
    rows.reserve(groupOf_.size());
    for (const auto& [destination, group] : groupOf_) {
        rows.push_back(ForwardRow(destination, NumberOf(group)));
    }
    return rows;
}

Rows Forwarding::GroupNodeRows() const
{
    Rows rows;
    groups_.ForEach([&](const Groups::Item& group) {
        for (const NextHop& hop : group.first) {
            rows.push_back(GroupNodeRow(NumberOf(&group), nextHops_.At(hop).second.number));
        }
    });
    return rows;
}

Rows Forwarding::NextHopRows() const
{
    Rows rows;
    nextHops_.ForEach([&](const NextHops::Item& nextHop) {
        rows.push_back(NextHopRow(nextHop.first, nextHop.second.number));
    });
    return rows;
}

}  // namespace sources
