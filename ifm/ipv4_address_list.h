// Layout of "am_ipv4_address": one record for each interface, with a list of its addresses.
#pragma once

#include <cstdint>

namespace qrb {

inline constexpr char ADDRESS_TABLE[] = "am_ipv4_address";
inline constexpr char ADDRESS_LIST[] = "ipv4_address_list";

// Field numbers of the record and of a list item.
inline constexpr uint32_t RECORD_IF_INDEX = 0;
inline constexpr uint32_t RECORD_INSTANCE_ID = 1;
inline constexpr uint32_t ITEM_ADDRESS = 0;
inline constexpr uint32_t ITEM_MASKLEN = 1;
inline constexpr uint32_t ITEM_TYPE = 2;

inline constexpr uint8_t TYPE_MAIN = 1;
inline constexpr uint8_t TYPE_NEVER_MAIN = 6;

}  // namespace qrb
