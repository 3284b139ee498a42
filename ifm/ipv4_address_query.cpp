// Queries over the IPv4 addresses of an interface, and the interface that owns an address. The IPv6
// functions have constant results.
#include <algorithm>
#include <cstdlib>

#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/ipv4_address.h>

#include "db/access.h"
#include "ifm/ipv4_address_list.h"

using namespace qrb;

namespace {

// Shifting a 32-bit word by 32 or more is undefined.
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

// The address list of the current record. *count must be 0 before the call.
inline uint32_t GetAddressList(ORM_SESSION session, ORM_NODE* list, uint32_t* count)
{
    QRB_TRY(OrmNodeGetChild(session, 0, ADDRESS_LIST, list));
    return OrmNodeGetSize(*list, count);
}

// The address list of an interface. *count must be 0 before the call.
inline uint32_t OpenAddressList(ORM_SESSION session, uint32_t ifIndex, ORM_NODE* list,
                                uint32_t* count)
{
    QRB_TRY(PrepareAddressRecord(session, ifIndex));
    QRB_TRY(OrmExecute(session));
    return GetAddressList(session, list, count);
}

// Each output is written as soon as it is read.
inline uint32_t ReadAddress(ORM_NODE item, SYSAPI_IP4_ADDR_S* address)
{
    uint8_t masklen = 0;
    QRB_TRY(ReadItemField(item, ITEM_ADDRESS, &address->address));
    QRB_TRY(ReadItemField(item, ITEM_MASKLEN, &masklen));
    address->masklen = masklen;
    return OK;
}

// Finds the list item with this address.
inline uint32_t FindAddress(ORM_NODE list, uint32_t count, uint32_t address, ORM_NODE* item,
                            bool* found)
{
    for (uint32_t index = 0; index < count; index++) {
        uint32_t itemAddress = 0;
        QRB_TRY(OrmNodeGetItemByIdx(list, index, item));
        QRB_TRY(ReadItemField(*item, ITEM_ADDRESS, &itemAddress));
        if (itemAddress == address) {
            *found = true;
            return OK;
        }
    }
    return OK;
}

// The first address of type TYPE_MAIN.
uint32_t FindMain(ORM_SESSION session, uint32_t ifIndex, SYSAPI_IP4_ADDR_S* main, bool* found)
{
    ORM_NODE list = 0;
    uint32_t count = 0;
    QRB_TRY(OpenAddressList(session, ifIndex, &list, &count));
    for (uint32_t index = 0; index < count; index++) {
        ORM_NODE item = 0;
        uint8_t type = 0;
        QRB_TRY(OrmNodeGetItemByIdx(list, index, &item));
        QRB_TRY(ReadItemField(item, ITEM_TYPE, &type));
        if (type == TYPE_MAIN) {
            *found = true;
            return ReadAddress(item, main);
        }
    }
    return OK;
}

// *absent receives whether the interface has no record. The read alone decides that: other steps
// may fail with the same code.
uint32_t CountAddresses(ORM_SESSION session, uint32_t ifIndex, uint32_t* count, bool* absent)
{
    QRB_TRY(PrepareAddressRecord(session, ifIndex));
    const uint32_t ret = OrmExecute(session);
    *absent = ret == ORM_NO_RECORD;
    QRB_TRY(ret);
    ORM_NODE list = 0;
    return GetAddressList(session, &list, count);
}

// Copies the first addresses, up to the capacity.
uint32_t CopyAddresses(ORM_SESSION session, uint32_t ifIndex, SYSAPI_IP4_ADDR_S* addresses,
                       uint32_t capacity)
{
    ORM_NODE list = 0;
    uint32_t count = 0;
    QRB_TRY(OpenAddressList(session, ifIndex, &list, &count));
    for (uint32_t index = 0; index < count && index < capacity; index++) {
        ORM_NODE item = 0;
        QRB_TRY(OrmNodeGetItemByIdx(list, index, &item));
        QRB_TRY(ReadAddress(item, &addresses[index]));
    }
    return OK;
}

// Allocates count elements with the first addresses; those that cannot be read are zero. Returns
// null if there is no memory. The caller frees the result.
SYSAPI_IP4_ADDR_S* FetchAddresses(const char* function, uint32_t ifIndex, uint32_t count)
{
    auto* const fetched = static_cast<SYSAPI_IP4_ADDR_S*>(calloc(count, sizeof(SYSAPI_IP4_ADDR_S)));
    if (fetched == nullptr) {
        QRB_ERROR_AT(function, "Failed to calloc fetched addrs\n");
        return nullptr;
    }
    const uint32_t ret = SYSAPI_GetIp4AllAddrByIf(ifIndex, fetched, count);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Failed to get all addresses by if, ifIndex=%u, ret=%u\n", ifIndex,
                     ret);
    }
    return fetched;
}

