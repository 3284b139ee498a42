// The arguments that functions share, under the names of their declarations.
#pragma once

#include "shell/argument.h"

namespace shell::arguments {

// clang-format off
inline constexpr Argument ifIndex    {.name = "ifIndex", .table = "if_base", .field = "if_index"};
inline constexpr Argument fullName   {.name = "fullName", .table = "if_base", .field = "if_name"};
inline constexpr Argument ifName     {.name = "name", .table = "if_base", .field = "if_name", .size = 64};
inline constexpr Argument vlanId     {.name = "vlanId", .table = "vlan", .field = "vlan_id"};
inline constexpr Argument address    {.name = "address", .form = Form::Ipv4, .table = "am_ipv4_address", .field = "address"};
inline constexpr Argument masklen    {.name = "masklen"};
inline constexpr Argument mac        {.name = "mac", .form = Form::Mac, .size = 6};
inline constexpr Argument state      {.name = "state"};
inline constexpr Argument count      {.name = "count"};
inline constexpr Argument condition  {.name = "condition", .fallback = nullWord, .rest = true};
// clang-format on

// Another name for the same.
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
