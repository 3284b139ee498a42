// The scan of any table: the condition and what is done with each record, callbacks tell.
#include <tarnd_qrb/database.h>

#include "db/access.h"

using namespace qrb;

namespace {

struct DELIVERY_S {
    void* context;
    uint32_t maxCount;
    QRB_ENTRY_FUNC onEntry;
};

uint32_t SetCondition(ORM_SESSION session, void* context, const char* condition,
                      QRB_SET_CONDITION_FUNC setCondition)
{
    if (condition != nullptr) {
        return OrmSetScanCond(session, condition);
    }
    return setCondition != nullptr ? setCondition(session, context) : OK;
}

// Delivers records until the end or the limit; *count receives their number.
uint32_t Deliver(ORM_SESSION session, ORM_SCAN scan, const DELIVERY_S& delivery, uint32_t* count)
{
    const char* const function = "QRB_DB_SESSION_ProcessScanEntries";  // as messages name this step
    uint8_t end = 0;
    uint32_t index = 0;
    do {
        uint32_t ret = OrmScanNext(session, scan, &end);
        if (ret != OK) {
            QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", ret);
            return FAIL;
        }
        if (end != 0) {
            break;
        }
        ret = delivery.onEntry(session, delivery.context, index);
        if (ret != OK) {
            QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", ret);
            return FAIL;
        }
        index++;
    } while (index < delivery.maxCount);
    *count = index;
    return OK;
}

}  // namespace

uint32_t QRB_DB_SESSION_Scan(ORM_SESSION session, const char* table, void* context,
                             uint32_t maxCount, QRB_ENTRY_FUNC onEntry, uint32_t* count,
                             const char* condition, QRB_SET_CONDITION_FUNC setCondition)
{
    uint32_t ret = OrmPrepare(session, table, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    ret = SetCondition(session, context, condition, setCondition);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    ORM_SCAN scan = 0;
    ret = OrmScanStart(session, &scan);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    uint32_t delivered = 0;
    if (Deliver(session, scan, {context, maxCount, onEntry}, &delivered) != OK) {
        OrmScanEnd(session, scan);
        return FAIL;
    }
    ret = OrmScanEnd(session, scan);
    if (ret != OK) {
        QRB_ERROR("Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    if (count != nullptr) {
        *count = delivered;
    }
    return OK;
}

uint32_t QRB_DB_Scan(const char* table, void* context, uint32_t maxCount, QRB_ENTRY_FUNC onEntry,
                     uint32_t* count, const char* condition, QRB_SET_CONDITION_FUNC setCondition)
{
    const auto scan = [&](ORM_SESSION session) {
        return QRB_DB_SESSION_Scan(session, table, context, maxCount, onEntry, count, condition,
                                   setCondition);
    };
    return InSession(__func__, CHECKED, scan) == OK ? OK : FAIL;
}
