#include "sources/host/host_rows.h"

#include <net/if_arp.h>

#include <algorithm>
#include <tuple>

namespace sources {
namespace {

using standin::Row;

// ifType is an index into the library's interface type table. The first value of its entries is the
// registered type number: 6 for Ethernet, 53 for a virtual interface, 1 for any other.
struct TypeOfHardware {
    uint32_t hardware;
    uint32_t ifType;
};
constexpr uint32_t OTHER_TYPE = 16;
constexpr TypeOfHardware HARDWARE_TYPES[] = {
    {ARPHRD_ETHER, 1}, {ARPHRD_LOOPBACK, 2}, {ARPHRD_TUNNEL, 2}, {ARPHRD_TUNNEL6, 2},
    {ARPHRD_SIT, 2},   {ARPHRD_IPGRE, 2},    {ARPHRD_NONE, 2}};

uint32_t IfType(uint32_t hardware)
{
    const auto* const found =
        std::ranges::find(HARDWARE_TYPES, hardware, &TypeOfHardware::hardware);
    return found == std::end(HARDWARE_TYPES) ? OTHER_TYPE : found->ifType;
}

// The position in VLAN member sets is the second byte: the interface index, modulo 256.
uint32_t PortIndex(uint32_t interface)
{
    return interface << 8;
}

Row RowOf(std::string_view table, uint32_t interface)
{
    return Row(table).Set("if_index", interface);
}

constexpr uint32_t LONGEST_PREFIX = 32;

// Keeps only the route with the lowest metric for each destination.
void KeepBest(std::vector<Route>& routes)
{
    const auto place = [](const Route& route) {
        return std::tuple(route.prefixLength, route.destination, route.metric);
    };
    const auto sameDestination = [](const Route& one, const Route& other) {
        return std::tie(one.prefixLength, one.destination) ==
               std::tie(other.prefixLength, other.destination);
    };
    std::ranges::stable_sort(routes, {}, place);
    routes.erase(std::unique(routes.begin(), routes.end(), sameDestination), routes.end());
}

}  // namespace

Rows LinkRows(const Link& link)
{
    return {RowOf("if_base", link.index)
                .Set("if_name", link.name)
                .Set("simple_name", link.name)
                .Set("if_type", IfType(link.hardware))
                .Set("mtu", link.mtu),
            RowOf("if_phy", link.index)
                .Set("phy_state", link.carrier)
                .SetBytes("mac_addr", link.mac)
                .Set("port_id", link.index),
            RowOf("if_link", link.index).Set("link_state", link.carrier),
            RowOf("if_route", link.index).Set("route_state", link.running),
            RowOf("port", link.index)
                .Set("port_index", PortIndex(link.index))
                .Set("switch_port", link.bridgeMember)
                .Set("pvid", link.bridgeMember)};
}

Rows AddressRows(const std::vector<Address>& addresses)
{
    enum Type : uint64_t { Main = 1, Further = 2 };
    std::map<uint32_t, Row> rows;
    for (const Address& address : addresses) {
        const auto [row, isNew] =
            rows.try_emplace(address.interface, RowOf("am_ipv4_address", address.interface));
        const std::array<uint64_t, 3> item = {address.address, address.prefixLength,
                                              isNew ? Main : Further};
        row->second.AddItem("ipv4_address_list", item);
    }
    Rows all;
    for (auto& [interface, row] : rows) {
        all.push_back(std::move(row));
    }
    return all;
}

Rows Forwarding::ForwardRows(std::vector<Route> routes, Time now)
{
    constexpr uint32_t NO_GROUP = 0;  // has no members, so an inquiry fails
    Rows rows;
    KeepBest(routes);
    for (const Route& route : routes) {
        for (const NextHop& hop : route.nextHops) {
            nextHops_.Of(hop);
        }
        const uint32_t group = route.nextHops.empty() ? NO_GROUP : groups_.Of(route.nextHops);
        rows.push_back(Row("Fib.ConfigIpv4Fwd")
                           .Set("destAddr", route.destination)
                           .Set("prefixLen", route.prefixLength)
                           .Set("nhpGroupId", group)
                           .SetRank(LONGEST_PREFIX - route.prefixLength));
    }
    groups_.EndRound(now);
    nextHops_.EndRound(now);
    return rows;
}

Rows Forwarding::GroupNodeRows() const
{
    Rows rows;
    groups_.ForEach([&](const Group& group, uint32_t number) {
        for (const NextHop& hop : group) {
            rows.push_back(Row("Fib.ConfigNhpGroupNode")
                               .Set("nhpGroupId", number)
                               .Set("primaryNhpId", nextHops_.NumberOf(hop)));
        }
    });
    return rows;
}

Rows Forwarding::NextHopRows() const
{
    Rows rows;
    nextHops_.ForEach([&](const NextHop& hop, uint32_t number) {
        rows.push_back(Row("Fib.ConfigNhpStandard")
                           .Set("nhpIndex", number)
                           .Set("next_hop", hop.gateway)
                           .Set("out_if_index", hop.interface));
    });
    return rows;
}

void Forwarding::Expire(Time now)
{
    groups_.Expire(now);
    nextHops_.Expire(now);
}

}  // namespace sources
