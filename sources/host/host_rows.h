// Converts the kernel's links, addresses and routes into rows. docs/host-source.md describes the
// mapping.
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
inline constexpr std::array LINK_TABLES = {"if_base", "if_phy", "if_link", "if_route", "port"};

// One row for each of LINK_TABLES, in that order.
Rows LinkRows(const Link& link);

// The rows of "am_ipv4_address": one for each interface that has an address.
Rows AddressRows(const std::vector<Address>& addresses);

// Assigns ids to values, starting from 1. A value keeps its id while it is in use, and for a grace
// period afterwards, so that a reader that has found the id can still look it up. Ids are never
// reused.
template <typename Value>
class Numbering {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds GRACE{1};

    // Returns the value's id; assigns one if there is none. The value is in use until a round ends
    // in which Of was not called for it.
    uint32_t Of(const Value& value)
    {
        const auto [entry, isNew] = entries_.try_emplace(value, Entry{last_ + 1});
        last_ += isNew ? 1 : 0;
        entry->second.round = round_;
        return entry->second.number;
    }

    // Returns the id of a value that has one.
    uint32_t NumberOf(const Value& value) const { return entries_.at(value).number; }

    void EndRound(Time now)
    {
        for (auto& [value, entry] : entries_) {
            if (entry.round == round_) {
                entry.unusedSince = IN_USE;
            } else if (entry.unusedSince == IN_USE) {
                entry.unusedSince = now;
            }
        }
        ++round_;
        Expire(now);
    }

    // Removes values that have been unused for the grace period.
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

    // Calls action(value, number) for every value that has an id.
    template <typename Action>
    void ForEach(Action&& action) const
    {
        for (const auto& [value, entry] : entries_) {
            action(value, entry.number);
        }
    }

private:
    static constexpr Time IN_USE = Time::max();

    struct Entry {
        uint32_t number;
        uint64_t round = 0;  // the last one in which Of was called for the value
        Time unusedSince = IN_USE;
    };

    std::map<Value, Entry> entries_;
    uint32_t last_ = 0;
    uint64_t round_ = 1;
};

// Turns routes into rows of the three forwarding tables.
class Forwarding {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Replaces the routes of the last call. Returns the rows of "Fib.ConfigIpv4Fwd", ranked so that
    // a scan returns longer prefixes first.
    Rows ForwardRows(std::vector<Route> routes, Time now);

    // The rows of "Fib.ConfigNhpGroupNode" and "Fib.ConfigNhpStandard". Rows of a group that is no
    // longer used stay for Numbering::GRACE, so that an inquiry in progress finds them.
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
