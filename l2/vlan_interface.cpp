// Conversions between the VLAN id, the name and the interface index of a VLAN interface, by
// "if_base".
#include <cstdlib>
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/vlan_interface.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr uint32_t IF_INDEX_BASE = 10000;  // fixed numbering: interface index minus VLAN id
constexpr uint16_t IF_TYPE_VLAN = 8;
constexpr size_t VLAN_DIGITS_SIZE = 5;  // four digits and a NUL
constexpr size_t PREFIX_MIN = 2;        // characters before the digits
constexpr int DECIMAL = 10;
constexpr char NAME_FORMAT[] = "Vlanif%u";

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

}  // namespace

uint32_t BDS_L2IF_VLAN_GetIfIndexByVlanId(uint16_t vlanId, uint32_t* ifIndex)
{
    if (vlanId == 0 || ifIndex == nullptr) {
        QRB_ERROR("Null value provided\n");
        return FAIL;
    }
    *ifIndex = IF_INDEX_BASE + vlanId;
    return OK;
}

uint32_t BDS_L2_VlanGetIfIndex(uint16_t vlanId, uint32_t* ifIndex)
{
    char name[QRB_IF_NAME_SIZE];
    if (sprintf_s(name, sizeof(name), NAME_FORMAT, vlanId) <= 0) {
        QRB_ERROR("sprintf failed\n");
        return FAIL;
    }
    const uint32_t found = IF_INTF_GetIfIndexByFullName(name);
    *ifIndex = found;
    if (found == NONE) {
        QRB_ERROR("Get if index by ifname failed\n");
        return FAIL;
    }
    return OK;
}

uint32_t BDS_L2IF_VLAN_GetVlanIfIndex(uint16_t vlanId)
{
    char name[QRB_IF_NAME_SIZE];
    if (sprintf_s(name, sizeof(name), NAME_FORMAT, vlanId) <= 0) {
        QRB_INFO("sprintf_s failed, usVlanId = %u\n", vlanId);
        return FAIL;
    }
    return IF_INTF_GetIfIndexByFullName(name);
}

uint32_t BDS_IfnetGetVlanIdByIfName(const char* name, char* output, uint32_t size)
{
    if (name == nullptr || output == nullptr || size == 0) {
        QRB_ERROR("Null value provided\n");
        return FAIL;
    }
    const size_t length = strlen(name);
    size_t head = length;
    while (head > 0 && IsDigit(name[head - 1])) {
        head--;
    }
    const size_t digits = length - head;
    if (digits == 0 || head < PREFIX_MIN || digits + 1 > size) {
        return FAIL;
    }
    const int copied = memcpy_s(output, digits + 1, name + head, digits + 1);
    if (copied != 0) {
        QRB_ERROR("memcpy failed, ret=%d\n", copied);
        return FAIL;
    }
    return OK;
}

uint32_t BDS_IfnetGetVlanIdByIfIndex(uint32_t ifIndex, uint32_t* vlanId)
{
    if (AnyNull(__func__, vlanId)) {
        return FAIL;
    }
    uint16_t type = 0;
    if (ReadFieldByIfIndex(__func__, "if_base", ifIndex, "if_type", &type) != OK) {
        return FAIL;
    }
    if (type != IF_TYPE_VLAN) {
        QRB_ERROR("IfType is not vlan interface");
        return FAIL;
    }
    char name[QRB_IF_NAME_SIZE];
    uint32_t ret = BDS_IfnetGetIfNameByIfIndex(ifIndex, name);
    if (ret != OK) {
        QRB_ERROR("Get ifName by ifIndex fail, ret=%u", ret);
        return FAIL;
    }
    char digits[VLAN_DIGITS_SIZE] = {};
    ret = BDS_IfnetGetVlanIdByIfName(name, digits, sizeof(digits));
    if (ret != OK) {
        QRB_ERROR("Get vlanId by ifName fail, ret=%u", ret);
        return FAIL;
    }
    *vlanId = static_cast<uint32_t>(strtol(digits, nullptr, DECIMAL));
    if (*vlanId == 0) {
        QRB_ERROR("atoi failed, ret=%d\n", 0);
        return FAIL;
    }
    return OK;
}
