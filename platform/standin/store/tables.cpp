// The table definitions. Field numbers are those of a device; they have gaps for fields that the
// stand-in does not have.
#include "standin/tables.h"

#include <algorithm>

namespace standin {

namespace {

using enum Kind;

// A key of contiguous fields; fails to compile if they are not contiguous.
consteval Key KeyOver(std::string_view name, std::span<const Field* const> members)
{
    uint32_t end = members.front()->offset;
    for (const Field* member : members) {
        if (member->offset != end) {
            throw "the members of a key must be contiguous";
        }
        end += member->width;
    }
    const uint32_t width = end - members.front()->offset;
    if (width > LONGEST_KEY) {
        throw "LONGEST_KEY is too short";
    }
    return {name, members, members.front()->offset, width};
}

// The fields at these places.
template <const auto& fields, size_t... places>
constexpr const Field* MEMBERS[] = {&fields[places]...};

// The only key of a table.
template <const auto& fields, size_t... places>
constexpr Key PRIMARY[] = {KeyOver("primary_key", MEMBERS<fields, places...>)};

constexpr Field IF_BASE_FIELDS[] = {
    {"if_index", 0, Number, 0, 4},    {"name_scope", 1, Number, 4, 4}, {"if_name", 2, Text, 8, 64},
    {"simple_name", 3, Text, 72, 64}, {"if_type", 4, Number, 136, 2},  {"mtu", 5, Number, 138, 4},
    {"description", 6, Text, 142, 81}};
constexpr Key IF_BASE_KEYS[] = {KeyOver("primary_key", MEMBERS<IF_BASE_FIELDS, 0>),
                                KeyOver("local_key", MEMBERS<IF_BASE_FIELDS, 1, 2>)};

constexpr Field IF_PHY_FIELDS[] = {
    {"if_index", 0, Number, 0, 4},   {"speed", 1, Number, 4, 4},    {"duplex", 2, Number, 8, 1},
    {"phy_state", 3, Number, 13, 1}, {"mac_addr", 4, Mac, 23, 6},   {"slot_id", 5, Number, 49, 4},
    {"card_id", 6, Number, 53, 4},   {"port_id", 7, Number, 61, 4},
};

constexpr Field IF_LINK_FIELDS[] = {{"if_index", 0, Number, 0, 4}, {"link_state", 1, Number, 8, 1}};

constexpr Field IF_ROUTE_FIELDS[] = {{"if_index", 0, Number, 0, 4},
                                     {"route_state", 1, Number, 8, 1}};

constexpr Field PORT_FIELDS[] = {
    {"if_index", 0, Number, 0, 4},      {"port_index", 1, Number, 4, 4},
    {"vlan_scope0", 2, Number, 8, 4},   {"vlan_scope1", 3, Number, 12, 4},
    {"switch_port", 4, Number, 20, 1},  {"pvid", 5, Number, 22, 2},
    {"vlan_bitmap_1", 6, Set, 24, 512}, {"vlan_bitmap_2", 7, Set, 536, 512},
};

constexpr Field VLAN_FIELDS[] = {
    {"vlan_scope0", 0, Number, 0, 4},      {"vlan_scope1", 1, Number, 4, 4},
    {"vlan_id", 2, Number, 8, 2},          {"name", 3, Text, 10, 32, true},
    {"state", 9, Number, 42, 1},           {"description", 10, Text, 43, 81},
    {"member_bitmap_1", 11, Set, 128, 32}, {"member_bitmap_2", 12, Set, 160, 32}};

constexpr Field ADDRESS_FIELDS[] = {{"if_index", 0, Number, 0, 4},
                                    {"instance_id", 1, Number, 4, 4}};
constexpr Field ADDRESS_ITEM_FIELDS[] = {
    {"address", 0, Ipv4, 0, 4}, {"masklen", 1, Number, 4, 1}, {"type", 2, Number, 5, 1}};
constexpr List ADDRESS_LISTS[] = {{"ipv4_address_list", ADDRESS_ITEM_FIELDS, 6}};

constexpr Field FORWARD_FIELDS[] = {
    {"destAddr", 4, Ipv4, 0, 4}, {"prefixLen", 5, Number, 4, 4}, {"nhpGroupId", 10, Number, 8, 4}};

constexpr Field GROUP_NODE_FIELDS[] = {{"nhpGroupId", 3, Number, 0, 4},
                                       {"primaryNhpId", 5, Number, 4, 4}};

constexpr Field NEXT_HOP_FIELDS[] = {
    {"nhpIndex", 2, Number, 0, 4}, {"next_hop", 3, Ipv4, 4, 4}, {"out_if_index", 4, Number, 8, 4}};

constexpr Field ACL_GROUP_FIELDS[] = {
    {"acl_group_id", 0, Number, 0, 4}, {"vsid", 1, Number, 4, 2},     {"vsysid", 2, Number, 6, 2},
    {"acl_number", 3, Number, 8, 4},   {"acl_name", 4, Text, 12, 65}, {"isipv6", 5, Number, 77, 1},
};

constexpr Field ACL_GROUP_ID_FIELDS[] = {{"id", 0, Number, 0, 4},
                                         {"name", 1, Text, 4, 65},
                                         {"kind", 2, Number, 69, 1},
                                         {"acl_number", 5, Number, 70, 4}};

constexpr Field ACL_RULE_FIELDS[] = {
    {"acl_group_id", 0, Number, 0, 4}, {"rule_id", 1, Number, 4, 4},
    {"action", 2, Number, 8, 1},       {"protocol", 3, Number, 9, 1},
    {"source", 4, Ipv4, 10, 4},        {"source_masklen", 5, Number, 14, 1},
    {"destination", 6, Ipv4, 15, 4},   {"destination_masklen", 7, Number, 19, 1},
    {"source_port", 8, Number, 20, 2}, {"destination_port", 9, Number, 22, 2},
};

constexpr Field ACL_RULE6_FIELDS[] = {{"groupId", 0, Number, 0, 4},
                                      {"rule_id", 1, Number, 4, 4},
                                      {"action", 2, Number, 8, 1},
                                      {"protocol", 3, Number, 9, 1}};

constexpr Field QOS_FIELDS[] = {{"index", 0, Number, 0, 4}, {"name", 1, Text, 4, 64}};
constexpr Field CAR_FIELDS[] = {{"index", 0, Number, 0, 4},
                                {"cir", 1, Number, 4, 4},
                                {"cbs", 2, Number, 8, 4},
                                {"pir", 3, Number, 12, 4},
                                {"pbs", 4, Number, 16, 4}};
constexpr Field DSCP_FIELDS[] = {{"index", 0, Number, 0, 4}, {"dscp", 1, Number, 4, 4}};
constexpr Field PRIORITY_FIELDS[] = {{"index", 0, Number, 0, 4}, {"priority", 1, Number, 4, 4}};
constexpr List QOS_LISTS[] = {{"car_list", CAR_FIELDS, 20},
                              {"remark_dscp_list", DSCP_FIELDS, 8},
                              {"remark_8021p_list", PRIORITY_FIELDS, 8}};

constexpr Table TABLES[] = {
    {"if_base", 387, IF_BASE_FIELDS, IF_BASE_KEYS, {}},
    {"if_phy", 79, IF_PHY_FIELDS, PRIMARY<IF_PHY_FIELDS, 0>, {}},
    {"if_link", 10, IF_LINK_FIELDS, PRIMARY<IF_LINK_FIELDS, 0>, {}},
    {"if_route", 22, IF_ROUTE_FIELDS, PRIMARY<IF_ROUTE_FIELDS, 0>, {}},
    {"port", 1644, PORT_FIELDS, PRIMARY<PORT_FIELDS, 0>, {}},
    {"vlan", 238, VLAN_FIELDS, PRIMARY<VLAN_FIELDS, 0, 1, 2>, {}},
    {"am_ipv4_address", 8, ADDRESS_FIELDS, PRIMARY<ADDRESS_FIELDS, 0>, ADDRESS_LISTS},
    {"Fib.ConfigIpv4Fwd", 12, FORWARD_FIELDS, PRIMARY<FORWARD_FIELDS, 0, 1>, {}},
    {"Fib.ConfigNhpGroupNode", 8, GROUP_NODE_FIELDS, PRIMARY<GROUP_NODE_FIELDS, 0, 1>, {}},
    {"Fib.ConfigNhpStandard", 12, NEXT_HOP_FIELDS, PRIMARY<NEXT_HOP_FIELDS, 0>, {}},
    {"acl_group", 78, ACL_GROUP_FIELDS, PRIMARY<ACL_GROUP_FIELDS, 0>, {}},
    {"acl_group_id", 74, ACL_GROUP_ID_FIELDS, PRIMARY<ACL_GROUP_ID_FIELDS, 1, 2>, {}},
    {"acl_adv", 24, ACL_RULE_FIELDS, PRIMARY<ACL_RULE_FIELDS, 0, 1>, {}},
    {"acl_rule_id", 10, ACL_RULE6_FIELDS, PRIMARY<ACL_RULE6_FIELDS, 0, 1>, {}},
    {"qos_integration", 68, QOS_FIELDS, PRIMARY<QOS_FIELDS, 0>, QOS_LISTS},
};

constexpr bool AllWithin(std::span<const Field> fields, uint32_t size)
{
    return std::ranges::all_of(
        fields, [=](const Field& field) { return field.offset + field.width <= size; });
}

static_assert(std::ranges::all_of(TABLES, [](const Table& table) {
    return AllWithin(table.fields, table.recordSize) &&
           std::ranges::all_of(
               table.lists, [](const List& list) { return AllWithin(list.fields, list.itemSize); });
}));

template <typename Named>
const Named* FindNamed(std::span<const Named> all, std::string_view name)
{
    const auto found = std::ranges::find(all, name, &Named::name);
    return found == all.end() ? nullptr : &*found;
}

}  // namespace

std::span<const Table> Tables()
{
    return TABLES;
}

const Table* FindTable(std::string_view name)
{
    return FindNamed(Tables(), name);
}

const Field* FindField(std::span<const Field> fields, std::string_view name)
{
    return FindNamed(fields, name);
}

}  // namespace standin
