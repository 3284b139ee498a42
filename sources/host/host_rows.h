// The database's rows for links and addresses. docs/host-source.md documents the mapping.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "sources/host/host_state.h"
#include "sources/mirror.h"

namespace sources {

// The tables that have a row for each link.
inline constexpr std::array LINK_TABLES = {"if_base", "if_phy", "if_link", "if_route", "port"};

// One row for each of LINK_TABLES, in that order.
Rows LinkRows(const Link& link);

// The rows of "am_ipv4_address": one for each interface that has an address.
Rows AddressRows(const std::vector<Address>& addresses);

// The key of an interface's row of addresses.
standin::Row AddressKey(uint32_t interface);

}  // namespace sources
