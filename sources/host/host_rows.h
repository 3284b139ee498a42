// What the kernel's state looks like in the database: rows for links, addresses and routes.
// docs/host-source.md tells the choices.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <vector>

#include "sources/host/host_kernel.h"
#include "sources/mirror.h"

namespace sources {

// The tables that have a row for each link.
inline constexpr std::array linkTables = {"if_base", "if_phy", "if_link", "if_route", "port"};

// One row for each of linkTables, in that order.
Rows LinkRows(const Link& link);

// The rows of "am_ipv4_address": one for each interface that has an address.
Rows AddressRows(const std::vector<Address>& addresses);

// Numbers things: equal things have equal numbers, from 1, as long as they are in use. A thing that
// is no longer in use keeps its number for a grace period, in which a reader that found the number
// can still look it up. Numbers are never reused.
template <typename Thing>
class Numbering {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds GRACE{1};

    // The thing's number. It is in use until a round ends in which it was not asked for.
    uint32_t Of(const Thing& thing)
    {
        const auto [entry, isNew] = entries_.try_emplace(thing, Entry{last_ + 1});
        last_ += isNew ? 1 : 0;
        entry->second.round = round_;
        return entry->second.number;
    }

    // The number of a thing that has one.
    uint32_t NumberOf(const Thing& thing) const { return entries_.at(thing).number; }

    void EndRound(Time now)
    {
        for (auto& [thing, entry] : entries_) {
            if (entry.round == round_) {
                entry.unusedSince = IN_USE;
            } else if (entry.unusedSince == IN_USE) {
                entry.unusedSince = now;
            }
        }
        ++round_;
        Expire(now);
    }

    // Removes what has not been in use for the grace period.
    void Expire(Time now)
    {
        std::erase_if(entries_,
                      [now](const auto& entry) { return entry.second.unusedSince <= now - GRACE; });
    }

    bool HasUnused() const
    {
        return std::ranges::any_of(
            entries_, [](const auto& entry) { return entry.second.unusedSince != IN_USE; });
    }

    // Calls action(thing, number) for everything that has a number.
    template <typename Action>
    void ForEach(Action&& action) const
    {
        for (const auto& [thing, entry] : entries_) {
            action(thing, entry.number);
        }
    }

private:
    static constexpr Time IN_USE = Time::max();

    struct Entry {
        uint32_t number;
        uint64_t round = 0;  // the last one in which it was asked for
        Time unusedSince = IN_USE;
    };

    std::map<Thing, Entry> entries_;
    uint32_t last_ = 0;
    uint64_t round_ = 1;
};

// Turns routes into rows of the three forwarding tables.
class Forwarding {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Takes the routes in place of those of the last call. Returns the rows of "Fib.ConfigIpv4Fwd":
    // a scan meets longer prefixes first.
    Rows ForwardRows(std::vector<Route> routes, Time now);

    // The rows of "Fib.ConfigNhpGroupNode" and "Fib.ConfigNhpStandard". Those of a group that no
    // route uses any more stay for Numbering::GRACE, so that an inquiry under way finds them.
    Rows GroupNodeRows() const;
    Rows NextHopRows() const;

    bool HasUnused() const { return groups_.HasUnused() || nextHops_.HasUnused(); }
    void Expire(Time now);

private:
    using Group = std::vector<NextHop>;

    Numbering<NextHop> nextHops_;
    Numbering<Group> groups_;
};

}  // namespace sources
