// Symbolic names of numbers: events, commands, flags and states. Names are accepted in place of
// numbers, and are printed next to them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/interface_state.h>

namespace shell {

struct NamedNumber {
    uint32_t number;
    std::string_view name;
};
using NamedNumbers = std::span<const NamedNumber>;

inline constexpr NamedNumber LAYER2_EVENTS[] = {{L2IF_EVT_VLAN_ADD_PORT, "VLAN_ADD_PORT"},
                                                {L2IF_EVT_VLAN_DEL_PORT, "VLAN_DEL_PORT"},
                                                {L2IF_EVT_SWITCH_PORT_ON, "SWITCH_PORT_ON"},
                                                {L2IF_EVT_SWITCH_PORT_OFF, "SWITCH_PORT_OFF"},
                                                {L2IF_EVT_PORT_ADD, "PORT_ADD"},
                                                {L2IF_EVT_PORT_DEL, "PORT_DEL"}};
inline constexpr NamedNumber INTERFACE_EVENTS[] = {{IF_EVT_STATE, "STATE"}};
inline constexpr NamedNumber STATE_SUB_EVENTS[] = {{IF_SUB_EVT_PHY_STATE, "PHY_STATE"},
                                                   {IF_SUB_EVT_ROUTE_STATE, "ROUTE_STATE"},
                                                   {IF_SUB_EVT_PHY_UP, "PHY_UP"}};
inline constexpr NamedNumber EVENT_FLAGS[] = {{IF_EVT_FLAG_UP, "up"}, {IF_EVT_FLAG_DOWN, "down"}};
inline constexpr NamedNumber NOTIFICATIONS[] = {{IF_NOTIFY_CREATED, "CREATED"},
                                                {IF_NOTIFY_DELETED, "DELETED"},
                                                {IF_NOTIFY_UP, "UP"},
                                                {IF_NOTIFY_DOWN, "DOWN"}};
inline constexpr NamedNumber STORED_STATES[] = {{1, "up"}, {0, "down"}};
inline constexpr NamedNumber LINE_STATES[] = {{QRB_IF_STATE_UP, "up"}, {QRB_IF_STATE_DOWN, "down"}};

// Returns an empty text if the number has no name.
std::string_view NameOf(NamedNumbers names, uint64_t number);

// Returns no value if the name is unknown. Names are case-insensitive.
std::optional<uint32_t> NumberOf(NamedNumbers names, std::string_view name);

// The names of the values of a table's field, such as up and down; none for most fields.
NamedNumbers ValueNames(std::string_view table, std::string_view field);

}  // namespace shell
