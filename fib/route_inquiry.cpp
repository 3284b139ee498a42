// Which next hop, or which next hops, lead to a destination: three scans joined.
#include <tarnd_qrb/route.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr uint8_t SINGLE = 0;
constexpr uint8_t MULTIPLE = 1;

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
