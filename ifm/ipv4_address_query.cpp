// Queries over the IPv4 addresses of an interface, and the interface that owns an address.
#include <algorithm>
#include <cstdlib>

#include "ifm/ipv4_address_list.h"

using namespace qrb;

namespace {

// A copy of the list in count elements, zero where they can't be read. Null without memory; the
// caller frees it.
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

uint32_t CountAddresses(ORM_SESSION session, uint32_t ifIndex, uint32_t* count, bool* absent)
{
    QRB_TRY(PrepareAddressRecord(session, ifIndex));
    const uint32_t ret = OrmExecute(session);
    *absent = ret == ORM_NO_RECORD;
    QRB_TRY(ret);
    ORM_NODE list = 0;
    return GetAddressList(session, &list, count);
}

// The interface of the current record goes to *owner if the record, one of this instance, holds the
// address.
uint32_t MatchOwner(ORM_SESSION session, uint32_t address, uint32_t instanceId, uint32_t* owner)
{
    uint32_t ifIndex = 0;
    uint32_t instance = 0;
    QRB_TRY(ReadField(session, RECORD_IF_INDEX, &ifIndex));
    QRB_TRY(ReadField(session, RECORD_INSTANCE_ID, &instance));
    if (instance != instanceId) {
        return OK;
    }
    return WalkAddresses(session, [&](ORM_NODE item, uint32_t, bool* done) -> uint32_t {
        uint32_t itemAddress = 0;
        QRB_TRY(ReadItemField(item, ITEM_ADDRESS, &itemAddress));
        if (itemAddress == address) {
            *owner = ifIndex;
            *done = true;
        }
        return OK;
    });
}

}  // namespace

uint32_t IP_GetMainIpAddr(uint32_t ifIndex, uint32_t* address, uint32_t* masklen)
{
    if (AnyNull(__func__, address, masklen)) {
        return FAIL;
    }
    bool found = false;
    SYSAPI_IP4_ADDR_S main = {};
    const auto isMain = [&](ORM_NODE item, uint32_t, bool* done) -> uint32_t {
        uint8_t type = 0;
        QRB_TRY(ReadItemField(item, ITEM_TYPE, &type));
        found = *done = (type == TYPE_MAIN);
        return found ? ReadAddress(item, &main) : OK;
    };
    if (WalkAddressesOf(__func__, ifIndex, isMain) != OK || !found) {
        return FAIL;
    }
    *address = main.address;
    *masklen = main.masklen;
    return OK;
}

// An interface without a record is no failure: only the read itself finds that, whatever the code
// of another step says, and how the session then closes is no news either.
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
    const auto copy = [&](ORM_NODE item, uint32_t index, bool* done) {
        *done = index + 1 == capacity;
        return ReadAddress(item, &addresses[index]);
    };
    return WalkAddressesOf(__func__, ifIndex, copy) == OK ? OK : FAIL;
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
    const char* const here = __func__;
    bool empty = true;
    const auto take = [&](ORM_NODE item, uint32_t index, bool*) -> uint32_t {
        SYSAPI_IP4_ADDR_S own = {};
        empty = false;
        QRB_TRY(ReadAddress(item, &own));
        const uint32_t mask = MaskOfLength(own.masklen);
        const bool fits = own.address != 0 && ((own.address ^ peer) & mask) == 0;
        if (index == 0 || fits) {
            *address = own.address;
            *masklen = own.masklen;
            *network = own.address & mask;
        }
        return OK;
    };
    const uint32_t ret = InSession(here, CHECKED, [&](ORM_SESSION session) -> uint32_t {
        QRB_TRY(WalkAddressesOf(session, ifIndex, take));
        if (empty) {
            QRB_ERROR_AT(here, "There is no ip address on interface!");
        }
        return OK;
    });
    return ret == OK && !empty ? OK : FAIL;
}

uint32_t IP_GetMask(uint32_t ifIndex, uint32_t address, uint32_t* mask)
{
    if (AnyNull(__func__, mask)) {
        return FAIL;
    }
    bool found = false;
    const auto compare = [&](ORM_NODE item, uint32_t, bool* done) -> uint32_t {
        uint32_t itemAddress = 0;
        QRB_TRY(ReadItemField(item, ITEM_ADDRESS, &itemAddress));
        if (itemAddress == address) {
            uint8_t masklen = 0;
            QRB_TRY(ReadItemField(item, ITEM_MASKLEN, &masklen));
            *mask = MaskOfLength(masklen);
            found = *done = true;
        }
        return OK;
    };
    return WalkAddressesOf(__func__, ifIndex, compare) == OK && found ? OK : FAIL;
}

uint32_t IP_GetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex)
{
    if (AnyNull(__func__, ifIndex)) {
        return FAIL;
    }
    uint32_t owner = NONE;
    const auto match = [&](ORM_SESSION session, bool* done) {
        // A match ends the scan one row later: the advance past it has to succeed too.
        *done = owner != NONE;
        return *done ? OK : MatchOwner(session, address, instanceId, &owner);
    };
    if (ScanTable(__func__, CHECKED, ADDRESS_TABLE, match) != OK) {
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
