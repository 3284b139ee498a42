// Arguments that several functions take, named as in their declarations.
#pragma once

#include "shell/functions/argument.h"

namespace shell::arguments {

inline constexpr Argument IF_INDEX{.name = "ifIndex", .table = "if_base", .field = "if_index"};
inline constexpr Argument FULL_NAME{.name = "fullName", .table = "if_base", .field = "if_name"};
inline constexpr Argument IF_NAME{
    .name = "name", .table = "if_base", .field = "if_name", .size = 64};
inline constexpr Argument VLAN_ID{.name = "vlanId", .table = "vlan", .field = "vlan_id"};
inline constexpr Argument ADDRESS{
    .name = "address", .form = Form::Ipv4, .table = "am_ipv4_address", .field = "address"};
inline constexpr Argument MASKLEN{.name = "masklen"};
inline constexpr Argument MAC{.name = "mac", .form = Form::Mac, .size = 6};
inline constexpr Argument LINE_STATE{.name = "state", .names = LINE_STATES};
inline constexpr Argument PHY_STATE{.name = "state", .names = STORED_STATES};
inline constexpr Argument COUNT{.name = "count"};
inline constexpr Argument TEXT_SIZE{.name = "size", .highest = 64, .fallback = "64"};
inline constexpr Argument CONDITION{.name = "condition", .fallback = NULL_WORD, .rest = true};

// The same argument under another name.
constexpr Argument Named(std::string_view name, Argument argument)
{
    argument.name = name;
    return argument;
}

constexpr Argument Number(std::string_view name)
{
    return {.name = name};
}

constexpr Argument Optional(std::string_view name, std::string_view fallback)
{
    return {.name = name, .fallback = fallback};
}

constexpr Argument NeverNull(Argument argument)
{
    argument.neverNull = true;
    return argument;
}

constexpr Argument Required(Argument argument)
{
    argument.fallback = {};
    return argument;
}

}  // namespace shell::arguments
