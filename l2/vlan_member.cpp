// A port and its VLANs: membership, from "port" and "vlan", and the default VLAN, from "port".
#include <tarnd_qrb/vlan.h>

#include "l2/vlan_record.h"

using namespace qrb;

namespace {

constexpr uint32_t MEMBER = 0;
constexpr uint32_t NOT_MEMBER = 1;

bool Contains(const uint8_t (&set)[QRB_MEMBER_SET_SIZE], uint8_t position)
{
    return (set[position / 8] & (0x80 >> position % 8)) != 0;
}

bool FailedToRead(uint32_t ret)
{
    return ret != OK && ret != ORM_NO_RECORD;
}

}  // namespace

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
        return NOT_MEMBER;
    }
    const QRB_VLAN_KEY_S key = {port.vlan_scope0, port.vlan_scope1, vlanId};
    QRB_VLAN_S vlan;
    ret = ReadRecord(OrmgVlanReadInner, key, &vlan);
    if (FailedToRead(ret)) {
        QRB_ERROR("Failed to fetch vlan status for ifIndex=%u, ret=%d", ifIndex, ret);
        return NOT_MEMBER;
    }
    const uint8_t position = VLAN_PortIndex2PortIdx(port.port_index);
    if (Contains(vlan.member_bitmap_1, position) || Contains(vlan.member_bitmap_2, position)) {
        return MEMBER;
    }
    QRB_INFO("Read port bitmap %u,%u,%u,%u port is not member of vlan\n", port.vlan_scope0,
             port.vlan_scope1, vlanId, port.port_index);
    return NOT_MEMBER;
}

uint32_t BDS_L2IF_VP_PortIsInVlan(uint32_t ifIndex, uint16_t vlanId)
{
    return VLAN_IsPortInVlan(ifIndex, vlanId) == MEMBER ? 1 : 0;
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