// Outputs of BDS_IPGetIFBestMatchIpAddr.
struct BEST_MATCH_S {
    uint32_t* address;
    uint32_t* masklen;
    uint32_t* network;
};

// The last address whose subnet contains the peer, else the first address. *count receives the
// number of addresses.
uint32_t FindBestMatch(ORM_SESSION session, uint32_t ifIndex, uint32_t peer,
                       const BEST_MATCH_S& best, uint32_t* count)
{
    ORM_NODE list = 0;
    QRB_TRY(OpenAddressList(session, ifIndex, &list, count));
    for (uint32_t index = 0; index < *count; index++) {
        ORM_NODE item = 0;
        SYSAPI_IP4_ADDR_S own = {};
        QRB_TRY(OrmNodeGetItemByIdx(list, index, &item));
        QRB_TRY(ReadAddress(item, &own));
        const uint32_t mask = MaskOfLength(own.masklen);
        const bool matches = own.address != 0 && ((own.address ^ peer) & mask) == 0;
        if (index == 0 || matches) {
            *best.address = own.address;
            *best.masklen = own.masklen;
            *best.network = own.address & mask;
        }
    }
    return OK;
}

// The mask of one of the interface's addresses.
uint32_t FindMask(ORM_SESSION session, uint32_t ifIndex, uint32_t address, uint32_t* mask,
                  bool* found)
{
    ORM_NODE list = 0;
    uint32_t count = 0;
    ORM_NODE item = 0;
    QRB_TRY(OpenAddressList(session, ifIndex, &list, &count));
    QRB_TRY(FindAddress(list, count, address, &item, found));
    if (*found) {
        uint8_t masklen = 0;
        QRB_TRY(ReadItemField(item, ITEM_MASKLEN, &masklen));
        *mask = MaskOfLength(masklen);
    }
    return OK;
}

// Writes the interface index of the current record to *owner if the record belongs to this instance
// and contains the address.
uint32_t MatchOwner(ORM_SESSION session, uint32_t address, uint32_t instanceId, uint32_t* owner)
{
    uint32_t ifIndex = 0;
    uint32_t instance = 0;
    QRB_TRY(ReadField(session, RECORD_IF_INDEX, &ifIndex));
    QRB_TRY(ReadField(session, RECORD_INSTANCE_ID, &instance));
    if (instance != instanceId) {
        return OK;
    }
    ORM_NODE list = 0;
    uint32_t count = 0;
    ORM_NODE item = 0;
    bool found = false;
    QRB_TRY(GetAddressList(session, &list, &count));
    QRB_TRY(FindAddress(list, count, address, &item, &found));
    if (found) {
        *owner = ifIndex;
    }
    return OK;
}

// After a match the scan advances once more, and the query fails if that does. *owner must be NONE
// before the call.
uint32_t FindOwner(ORM_SESSION session, ORM_SCAN scan, uint32_t address, uint32_t instanceId,
                   uint32_t* owner)
{
    uint8_t end = 0;
    uint32_t ret = OK;
    while (NextRow(session, scan, &end, &ret) && *owner == NONE) {
        QRB_TRY(MatchOwner(session, address, instanceId, owner));
    }
    return ret;
}

}  // namespace

uint32_t IP_GetMainIpAddr(uint32_t ifIndex, uint32_t* address, uint32_t* masklen)
{
    if (AnyNull(__func__, address, masklen)) {
        return FAIL;
    }
    SYSAPI_IP4_ADDR_S main = {};
    bool found = false;
    const uint32_t ret = InSession(__func__, CHECKED, [&](ORM_SESSION session) {
        return FindMain(session, ifIndex, &main, &found);
    });
    if (ret != OK || !found) {
        return FAIL;
    }
    *address = main.address;
    *masklen = main.masklen;
    return OK;
}

// For an interface without a record neither the failed read nor a failed close is an error.
uint32_t SYSAPI_GetIp4AddrNumByIf(uint32_t ifIndex)
{
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return 0;
    }
    uint32_t count = 0;
    bool absent = false;
    ret = CountAddresses(session, ifIndex, &count, &absent);
    const uint32_t closed = OrmCloseSession(session);
    if (absent) {
        QRB_WARN("DB error : address count is 0\n");
    } else if (ret != OK) {
        QRB_ERROR("DB error: %d\n", ret);
    } else if (closed != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", closed);
    }
    return count;
}

uint32_t SYSAPI_GetIp4AllAddrByIf(uint32_t ifIndex, SYSAPI_IP4_ADDR_S* addresses, uint32_t capacity)
{
    if (AnyNull(__func__, addresses)) {
        return FAIL;
    }
    if (capacity == 0) {
        QRB_ERROR("Null value provided\n");
        return FAIL;
    }
    const uint32_t ret = InSession(__func__, CHECKED, [&](ORM_SESSION session) {
        return CopyAddresses(session, ifIndex, addresses, capacity);
    });
    return ret == OK ? OK : FAIL;
}

