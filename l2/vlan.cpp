// State, membership, description and name of VLANs, from "vlan" and "port".
#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/vlan.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr char TABLE[] = "vlan";
constexpr uint32_t FIELD_ID = 2;
constexpr uint32_t FIELD_STATE = 9;
constexpr uint8_t STATE_ACTIVE = 1;

// Results of VLAN_IsVlanActive, VLAN_IsVlanUsed and VLAN_IsPortInVlan.
constexpr uint32_t YES = 0;
constexpr uint32_t NO = 1;

// The only result of a record read after which L2IF_GetPVIDByIfIndex and L2IF_VLAN_GetDescript do
// not write their output.
constexpr uint32_t READ_LEAVES_OUTPUT = 1;

constexpr int32_t NAME_SIZE = 32;                   // bytes of the field "name"
constexpr size_t LITERAL_SIZE = 2 * NAME_SIZE + 3;  // "0x", two digits for each byte, NUL
constexpr size_t CONDITION_SIZE = 131;

bool Contains(const uint8_t (&set)[QRB_MEMBER_SET_SIZE], uint8_t position)
{
    return (set[position / 8] & (0x80 >> position % 8)) != 0;
}

// A missing record is not a failure: it reads as zeros.
bool FailedToRead(uint32_t ret)
{
    return ret != OK && ret != ORM_NO_RECORD;
}

// Reads the record of a VLAN in scope (0, 0).
uint32_t ReadUnscopedVlan(uint16_t vlanId, QRB_VLAN_S* vlan)
{
    return ReadRecord(OrmgVlanReadInner, QRB_VLAN_KEY_S{0, 0, vlanId}, vlan);
}

// A VLAN may have a row in several scopes. Rows with state 0 are skipped; any other state ends the
// search: STATE_ACTIVE at once, the others after one more advance, which has to succeed. *state
// must be 0 before the call.
uint32_t FindState(ORM_SESSION session, ORM_SCAN scan, uint16_t vlanId, uint8_t* state)
{
    uint8_t end = 0;
    uint32_t ret = OK;
    while (NextRow(session, scan, &end, &ret) && *state == 0) {
        uint16_t rowId = 0;
        QRB_TRY(ReadField(session, FIELD_ID, &rowId));
        if (rowId != vlanId) {
            continue;
        }
        QRB_TRY(ReadField(session, FIELD_STATE, state));
        if (*state == STATE_ACTIVE) {
            break;
        }
    }
    return ret;
}

}  // namespace

uint32_t VLAN_IsVlanActive(uint16_t vlanId)
{
    uint8_t state = 0;
    const auto find = [&](ORM_SESSION session, ORM_SCAN scan) {
        return FindState(session, scan, vlanId, &state);
    };
    const uint32_t ret = ScanTable(__func__, IGNORED, TABLE, find);
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

uint8_t VLAN_PortIndex2PortIdx(uint32_t portIndex)
{
    return static_cast<uint8_t>(portIndex >> 8);
}

uint32_t VLAN_IsPortInVlan(uint32_t ifIndex, uint16_t vlanId)
{
    QRB_PORT_S port;
    uint32_t ret = ReadRecord(OrmgPortReadInner, ifIndex, &port);
    if (FailedToRead(ret)) {
        QRB_ERROR("Failed to fetch port status for ifIndex=%u, ret=%d", ifIndex, ret);
        return NO;
    }
    const QRB_VLAN_KEY_S key = {port.vlan_scope0, port.vlan_scope1, vlanId};
    QRB_VLAN_S vlan;
    ret = ReadRecord(OrmgVlanReadInner, key, &vlan);
    if (FailedToRead(ret)) {
        QRB_ERROR("Failed to fetch vlan status for ifIndex=%u, ret=%d", ifIndex, ret);
        return NO;
    }
    const uint8_t position = VLAN_PortIndex2PortIdx(port.port_index);
    if (Contains(vlan.member_bitmap_1, position) || Contains(vlan.member_bitmap_2, position)) {
        return YES;
    }
    QRB_INFO("Read port bitmap %u,%u,%u,%u port is not member of vlan\n", port.vlan_scope0,
             port.vlan_scope1, vlanId, port.port_index);
    return NO;
}

uint32_t BDS_L2IF_VP_PortIsInVlan(uint32_t ifIndex, uint16_t vlanId)
{
    return VLAN_IsPortInVlan(ifIndex, vlanId) == YES ? 1 : 0;
}

uint32_t BDS_L2IF_VP_PortIsInVlanWithTag(uint32_t /*ifIndex*/, uint16_t /*vlanId*/)
{
    QRB_ERROR("STUB for %s\n", __func__);
    return 0;
}

uint32_t L2IF_GetPVIDByIfIndex(uint32_t ifIndex, uint16_t* pvid)
{
    QRB_PORT_S port;
    const uint32_t ret = ReadRecord(OrmgPortReadInner, ifIndex, &port);
    if (ret != READ_LEAVES_OUTPUT) {
        *pvid = port.pvid;
    }
    return ret;
}

uint32_t L2IF_VLAN_GetDescript(uint16_t vlanId, char* description)
{
    QRB_VLAN_S vlan;
    if (ReadUnscopedVlan(vlanId, &vlan) == READ_LEAVES_OUTPUT) {
        return OK;
    }
    const int copied = strcpy_s(description, QRB_VLAN_DESCRIPTION_SIZE, vlan.description);
    if (copied != 0) {
        QRB_ERROR("strcpy_s failed, error = %d\n", copied);
        return FAIL;
    }
    return OK;
}

uint32_t L2IF_SH_VLAN_GetVlanidByName(const char* name, uint16_t* vlanId)
{
    char literal[LITERAL_SIZE] = {};
    if (QRB_DB_TransStringToHexNumString(name, literal, NAME_SIZE) != OK) {
        QRB_ERROR("Trans string to hexadecimal num string failed\n");
        return FAIL;
    }
    char condition[CONDITION_SIZE];
    if (sprintf_s(condition, sizeof(condition), "name = %s", literal) < 0) {
        QRB_ERROR("sprintf_s failed\n");
        return FAIL;
    }
    uint32_t count = 0;
    const uint32_t ret =
        QRB_DB_Scan(TABLE, vlanId, 1, L2IF_DB_ScanVlanId, &count, condition, nullptr);
    if (ret != OK || count == 0) {
        QRB_ERROR("QRB_DB_Scan failed, ret = %u\n", ret);
        return FAIL;
    }
    return OK;
}

uint32_t L2IF_DB_ScanVlanId(ORM_SESSION session, void* vlanId, uint32_t /*index*/)
{
    return ReadField(session, FIELD_ID, static_cast<uint16_t*>(vlanId));
}
