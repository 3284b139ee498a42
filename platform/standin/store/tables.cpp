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

// Most tables have one key, of one field at the start of the record.
template <const auto& fields>
struct KeyOfFirstField {
    static constexpr const Field* members[] = {&fields[0]};
    static constexpr Key keys[] = {KeyOver("primary_key", members)};
};

template <const auto& fields>
struct KeyOfFirstTwoFields {
    static constexpr const Field* members[] = {&fields[0], &fields[1]};
    static constexpr Key keys[] = {KeyOver("primary_key", members)};
};

constexpr Field ifBaseFields[] = {
    {"if_index", 0, Number, 0, 4},    {"name_scope", 1, Number, 4, 4}, {"if_name", 2, Text, 8, 64},
    {"simple_name", 3, Text, 72, 64}, {"if_type", 4, Number, 136, 2},  {"mtu", 5, Number, 138, 4},
    {"description", 6, Text, 142, 81}};
constexpr const Field* ifBasePrimary[] = {&ifBaseFields[0]};
constexpr const Field* ifBaseLocal[] = {&ifBaseFields[1], &ifBaseFields[2]};
constexpr Key ifBaseKeys[] = {KeyOver("primary_key", ifBasePrimary),
                              KeyOver("local_key", ifBaseLocal)};

constexpr Field ifPhyFields[] = {
    {"if_index", 0, Number, 0, 4},   {"speed", 1, Number, 4, 4},    {"duplex", 2, Number, 8, 1},
    {"phy_state", 3, Number, 13, 1}, {"mac_addr", 4, Mac, 23, 6},   {"slot_id", 5, Number, 49, 4},
    {"card_id", 6, Number, 53, 4},   {"port_id", 7, Number, 61, 4},
};

constexpr Field ifLinkFields[] = {{"if_index", 0, Number, 0, 4}, {"link_state", 1, Number, 8, 1}};

constexpr Field ifRouteFields[] = {{"if_index", 0, Number, 0, 4}, {"route_state", 1, Number, 8, 1}};

constexpr Field portFields[] = {
    {"if_index", 0, Number, 0, 4},      {"port_index", 1, Number, 4, 4},
    {"vlan_scope0", 2, Number, 8, 4},   {"vlan_scope1", 3, Number, 12, 4},
    {"switch_port", 4, Number, 20, 1},  {"pvid", 5, Number, 22, 2},
    {"vlan_bitmap_1", 6, Set, 24, 512}, {"vlan_bitmap_2", 7, Set, 536, 512},
};

constexpr Field vlanFields[] = {
    {"vlan_scope0", 0, Number, 0, 4},      {"vlan_scope1", 1, Number, 4, 4},
    {"vlan_id", 2, Number, 8, 2},          {"name", 3, Text, 10, 32, true},
    {"state", 9, Number, 42, 1},           {"description", 10, Text, 43, 81},
    {"member_bitmap_1", 11, Set, 128, 32}, {"member_bitmap_2", 12, Set, 160, 32}};
constexpr const Field* vlanPrimary[] = {&vlanFields[0], &vlanFields[1], &vlanFields[2]};
constexpr Key vlanKeys[] = {KeyOver("primary_key", vlanPrimary)};

constexpr Field addressFields[] = {{"if_index", 0, Number, 0, 4}, {"instance_id", 1, Number, 4, 4}};
constexpr Field addressItemFields[] = {
    {"address", 0, Ipv4, 0, 4}, {"masklen", 1, Number, 4, 1}, {"type", 2, Number, 5, 1}};
constexpr List addressLists[] = {{"ipv4_address_list", addressItemFields, 6}};

constexpr Field forwardFields[] = {
    {"destAddr", 4, Ipv4, 0, 4}, {"prefixLen", 5, Number, 4, 4}, {"nhpGroupId", 10, Number, 8, 4}};

constexpr Field groupNodeFields[] = {{"nhpGroupId", 3, Number, 0, 4},
                                     {"primaryNhpId", 5, Number, 4, 4}};

constexpr Field nextHopFields[] = {
    {"nhpIndex", 2, Number, 0, 4}, {"next_hop", 3, Ipv4, 4, 4}, {"out_if_index", 4, Number, 8, 4}};

