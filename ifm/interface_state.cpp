// State, location, MAC address and index range of an interface, and functions with constant
// results.
#include <cstdlib>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

namespace {

// Index ranges of 2^24 interfaces each.
constexpr uint32_t AP_TUNNEL_FIRST = 0x60000000;
constexpr uint32_t VAP_FIRST = 0x61000000;
constexpr uint32_t RANGE_LAST = 0x00FFFFFF;  // offset of the last index of a range

uint32_t ReadPhy(const char* function, uint32_t ifIndex, QRB_IF_PHY_S* phy)
{
    const uint32_t ret = ReadRecord(OrmgIfPhyReadInner, ifIndex, phy);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: [%u], info: read if phy failed\n", ret);
    }
    return ret;
}

// For an index below the first of the range, the unsigned difference wraps and is out of range.
uint32_t IsInRange(uint32_t ifIndex, uint32_t first)
{
    return ifIndex - first <= RANGE_LAST ? 1 : 0;
}

}  // namespace

uint32_t IF_INTF_GetIfLineState(uint32_t ifIndex, uint32_t* state)
{
    if (AnyNull(__func__, state)) {
        return FAIL;
    }
    QRB_IF_LINK_S link;
    uint32_t ret = ReadRecord(OrmgIfLinkReadInner, ifIndex, &link);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    QRB_IF_ROUTE_S route;
    ret = ReadRecord(OrmgIfRouteReadInner, ifIndex, &route);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    const bool up = route.route_state != 0 && link.link_state != 0;
    *state = up ? QRB_IF_STATE_UP : QRB_IF_STATE_DOWN;
    return OK;
}

uint32_t BDS_IfnetGetLineState(uint32_t ifIndex, uint32_t* state)
{
    return IF_INTF_GetIfLineState(ifIndex, state);
}

uint32_t IF_INTF_GetIfLinkState(uint32_t ifIndex, uint32_t* state)
{
    constexpr uint8_t LINK_UP = 1;

    if (AnyNull(__func__, state)) {
        return FAIL;
    }
    QRB_IF_LINK_S link;
    const uint32_t ret = ReadRecord(OrmgIfLinkReadInner, ifIndex, &link);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    *state = link.link_state == LINK_UP ? QRB_IF_STATE_UP : QRB_IF_STATE_DOWN;
    return OK;
}

uint32_t BDS_IfnetGetLinkState(uint32_t ifIndex, uint32_t* state)
{
    return IF_INTF_GetIfLinkState(ifIndex, state);
}

uint32_t BDS_IfnetGetIfPhyState(uint32_t ifIndex, uint8_t* state)
{
    return ReadFieldByIfIndex(__func__, "if_phy", ifIndex, "phy_state", state) == OK ? OK : FAIL;
}

uint32_t BDS_IfnetIsSwitchPort(uint32_t ifIndex)
{
    QRB_PORT_S port;
    const uint32_t ret = ReadRecord(OrmgPortReadInner, ifIndex, &port);
    if (ret != OK && ret != ORM_NO_RECORD) {
        QRB_ERROR("Failed to fetch port status for ifIndex=%u, ret=%d", ifIndex, ret);
        return 0;
    }
    return port.switch_port != 0 ? 1 : 0;
}

uint32_t IF_INTF_GetSlotByIndex(uint32_t ifIndex)
{
    QRB_IF_PHY_S phy;
    return ReadPhy(__func__, ifIndex, &phy) == OK ? phy.slot_id : NONE;
}

uint32_t IF_INTF_GetPortByIndex(uint32_t ifIndex)
{
    QRB_IF_PHY_S phy;
    return ReadPhy(__func__, ifIndex, &phy) == OK ? phy.port_id : NONE;
}

uint32_t BDS_IfnetGetCardByIfIndex(uint32_t ifIndex, uint32_t* card)
{
    if (AnyNull(__func__, card)) {
        return FAIL;
    }
    QRB_IF_PHY_S phy;
    const uint32_t ret = ReadRecord(OrmgIfPhyReadInner, ifIndex, &phy);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch if_phy, ret=%d\n", ret);
        return FAIL;
    }
    *card = phy.port_id;
    return OK;
}

uint32_t BDS_IfnetGetIfMacByIfIndex(uint32_t ifIndex, uint8_t* mac)
{
    if (AnyNull(__func__, mac)) {
        return FAIL;
    }
    QRB_IF_PHY_S phy;
    const uint32_t ret = ReadRecord(OrmgIfPhyReadInner, ifIndex, &phy);
    if (ret != OK) {
        QRB_INFO("get if_phy orm read ifIndex[%d] failed, ret = %d.\n", ifIndex, ret);
        return FAIL;
    }
    const int copied = memcpy_s(mac, QRB_MAC_SIZE, phy.mac_addr, sizeof(phy.mac_addr));
    if (copied != 0) {
        QRB_INFO("memcpy for macaddr failed, ret = %d.\n", copied);
        return FAIL;
    }
    return OK;
}

uint32_t IF_GetMacAddrByIfIndex(uint32_t ifIndex, uint8_t* mac)
{
    return BDS_IfnetGetIfMacByIfIndex(ifIndex, mac);
}

uint32_t IF_GetSlotStrBySlotId(int32_t slotId, char* output)
{
    char text[QRB_SLOT_TEXT_SIZE] = {};
    if (sprintf_s(text, sizeof(text), "%d", slotId) == -1) {
        QRB_ERROR("sprintf_s failed\n");
        return FAIL;
    }
    if (strcpy_s(output, QRB_SLOT_TEXT_SIZE, text) != 0) {
        QRB_ERROR("strcpy_s failed\n");
        return FAIL;
    }
    return OK;
}

uint32_t BDS_IfnetGetSlotIdBySlotStr(const char* text)
{
    constexpr int DECIMAL = 10;

    if (AnyNull(__func__, text)) {
        return FAIL;
    }
    char slot[QRB_SLOT_TEXT_SIZE] = {};
    if (strcpy_s(slot, sizeof(slot), text) != 0) {
        QRB_ERROR("strcpy_s failed\n");
        return FAIL;
    }
    return static_cast<uint32_t>(strtol(slot, nullptr, DECIMAL));
}

uint32_t IF_INIF_IsVapByIfIndex(uint32_t ifIndex)
{
    return IsInRange(ifIndex, VAP_FIRST);
}

uint32_t IF_INIF_IsAPtunnleByIfIndex(uint32_t ifIndex)
{
    return IsInRange(ifIndex, AP_TUNNEL_FIRST);
}

uint32_t IF_INTF_GetSlotByIfName(const char* /*ifName*/)
{
    return 0;
}

uint32_t IF_INTF_IsTempIf(uint32_t /*ifIndex*/)
{
    QRB_ERROR("STUB for %s\n", __func__);
    return 0;
}

uint32_t BDS_TrunkIsPortInTrunk(uint32_t /*ifIndex*/)
{
    return 0;
}

uint32_t BDS_TrunkGetTrunkIndex(uint32_t /*ifIndex*/, uint32_t* /*trunkIndex*/)
{
    return FAIL;
}

uint32_t BDS_IfnetIsL3IF(uint32_t /*ifIndex*/)
{
    return 0;
}

uint32_t BDS_QINQ_INTF_GetEthType(uint32_t /*ifIndex*/, uint16_t* /*etherType*/)
{
    return FAIL;
}
