// Next hops of a destination. The forwarding table maps a prefix to a next-hop group, the group
// table a group to next-hop indexes, the next-hop table an index to a next hop.
#include <bit>

#include <tarnd_qrb/route.h>

#include "db/access.h"

using namespace qrb;

namespace {

// The parameter multiple of FIB_ScanNhpGroupNode.
constexpr uint8_t SINGLE = 0;
constexpr uint8_t MULTIPLE = 1;

constexpr char FORWARD_TABLE[] = "Fib.ConfigIpv4Fwd";
constexpr uint32_t FORWARD_DEST_ADDR = 4;
constexpr uint32_t FORWARD_PREFIX_LEN = 5;
constexpr uint32_t FORWARD_NHP_GROUP_ID = 10;
constexpr char GROUP_TABLE[] = "Fib.ConfigNhpGroupNode";
constexpr uint32_t GROUP_NHP_GROUP_ID = 3;
constexpr uint32_t GROUP_PRIMARY_NHP_ID = 5;
constexpr char NEXT_HOP_TABLE[] = "Fib.ConfigNhpStandard";
constexpr uint32_t NEXT_HOP_INDEX = 2;
constexpr uint32_t NEXT_HOP_FIRST_VALUE = 3;
constexpr uint32_t NEXT_HOP_SECOND_VALUE = 4;
constexpr uint8_t HOST_PREFIX_LEN = 32;

struct ROUTE_SCAN_S {
    ORM_SESSION session;
    ORM_SCAN scan;
};

uint32_t PrepareAndStart(const char* table, ROUTE_SCAN_S* scan)
{
    QRB_TRY(OrmPrepare(scan->session, table, QRB_ORM_OP_SCAN));
    return OrmScanStart(scan->session, &scan->scan);
}

// Opens a session and starts a scan, without logging. After a failure nothing is open and both
// handles are 0.
uint32_t Start(const char* table, ROUTE_SCAN_S* scan)
{
    *scan = {};
    if (OrmOpenSessionByDefault(&scan->session) != OK) {
        return FAIL;
    }
    if (PrepareAndStart(table, scan) != OK) {
        OrmCloseSession(scan->session);
        *scan = {};
        return FAIL;
    }
    return OK;
}

void Finish(const ROUTE_SCAN_S& scan)
{
    OrmScanEnd(scan.session, scan.scan);
    OrmCloseSession(scan.session);
}

// Advances the scan. The end of the table is logged like a failure. Inline, because it runs for
// each of up to a million rows.
inline bool Advance(const char* function, const ROUTE_SCAN_S& scan)
{
    uint8_t end = 0;
    const uint32_t ret = OrmScanNext(scan.session, scan.scan, &end);
    if (ret != OK || end != 0) {
        QRB_ERROR_AT(function, "OrmScanNext ret:%u, isEof:%u", ret, end);
        return false;
    }
    return true;
}

bool FindForward(const char* function, const ROUTE_SCAN_S& scan, uint32_t destination,
                 uint32_t* groupId)
{
    const FIB_PREFIX_S probe = {destination, HOST_PREFIX_LEN};
    while (Advance(function, scan)) {
        FIB_PREFIX_S prefix = {};
        uint32_t prefixLen = 0;
        const uint32_t addressRead = ReadField(scan.session, FORWARD_DEST_ADDR, &prefix.address);
        const uint32_t lengthRead = ReadField(scan.session, FORWARD_PREFIX_LEN, &prefixLen);
        if (addressRead != OK || lengthRead != OK) {
            return false;
        }
        prefix.prefixLen = static_cast<uint8_t>(prefixLen);
        if (FIB_AM_PrefixMatch(&prefix, &probe) != 0) {
            ReadField(scan.session, FORWARD_NHP_GROUP_ID, groupId);
            return true;
        }
    }
    return false;
}

// Advances to the next member of a group. False at the end of the table, where *ret is OK, and
// after a failure; both are logged.
bool NextMember(const char* function, const ROUTE_SCAN_S& scan, uint32_t groupId,
                uint32_t* nhpIndex, uint32_t* ret)
{
    uint32_t rowGroupId = 0;
    do {
        uint8_t end = 0;
        *ret = OrmScanNext(scan.session, scan.scan, &end);
        if (*ret != OK || end != 0) {
            QRB_ERROR_AT(function, "OrmScanNext ret:%u, isEof:%u. session: %d, scan: %d", *ret, end,
                         scan.session == 0, scan.scan == 0);
            return false;
        }
        rowGroupId = 0;
        *ret = ReadField(scan.session, GROUP_NHP_GROUP_ID, &rowGroupId);
        if (*ret != OK) {
            QRB_ERROR_AT(function, "Ormg Fib Config Nhp Group Node Get Nhp GroupId ret:%u", *ret);
            return false;
        }
    } while (rowGroupId != groupId);
    *nhpIndex = 0;
    *ret = ReadField(scan.session, GROUP_PRIMARY_NHP_ID, nhpIndex);
    if (*ret != OK) {
        QRB_ERROR_AT(function, "Ormg Fib Config Nhp Group Node Get Primary NhpId ret:%u", *ret);
        return false;
    }
    return true;
}

bool FindNextHop(const char* function, const ROUTE_SCAN_S& scan, uint32_t nhpIndex,
                 FIB_NHP_S* nextHop)
{
    while (Advance(function, scan)) {
        uint32_t rowIndex = 0;
        const uint32_t ret = ReadField(scan.session, NEXT_HOP_INDEX, &rowIndex);
        if (ret != OK) {
            QRB_ERROR_AT(function, "Ormg Fib Config Nhp Standard Get NhpIndex ret:%u", ret);
            return false;
        }
        if (rowIndex == nhpIndex) {
            ReadField(scan.session, NEXT_HOP_FIRST_VALUE, &nextHop->firstValue);
            ReadField(scan.session, NEXT_HOP_SECOND_VALUE, &nextHop->secondValue);
            return true;
        }
    }
    return false;
}

}  // namespace

