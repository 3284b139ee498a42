// Building blocks that modules call directly: an interface's address record, one item of its list,
// and the main address, selected by an item type other than 6.
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/ipv4_address.h>

#include "db/access.h"
#include "ifm/ipv4_address_list.h"

using namespace qrb;

namespace {

// Opens a session and makes an interface's record its current one. After a failure *session may be
// open.
uint32_t OpenRecord(const char* function, ORM_SESSION* session, const uint32_t* key)
{
    uint32_t ret = OrmOpenSessionByDefault(session);
    if (ret != OK) {
        QRB_ERROR_AT(function, "get main ipv4 addr create db session fail, ret=%u\n", ret);
        return ret;
    }
    ret = OrmPrepare(*session, ADDRESS_TABLE, QRB_ORM_OP_READ);
    if (ret != OK) {
        QRB_ERROR_AT(function, "get main ipv4 addr prepare %s fail, ret=%u\n", ADDRESS_TABLE, ret);
        return ret;
    }
    ret = OrmgAmIpv4AddressSetKeyPrimaryKeyInner(*session, key, sizeof(*key));
    if (ret == OK) {
        ret = OrmExecute(*session);
    }
    if (ret != OK) {
        QRB_ERROR_AT(function, "get main ipv4 addr set primary %s fail, ret=%u\n", ADDRESS_TABLE,
                     ret);
    }
    return ret;
}

// Finds the first readable item that may be the main address. *ret receives the code of the last
// fetch or read.
bool FindMainItem(const char* function, ORM_NODE list, uint32_t count, BDS_IPV4_ADDR_ITEM_S* item,
                  uint32_t* ret)
{
    for (uint32_t index = 0; index < count; index++) {
        ORM_NODE node = 0;
        *item = {};
        *ret = OrmNodeGetItemByIdx(list, index, &node);
        if (*ret != OK) {
            QRB_ERROR_AT(function, "get node item by index fail, ret=%u\n", *ret);
            continue;
        }
        *ret = BDS_IPGetIpv4AddrTblItem(node, item);
        if (*ret != OK) {
            QRB_ERROR_AT(function, "get ipv4 address fail, ret=%u\n", *ret);
            continue;
        }
        if (item->type != TYPE_NEVER_MAIN) {
            return true;
        }
    }
    return false;
}

// Reads the main address from the list of the current record.
uint32_t ReadMainItem(const char* function, ORM_SESSION session, uint32_t ifIndex,
                      BDS_IPV4_ADDR_ITEM_S* item)
{
    ORM_NODE list = 0;
    uint32_t ret = OrmNodeGetChild(session, 0, ADDRESS_LIST, &list);
    if (ret != OK) {
        QRB_ERROR_AT(function, "get main ipv4 get addr list fail ret=%u, ifIndex=%d\n", ret,
                     ifIndex);
        return NONE;
    }
    // If the size query fails, count stays 0; its return code is only logged.
    uint32_t count = 0;
    ret = OrmNodeGetSize(list, &count);
    if (count == 0) {
        QRB_ERROR_AT(function, "get main ipv4 get addr list len is zero ret=%u, ifIndex=%d\n", ret,
                     ifIndex);
        return NONE;
    }
    if (!FindMainItem(function, list, count, item, &ret)) {
        QRB_ERROR_AT(function, "get main ipv4 fail, ret=%u, ifIndex=%d\n", ret, ifIndex);
        return NONE;
    }
    return OK;
}

}  // namespace

uint32_t BDS_IPGetIpv4AddrTblByIfIndex(ORM_SESSION* session, const uint32_t* key)
{
    if (OpenRecord(__func__, session, key) == OK) {
        return OK;
    }
    OrmCloseSession(*session);  // also if it was not opened: the database rejects handle 0
    return NONE;
}

uint32_t BDS_IPGetIpv4AddrTblItem(ORM_NODE item, BDS_IPV4_ADDR_ITEM_S* out)
{
    uint32_t ret = ReadItemField(item, ITEM_ADDRESS, &out->address);
    if (ret != OK) {
        QRB_ERROR("get ipv4 addr item address fail, ret=%u\n", ret);
        return NONE;
    }
    ret = ReadItemField(item, ITEM_MASKLEN, &out->masklen);
    if (ret != OK) {
        QRB_ERROR("get ipv4 addr item masklen fail, ret=%u\n", ret);
        return NONE;
    }
    ret = ReadItemField(item, ITEM_TYPE, &out->type);
    if (ret != OK) {
        QRB_ERROR("get ipv4 addr item type fail, ret=%u\n", ret);
        return NONE;
    }
    return OK;
}

uint32_t BDS_IPGetMainIpByIfIndex(uint32_t ifIndex, uint32_t* address, uint32_t* masklen)
{
    ORM_SESSION session = 0;
    const uint32_t opened = BDS_IPGetIpv4AddrTblByIfIndex(&session, &ifIndex);
    if (opened != OK) {
        QRB_ERROR("get main ipv4 get db session fail ret=%u, ifIndex=%d\n", opened, ifIndex);
        return NONE;
    }
    BDS_IPV4_ADDR_ITEM_S item;
    const uint32_t ret = ReadMainItem(__func__, session, ifIndex, &item);
    if (ret == OK) {
        *address = item.address;
        *masklen = item.masklen;
    }
    OrmCloseSession(session);
    return ret;
}
