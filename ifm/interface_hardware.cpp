// Where an interface sits and what its hardware is called: slot, port, card and MAC address out of
// "if_phy", and slot numbers as texts.
#include <cstdlib>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

namespace {

uint32_t ReadPhy(const char* function, uint32_t ifIndex, QRB_IF_PHY_S* phy)
{
    const uint32_t ret = ReadRecord(OrmgIfPhyReadInner, ifIndex, phy);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Database error: [%u], info: read if phy failed\n", ret);
    }
    return ret;
}

}  // namespace

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
