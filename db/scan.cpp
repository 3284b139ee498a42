// The scan of any table: the condition and what is done with each record, callbacks tell.
#include <tarnd_qrb/database.h>

#include "db/access.h"

using namespace qrb;

namespace {

struct DELIVERY_S {
    void*          context;
    uint32_t       maxCount;
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
    uint8_t  end   = 0;
    uint32_t index = 0;
    do {
        QRB_TRY(OrmScanNext(session, scan, &end));
        if (end != 0) {
            break;
        }
        QRB_TRY(delivery.onEntry(session, delivery.context, index));
        index++;
    } while (index < delivery.maxCount);
    *count = index;
    return OK;
}

uint32_t LogAndFail(LOG_SITE_S site, uint32_t ret)
{
    QRB_ERROR_AT(site, "Failed to fetch DB, ret=%d\n", ret);
    return FAIL;
}

}  // namespace

uint32_t QRB_DB_SESSION_Scan(ORM_SESSION session, const char* table, void* context,
                             uint32_t maxCount, QRB_ENTRY_FUNC onEntry, uint32_t* count,
                             const char* condition, QRB_SET_CONDITION_FUNC setCondition)
{
    uint32_t ret = OrmPrepare(session, table, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        return LogAndFail(QRB_HERE, ret);
    }
    ret = SetCondition(session, context, condition, setCondition);
    if (ret != OK) {
        return LogAndFail(QRB_HERE, ret);
    }
    ORM_SCAN scan = 0;
    ret           = OrmScanStart(session, &scan);
    if (ret != OK) {
        return LogAndFail(QRB_HERE, ret);
    }
    uint32_t delivered = 0;
    ret                = Deliver(session, scan, {context, maxCount, onEntry}, &delivered);
    if (ret != OK) {
        LogAndFail({"QRB_DB_SESSION_ProcessScanEntries", __LINE__}, ret);
        OrmScanEnd(session, scan);
        return FAIL;
    }
    ret = OrmScanEnd(session, scan);
    if (ret != OK) {
        return LogAndFail(QRB_HERE, ret);
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
    return InSession(QRB_HERE, CHECKED, scan) == OK ? OK : FAIL;
}