constexpr Field aclGroupFields[] = {
    {"acl_group_id", 0, Number, 0, 4}, {"vsid", 1, Number, 4, 2},     {"vsysid", 2, Number, 6, 2},
    {"acl_number", 3, Number, 8, 4},   {"acl_name", 4, Text, 12, 65}, {"isipv6", 5, Number, 77, 1},
};

constexpr Field aclGroupIdFields[] = {{"id", 0, Number, 0, 4},
                                      {"name", 1, Text, 4, 65},
                                      {"kind", 2, Number, 69, 1},
                                      {"acl_number", 5, Number, 70, 4}};
constexpr const Field* aclGroupIdPrimary[] = {&aclGroupIdFields[1], &aclGroupIdFields[2]};
constexpr Key aclGroupIdKeys[] = {KeyOver("primary_key", aclGroupIdPrimary)};

constexpr Field aclRuleFields[] = {
    {"acl_group_id", 0, Number, 0, 4}, {"rule_id", 1, Number, 4, 4},
    {"action", 2, Number, 8, 1},       {"protocol", 3, Number, 9, 1},
    {"source", 4, Ipv4, 10, 4},        {"source_masklen", 5, Number, 14, 1},
    {"destination", 6, Ipv4, 15, 4},   {"destination_masklen", 7, Number, 19, 1},
    {"source_port", 8, Number, 20, 2}, {"destination_port", 9, Number, 22, 2},
};

constexpr Field aclRule6Fields[] = {{"groupId", 0, Number, 0, 4},
                                    {"rule_id", 1, Number, 4, 4},
                                    {"action", 2, Number, 8, 1},
                                    {"protocol", 3, Number, 9, 1}};

constexpr Field qosFields[] = {{"index", 0, Number, 0, 4}, {"name", 1, Text, 4, 64}};
constexpr Field carFields[] = {{"index", 0, Number, 0, 4},
                               {"cir", 1, Number, 4, 4},
                               {"cbs", 2, Number, 8, 4},
                               {"pir", 3, Number, 12, 4},
                               {"pbs", 4, Number, 16, 4}};
constexpr Field dscpFields[] = {{"index", 0, Number, 0, 4}, {"dscp", 1, Number, 4, 4}};
constexpr Field priorityFields[] = {{"index", 0, Number, 0, 4}, {"priority", 1, Number, 4, 4}};
constexpr List qosLists[] = {{"car_list", carFields, 20},
                             {"remark_dscp_list", dscpFields, 8},
                             {"remark_8021p_list", priorityFields, 8}};

constexpr Table tables[] = {
    {"if_base", 387, ifBaseFields, ifBaseKeys, {}},
    {"if_phy", 79, ifPhyFields, KeyOfFirstField<ifPhyFields>::keys, {}},
    {"if_link", 10, ifLinkFields, KeyOfFirstField<ifLinkFields>::keys, {}},
    {"if_route", 22, ifRouteFields, KeyOfFirstField<ifRouteFields>::keys, {}},
    {"port", 1644, portFields, KeyOfFirstField<portFields>::keys, {}},
    {"vlan", 238, vlanFields, vlanKeys, {}},
    {"am_ipv4_address", 8, addressFields, KeyOfFirstField<addressFields>::keys, addressLists},
    {"Fib.ConfigIpv4Fwd", 12, forwardFields, KeyOfFirstTwoFields<forwardFields>::keys, {}},
    {"Fib.ConfigNhpGroupNode", 8, groupNodeFields, KeyOfFirstTwoFields<groupNodeFields>::keys, {}},
    {"Fib.ConfigNhpStandard", 12, nextHopFields, KeyOfFirstField<nextHopFields>::keys, {}},
    {"acl_group", 78, aclGroupFields, KeyOfFirstField<aclGroupFields>::keys, {}},
    {"acl_group_id", 74, aclGroupIdFields, aclGroupIdKeys, {}},
    {"acl_adv", 24, aclRuleFields, KeyOfFirstTwoFields<aclRuleFields>::keys, {}},
    {"acl_rule_id", 10, aclRule6Fields, KeyOfFirstTwoFields<aclRule6Fields>::keys, {}},
    {"qos_integration", 68, qosFields, KeyOfFirstField<qosFields>::keys, qosLists},
};

constexpr bool AllWithin(std::span<const Field> fields, uint32_t size)
{
    return std::ranges::all_of(
        fields, [=](const Field& field) { return field.offset + field.width <= size; });
}

static_assert(std::ranges::all_of(tables, [](const Table& table) {
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
    return tables;
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
