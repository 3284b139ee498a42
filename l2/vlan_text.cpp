// A VLAN's description, by one read of "vlan", and the VLAN with a name, by a scan of it.
#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/vlan.h>

#include "l2/vlan_record.h"

using namespace qrb;

namespace {

constexpr int32_t NAME_SIZE = 32;                   // bytes of the field "name"
constexpr size_t LITERAL_SIZE = 2 * NAME_SIZE + 3;  // "0x", two digits for each byte, NUL
constexpr size_t CONDITION_SIZE = 131;

}  // namespace

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

uint32_t L2IF_DB_ScanVlanId(ORM_SESSION session, void* vlanId, uint32_t /*index*/)
{
    return ReadField(session, VLAN_FIELD_ID, static_cast<uint16_t*>(vlanId));
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
        QRB_DB_Scan(VLAN_TABLE, vlanId, 1, L2IF_DB_ScanVlanId, &count, condition, nullptr);
    if (ret != OK || count == 0) {
        QRB_ERROR("QRB_DB_Scan failed, ret = %u\n", ret);
        return FAIL;
    }
    return OK;
}
