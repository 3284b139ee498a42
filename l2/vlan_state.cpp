// Whether a VLAN is active, by a scan of "vlan", and whether it exists, by its record.
#include <tarnd_qrb/vlan.h>

#include "l2/vlan_record.h"

using namespace qrb;

namespace {

constexpr uint32_t YES = 0;  // of the VLAN_Is* family
constexpr uint32_t NO = 1;
constexpr uint8_t STATE_ACTIVE = 1;

}  // namespace

// The id may stand in several scopes: a row with state 0 lets the search go on. Any other state
// ends it: 1 at once, the others one row later, so that the advance past them has to succeed too.
uint32_t VLAN_IsVlanActive(uint16_t vlanId)
{
    uint8_t state = 0;
    const auto readState = [&](ORM_SESSION session, bool* done) -> uint32_t {
        *done = state != 0;
        if (*done) {
            return OK;
        }
        uint16_t rowId = 0;
        QRB_TRY(ReadField(session, VLAN_FIELD_ID, &rowId));
        if (rowId == vlanId) {
            QRB_TRY(ReadField(session, VLAN_FIELD_STATE, &state));
            *done = state == STATE_ACTIVE;
        }
        return OK;
    };
    const uint32_t ret = ScanTable(__func__, IGNORED, VLAN_TABLE, readState);
    return (ret == OK && state == STATE_ACTIVE) ? YES : NO;
}

uint32_t BDS_L2IF_VLAN_IsActive(uint16_t vlanId)
{
    return VLAN_IsVlanActive(vlanId) == YES ? 1 : 0;
}

uint32_t VLAN_IsVlanUsed(uint16_t vlanId)
{
    QRB_VLAN_S vlan;
    const uint32_t ret = ReadUnscopedVlan(vlanId, &vlan);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch vlan msg for VlanId =%u, ret =%d", vlanId, ret);
        return NO;
    }
    return YES;
}

uint32_t BDS_L2IF_VLAN_IsUsed(uint16_t vlanId)
{
    return VLAN_IsVlanUsed(vlanId) == YES ? 1 : 0;
}