uint32_t BDS_IPIFIsThisIfIpAddr(uint32_t ifIndex, uint32_t address)
{
    const uint32_t count = SYSAPI_GetIp4AddrNumByIf(ifIndex);
    if (count == 0) {
        QRB_ERROR("Interface %d without addresses passed\n", ifIndex);
        return 0;
    }
    SYSAPI_IP4_ADDR_S* const fetched = FetchAddresses(__func__, ifIndex, count);
    if (fetched == nullptr) {
        return 0;
    }
    uint32_t index = 0;
    while (index < count && fetched[index].address != address) {
        index++;
    }
    free(fetched);
    return index < count ? 1 : 0;
}

uint32_t BDS_IPIFGetThisIfIpAddr(uint32_t ifIndex, uint32_t* addresses, uint32_t capacity,
                                 uint32_t* count)
{
    if (AnyNull(__func__, addresses, count)) {
        return FAIL;
    }
    const uint32_t all = SYSAPI_GetIp4AddrNumByIf(ifIndex);
    if (all == 0) {
        *count = 0;
        return OK;
    }
    SYSAPI_IP4_ADDR_S* const fetched = FetchAddresses(__func__, ifIndex, all);
    if (fetched == nullptr) {
        return FAIL;
    }
    const uint32_t copied = std::min(all, capacity);
    for (uint32_t index = 0; index < copied; index++) {
        addresses[index] = fetched[index].address;
    }
    *count = copied;
    free(fetched);
    return OK;
}

uint32_t BDS_IPGetFirstIpByIfIndex(uint32_t ifIndex, uint32_t* address)
{
    if (AnyNull(__func__, address)) {
        return FAIL;
    }
    const uint32_t count = SYSAPI_GetIp4AddrNumByIf(ifIndex);
    if (count == 0) {
        QRB_WARN("Interface %d without addresses passed\n", ifIndex);
        return FAIL;
    }
    SYSAPI_IP4_ADDR_S* const fetched = FetchAddresses(__func__, ifIndex, count);
    if (fetched == nullptr) {
        return FAIL;
    }
    *address = fetched[0].address;
    free(fetched);
    return OK;
}

uint32_t BDS_IPGetIFBestMatchIpAddr(uint32_t ifIndex, uint32_t peer, uint32_t* masklen,
                                    uint32_t* network, uint32_t* address)
{
    if (AnyNull(__func__, masklen, network, address)) {
        return FAIL;
    }
    const char* const function = __func__;
    const BEST_MATCH_S best = {address, masklen, network};
    uint32_t count = 0;
    const uint32_t ret = InSession(function, CHECKED, [&](ORM_SESSION session) -> uint32_t {
        QRB_TRY(FindBestMatch(session, ifIndex, peer, best, &count));
        if (count == 0) {
            QRB_ERROR_AT(function, "There is no ip address on interface!");
        }
        return OK;
    });
    return ret == OK && count != 0 ? OK : FAIL;
}

uint32_t IP_GetMask(uint32_t ifIndex, uint32_t address, uint32_t* mask)
{
    if (AnyNull(__func__, mask)) {
        return FAIL;
    }
    bool found = false;
    const uint32_t ret = InSession(__func__, CHECKED, [&](ORM_SESSION session) {
        return FindMask(session, ifIndex, address, mask, &found);
    });
    return ret == OK && found ? OK : FAIL;
}

uint32_t IP_GetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex)
{
    if (AnyNull(__func__, ifIndex)) {
        return FAIL;
    }
    uint32_t owner = NONE;
    const auto find = [&](ORM_SESSION session, ORM_SCAN scan) {
        return FindOwner(session, scan, address, instanceId, &owner);
    };
    if (ScanTable(__func__, CHECKED, ADDRESS_TABLE, find) != OK) {
        return FAIL;
    }
    *ifIndex = owner;
    return owner != NONE ? OK : FAIL;
}

uint32_t BDS_IPGetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex)
{
    return IP_GetIfindexbyIpAddr(address, instanceId, ifIndex);
}

uint32_t BDS_IPIsLocalIfAddr(uint32_t address, uint32_t instanceId)
{
    uint32_t owner = 0;
    return IP_GetIfindexbyIpAddr(address, instanceId, &owner) == OK ? 1 : 0;
}

uint32_t BDS_IPv6GetValidGlobalAddrByIfIndex(uint32_t /*ifIndex*/, uint8_t* /*address*/)
{
    return FAIL;
}

uint32_t IP6_Addr_GetValidGlobalAddrOnIf(uint32_t /*ifIndex*/, uint8_t* /*address*/)
{
    return OK;
}
