// What the kernel's state looks like in the database: rows for links, addresses and routes.
// docs/host-source.md tells the choices.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <utility>
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

// Gives equal things equal numbers, from 1, for as long as each round asks for them. No number is
// ever given twice: a reader who meets an old one finds nothing, rather than something else.
template <typename Thing>
class Numbering {
public:
    struct Assigned {
        uint32_t number;
        bool first;  // asked for the first time in this round
    };

    Assigned Of(const Thing& thing)
    {
        const auto [entry, isNew] = entries_.try_emplace(thing, Numbered{last_ + 1, round_ - 1});
        last_ += isNew ? 1 : 0;
        return {entry->second.number, std::exchange(entry->second.round, round_) != round_};
    }

    // Begins a new round and forgets what the last one did not ask for.
    void NextRound()
    {
        std::erase_if(entries_, [this](auto& entry) { return entry.second.round != round_; });
        ++round_;
    }

private:
    struct Numbered {
        uint32_t number;
        uint64_t round;  // that last asked for it
    };
    std::map<Thing, Numbered> entries_;
    uint32_t last_ = 0;
    uint64_t round_ = 1;
};

struct ForwardingRows {
    Rows forwards;  // longest prefixes first
    Rows groupNodes;
    Rows nextHops;
};

// Turns routes into rows of the three forwarding tables.
class Forwarding {
public:
    ForwardingRows RowsOf(std::vector<Route> routes);

private:
    using Group = std::vector<NextHop>;

    uint32_t NumberOf(const Group& group, ForwardingRows& rows);

    Numbering<NextHop> nextHops_;
    Numbering<Group> groups_;
};

}  // namespace sources
