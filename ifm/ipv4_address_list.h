// The list of addresses inside an interface's "am_ipv4_address" record, and the walk over it.
#pragma once

#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/ipv4_address.h>

#include "db/access.h"

namespace qrb {

inline constexpr char ADDRESS_TABLE[] = "am_ipv4_address";
inline constexpr char ADDRESS_LIST[] = "ipv4_address_list";

// Fields of the record and of a list item.
inline constexpr uint32_t RECORD_IF_INDEX = 0;
inline constexpr uint32_t RECORD_INSTANCE_ID = 1;
inline constexpr uint32_t ITEM_ADDRESS = 0;
inline constexpr uint32_t ITEM_MASKLEN = 1;
inline constexpr uint32_t ITEM_TYPE = 2;

inline constexpr uint8_t TYPE_MAIN = 1;
inline constexpr uint8_t TYPE_NEVER_MAIN = 6;

// The leading one bits. A shift by a word's own width is undefined, so 32 and above stand apart.
constexpr uint32_t MaskOfLength(uint32_t masklen)
{
    return masklen < 32 ? ~(UINT32_MAX >> masklen) : UINT32_MAX;
}

// Prepares the keyed read of an interface's record; OrmExecute performs it.
inline uint32_t PrepareAddressRecord(ORM_SESSION session, uint32_t ifIndex)
{
    QRB_TRY(OrmPrepare(session, ADDRESS_TABLE, QRB_ORM_OP_READ));
    return OrmgAmIpv4AddressSetKeyPrimaryKeyInner(session, &ifIndex, sizeof(ifIndex));
}

// The list of the current record. *count is 0 beforehand.
inline uint32_t GetAddressList(ORM_SESSION session, ORM_NODE* list, uint32_t* count)
{
    QRB_TRY(OrmNodeGetChild(session, 0, ADDRESS_LIST, list));
    return OrmNodeGetSize(*list, count);
}

// Hands the items of the current record's list to onItem(item, index, &done), in order, until one
// fails or sets done.
template <typename OnItem>
uint32_t WalkAddresses(ORM_SESSION session, OnItem&& onItem)
{
    ORM_NODE list = 0;
    uint32_t count = 0;
    QRB_TRY(GetAddressList(session, &list, &count));
    bool done = false;
    for (uint32_t index = 0; index < count && !done; index++) {
        ORM_NODE item = 0;
        QRB_TRY(OrmNodeGetItemByIdx(list, index, &item));
        QRB_TRY(onItem(item, index, &done));
    }
    return OK;
}

// The same walk over an interface's addresses ...
template <typename OnItem>
uint32_t WalkAddressesOf(ORM_SESSION session, uint32_t ifIndex, OnItem&& onItem)
{
    QRB_TRY(PrepareAddressRecord(session, ifIndex));
    QRB_TRY(OrmExecute(session));
    return WalkAddresses(session, onItem);
}

// ... in a session of its own.
template <typename OnItem>
uint32_t WalkAddressesOf(const char* function, uint32_t ifIndex, OnItem&& onItem)
{
    return InSession(function, CHECKED, [&](ORM_SESSION session) {
        return WalkAddressesOf(session, ifIndex, onItem);
    });
}

// Address and prefix length of an item, each written as soon as it is read.
inline uint32_t ReadAddress(ORM_NODE item, SYSAPI_IP4_ADDR_S* address)
{
    uint8_t masklen = 0;
    QRB_TRY(ReadItemField(item, ITEM_ADDRESS, &address->address));
    QRB_TRY(ReadItemField(item, ITEM_MASKLEN, &masklen));
    address->masklen = masklen;
    return OK;
}

}  // namespace qrb
