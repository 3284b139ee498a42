#include "sources/host/host_rows.h"

#include <net/if_arp.h>

#include <algorithm>
#include <map>

namespace sources {
namespace {

using standin::Row;

// The interface type table's first values are numbers of the registered interface types where they
// are known at all: 6 is Ethernet, 53 a virtual interface, 1 any other.
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
            rows.try_emplace(address.interface, AddressKey(address.interface));
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

standin::Row AddressKey(uint32_t interface)
{
    return RowOf("am_ipv4_address", interface);
}

}  // namespace sources
