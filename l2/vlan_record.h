// What the VLAN queries know of "vlan" beside the record's layout.
#pragma once

#include <cstdint>

#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

namespace qrb {

inline constexpr char VLAN_TABLE[] = "vlan";
inline constexpr uint32_t VLAN_FIELD_ID = 2;
inline constexpr uint32_t VLAN_FIELD_STATE = 9;

// The one result of a record's reader after which the default VLAN and the description stay as the
// caller had them.
inline constexpr uint32_t READ_LEAVES_OUTPUT = 1;

// The record of a VLAN that is known by its id alone.
inline uint32_t ReadUnscopedVlan(uint16_t vlanId, QRB_VLAN_S* vlan)
{
    return ReadRecord(OrmgVlanReadInner, QRB_VLAN_KEY_S{0, 0, vlanId}, vlan);
}

}  // namespace qrb
