// All of an interface's addresses: their number, the whole list, and what a copy of it answers.
#include <algorithm>
#include <cstdlib>

#include "ifm/address_list.h"

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

}  // namespace

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