uint32_t FIB_InquiryRoute(const FIB_KEY_S* pstFibKey, FIB_NHP_S* pstFibNhp)
{
    if (pstFibKey == nullptr || pstFibNhp == nullptr) {
        QRB_ERROR("[FIB Inquiry Route] parameter failed");
        return FAIL;
    }
    uint32_t groupId = 0;
    if (FIB_ScanIp4Forward(pstFibKey->destAddr, &groupId) != OK) {
        QRB_ERROR("[FIB Inquiry Route] FIB ScanIp4Forward failed");
        return FAIL;
    }
    uint32_t nhpIndex = 0;
    uint32_t count = 0;
    if (FIB_ScanNhpGroupNode(groupId, &nhpIndex, SINGLE, &count) != OK) {
        QRB_ERROR("[FIB Inquiry Route] FIB ScanNHPGroupNode single failed");
        return FAIL;
    }
    if (FIB_ScanNhpStd(nhpIndex, &pstFibNhp->firstValue, &pstFibNhp->secondValue) != OK) {
        QRB_ERROR("[FIB Inquiry Route] FIB ScanNhpStd failed");
        return FAIL;
    }
    return OK;
}

uint32_t FIB_InquiryRoutes(const FIB_KEY_S* pstFibKey, FIB_NHP_S* pstFibNhp, uint32_t* count)
{
    if (pstFibKey == nullptr || pstFibNhp == nullptr || count == nullptr || *count == 0) {
        QRB_ERROR("[FIB Inquiry Routes] parameter failed, pstFibKey:%d, pstFibNhp:%d, count:%d",
                  pstFibKey == nullptr, pstFibNhp == nullptr, count == nullptr);
        return FAIL;
    }
    uint32_t groupId = 0;
    if (FIB_ScanIp4Forward(pstFibKey->destAddr, &groupId) != OK) {
        QRB_ERROR("[FIB Inquiry Routes] FIB ScanIp4Forward failed");
        return FAIL;
    }
    uint32_t nhpIndexes[FIB_GROUP_MEMBERS_MAX] = {};
    uint32_t found = 0;
    if (FIB_ScanNhpGroupNode(groupId, nhpIndexes, MULTIPLE, &found) != OK) {
        QRB_ERROR("[FIB Inquiry Routes] FIB ScanNHPGroupNode failed");
        return FAIL;
    }
    if (*count > found) {
        *count = found;
    }
    for (uint32_t i = 0; i < *count; i++) {
        FIB_NHP_S* const nextHop = &pstFibNhp[i];
        if (FIB_ScanNhpStd(nhpIndexes[i], &nextHop->firstValue, &nextHop->secondValue) != OK) {
            QRB_ERROR("[FIB Inquiry Routes] FIB ScanNhpStd all failed");
            return FAIL;
        }
    }
    return OK;
}

