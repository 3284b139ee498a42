#include "by_hand.h"

#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/records.h>

namespace by_hand {

uint32_t IF_INTF_GetIfNameByIfIndex(char* output, uint32_t ifIndex)
{
    QRB_IF_BASE_S base;
    memset(&base, 0, sizeof(base));
    if (OrmgIfBaseReadInner(&ifIndex, sizeof(ifIndex), &base, sizeof(base)) != 0) {
        return 1;
    }
    return strcpy_s(output, QRB_IF_NAME_SIZE, base.if_name) == 0 ? 0 : 1;
}

uint32_t BDS_IfnetGetIfPhyState(uint32_t ifIndex, uint8_t* state)
{
    ORM_SESSION session = 0;
    if (OrmOpenSessionByDefault(&session) != 0) {
        return 1;
    }
    const bool read =
        OrmPrepare(session, "if_phy", QRB_ORM_OP_READ) == 0 &&
        OrmSetKeyName(session, "primary_key") == 0 &&
        OrmSetIndexKeyValue(session, 0, QRB_KEY_TYPE_U32, &ifIndex, sizeof(ifIndex)) == 0 &&
        OrmExecute(session) == 0 && OrmGetField(session, "phy_state", state, sizeof(*state)) == 0;
    return OrmCloseSession(session) == 0 && read ? 0 : 1;
}

uint32_t IP_GetMask(uint32_t ifIndex, uint32_t address, uint32_t* mask)
{
    ORM_SESSION session = 0;
    ORM_NODE list = 0;
    uint32_t count = 0;
    bool found = false;
    if (OrmOpenSessionByDefault(&session) != 0) {
        return 1;
    }
    bool read = OrmPrepare(session, "am_ipv4_address", QRB_ORM_OP_READ) == 0 &&
                OrmgAmIpv4AddressSetKeyPrimaryKeyInner(session, &ifIndex, sizeof(ifIndex)) == 0 &&
                OrmExecute(session) == 0 &&
                OrmNodeGetChild(session, 0, "ipv4_address_list", &list) == 0 &&
                OrmNodeGetSize(list, &count) == 0;
    for (uint32_t index = 0; read && !found && index < count; index++) {
        ORM_NODE item = 0;
        uint32_t itemAddress = 0;
        uint8_t masklen = 0;
        read = OrmNodeGetItemByIdx(list, index, &item) == 0 &&
               OrmNodeGetFieldById(item, 0, &itemAddress, sizeof(itemAddress)) == 0;
        if (read && itemAddress == address) {
            read = OrmNodeGetFieldById(item, 1, &masklen, sizeof(masklen)) == 0;
            *mask = masklen < 32 ? ~(UINT32_MAX >> masklen) : UINT32_MAX;
            found = true;
        }
    }
    return OrmCloseSession(session) == 0 && read && found ? 0 : 1;
}

uint32_t ACL_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                     uint32_t* groupId)
{
    ORM_SESSION session = 0;
    ORM_SCAN scan = 0;
    uint8_t end = 0;
    char condition[64];
    const int length =
        name != nullptr ? sprintf_s(condition, sizeof(condition),
                                    "vsid = %u and vsysid = %u and acl_name = %s and isipv6 = %u",
                                    vsid, vsysid, name, 0U)
                        : sprintf_s(condition, sizeof(condition),
                                    "vsid = %u and vsysid = %u and acl_number = %u and isipv6 = %u",
                                    vsid, vsysid, aclNumber, 0U);
    if (length <= 0 || OrmOpenSessionByDefault(&session) != 0) {
        return 0;
    }
    bool scanned = OrmPrepare(session, "acl_group", QRB_ORM_OP_SCAN) == 0 &&
                   OrmSetScanCond(session, condition) == 0 && OrmScanStart(session, &scan) == 0;
    if (scanned) {
        scanned = OrmScanNext(session, scan, &end) == 0 &&
                  (end != 0 || OrmGetFieldById(session, 0, groupId, sizeof(*groupId)) == 0);
        scanned = OrmScanEnd(session, scan) == 0 && scanned;
    }
    return OrmCloseSession(session) == 0 && scanned ? 1 : 0;
}

uint32_t FIB_ScanIp4Forward(uint32_t destination, uint32_t* groupId)
{
    ORM_SESSION session = 0;
    ORM_SCAN scan = 0;
    uint8_t end = 0;
    bool found = false;
    if (OrmOpenSessionByDefault(&session) != 0) {
        return 1;
    }
    if (OrmPrepare(session, "Fib.ConfigIpv4Fwd", QRB_ORM_OP_SCAN) == 0 &&
        OrmScanStart(session, &scan) == 0) {
        while (!found && OrmScanNext(session, scan, &end) == 0 && end == 0) {
            uint32_t address = 0;
            uint32_t prefixLen = 0;
            if (OrmGetFieldById(session, 4, &address, sizeof(address)) != 0 ||
                OrmGetFieldById(session, 5, &prefixLen, sizeof(prefixLen)) != 0) {
                break;
            }
            const uint32_t mask = prefixLen == 0 ? 0 : UINT32_MAX << (32 - prefixLen);
            found = ((address ^ destination) & mask) == 0;
        }
        if (found) {
            OrmGetFieldById(session, 10, groupId, sizeof(*groupId));
        }
        OrmScanEnd(session, scan);
    }
    OrmCloseSession(session);
    return found ? 0 : 1;
}

}  // namespace by_hand
