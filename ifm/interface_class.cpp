// What needs no database: the classes that follow from an interface index, and the fixed answers.
#include <tarnd_qrb/interface_state.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr uint32_t AP_TUNNEL_FIRST = 0x60000000;
constexpr uint32_t VAP_FIRST = 0x61000000;
constexpr uint32_t LAST_IN_CLASS = 0x00FFFFFF;  // counted from the first

// Below the first the difference wraps to a large number.
uint32_t IsInClass(uint32_t ifIndex, uint32_t first)
{
    return ifIndex - first <= LAST_IN_CLASS ? 1 : 0;
}

}  // namespace

uint32_t IF_INIF_IsVapByIfIndex(uint32_t ifIndex)
{
    return IsInClass(ifIndex, VAP_FIRST);
}

uint32_t IF_INIF_IsAPtunnleByIfIndex(uint32_t ifIndex)
{
    return IsInClass(ifIndex, AP_TUNNEL_FIRST);
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