uint32_t FIB6_InquiryRe6(const void* /*pstFibKey*/, void* /*pstFibNhp*/)
{
    QRB_ERROR("STUB for %s\n", __func__);
    return OK;
}

uint32_t FIB_AM_PrefixMatch(const FIB_PREFIX_S* prefix, const FIB_PREFIX_S* probe)
{
    // The number of equal leading bits; 32 if the addresses are equal.
    return prefix->prefixLen <= probe->prefixLen &&
                   prefix->prefixLen <= std::countl_zero(prefix->address ^ probe->address)
               ? 1
               : 0;
}

uint32_t FIB_ScanIp4Forward(uint32_t destination, uint32_t* groupId)
{
    ROUTE_SCAN_S scan;
    if (Start(FORWARD_TABLE, &scan) != OK) {
        return FAIL;
    }
    uint32_t foundId = 0;
    const bool found = FindForward(__func__, scan, destination, &foundId);
    *groupId = foundId;
    Finish(scan);
    return found ? OK : NONE;
}

uint32_t FIB_ScanNhpGroupNodeValidate(ORM_SESSION* session, ORM_SCAN* scan)
{
    ROUTE_SCAN_S started;
    const uint32_t ret = Start(GROUP_TABLE, &started);
    *session = started.session;
    *scan = started.scan;
    return ret;
}

uint32_t FIB_ScanNhpGroupNode(uint32_t groupId, uint32_t* nhpIndexes, uint8_t multiple,
                              uint32_t* count)
{
    ROUTE_SCAN_S scan;
    if (FIB_ScanNhpGroupNodeValidate(&scan.session, &scan.scan) != OK) {
        QRB_ERROR("scan nhp group node failed");
        return FAIL;
    }
    bool found = false;
    uint32_t nhpIndex = 0;
    uint32_t ret = OK;
    while (NextMember(__func__, scan, groupId, &nhpIndex, &ret)) {
        found = true;
        if (multiple == SINGLE) {
            nhpIndexes[0] = nhpIndex;
            break;
        }
        if (*count < FIB_GROUP_MEMBERS_MAX) {
            nhpIndexes[(*count)++] = nhpIndex;
        }
    }
    Finish(scan);
    return (found && ret == OK) ? OK : NONE;
}

uint32_t FIB_ScanNhpStd(uint32_t nhpIndex, uint32_t* firstValue, uint32_t* secondValue)
{
    ROUTE_SCAN_S scan;
    if (Start(NEXT_HOP_TABLE, &scan) != OK) {
        return FAIL;
    }
    FIB_NHP_S nextHop = {};
    const bool found = FindNextHop(__func__, scan, nhpIndex, &nextHop);
    *firstValue = nextHop.firstValue;
    *secondValue = nextHop.secondValue;
    Finish(scan);
    return found ? OK : NONE;
}
