// Sessions, keyed reads and scans of any table, and literals for scan conditions.
#include <cstdlib>
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/database.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr uint32_t INIT_MODE = 1;
constexpr uint32_t INIT_OPTION = 0;

// Results of QRB_CreatDbSession, which alone returns 0 for failure.
constexpr uint32_t CREATED = 1;
constexpr uint32_t NOT_CREATED = 0;

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

// Delivers records until the end of the table or the limit. *count receives their number.
uint32_t Deliver(ORM_SESSION session, ORM_SCAN scan, const DELIVERY_S& delivery, uint32_t* count)
{
    uint32_t index = 0;
    uint8_t end = 0;
    uint32_t ret = OK;
    while (NextRow(session, scan, &end, &ret)) {
        ret = delivery.onEntry(session, delivery.context, index);
        if (ret != OK) {
            break;
        }
        index++;
        if (index >= delivery.maxCount) {
            break;
        }
    }
    if (ret != OK) {
        QRB_ERROR_AT("QRB_DB_SESSION_ProcessScanEntries", "Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    *count = index;
    return OK;
}

constexpr char LITERAL_PREFIX[] = "0x";

// The prefix, two digits for each byte and the terminating NUL.
constexpr size_t LiteralSize(size_t bytes)
{
    return sizeof(LITERAL_PREFIX) + 2 * bytes;
}

uint32_t AppendBytes(const uint8_t* bytes, size_t size, char* output)
{
    for (size_t i = 0; i < size; i++) {
        char digits[3];
        if (sprintf_s(digits, sizeof(digits), "%02x", bytes[i]) < 0 ||
            strcat_s(output, LiteralSize(size), digits) != 0) {
            return FAIL;
        }
    }
    return OK;
}

}  // namespace

uint32_t QRB_DB_InitOrm()
{
    const uint32_t ret = OrmInit(INIT_MODE, INIT_OPTION);
    if (ret != OK) {
        QRB_ERROR("[Error]: Orm init failed, ret=%d\n", ret);
        return FAIL;
    }
    return OK;
}

uint32_t QRB_CreatDbSession(const char* table, uint32_t operation, ORM_SESSION* session)
{
    if (table == nullptr || session == nullptr) {
        return NOT_CREATED;
    }
    *session = 0;
    if (OrmOpenSessionByDefault(session) != OK) {
        QRB_ERROR("Database error, info: open session failed\n");
        return NOT_CREATED;
    }
    if (OrmPrepare(*session, table, operation) != OK) {
        QRB_ERROR("Database error, info: prepare session failed\n");
        OrmCloseSession(*session);
        *session = 0;
        return NOT_CREATED;
    }
    return CREATED;
}

uint32_t QRB_DB_SESSION_SetKey(ORM_SESSION session, uint32_t operation, const char* table,
                               const void* keyArgument, QRB_SET_KEY_FUNC setKey)
{
    uint32_t ret = OrmPrepare(session, table, operation);
    if (ret != OK) {
        QRB_ERROR("Table: %s prepare failed.", table);
        return ret;
    }
    ret = setKey(session, keyArgument);
    if (ret != OK) {
        QRB_ERROR("Table: %s set key failed.", table);
        return ret;
    }
    ret = OrmExecute(session);
    if (ret != OK) {
        QRB_ERROR("Table: %s execute failed.", table);
    }
    return ret;
}

uint32_t QRB_DB_SESSION_Get(ORM_SESSION session, const char* table, const void* keyArgument,
                            void* output, QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields)
{
    QRB_TRY(QRB_DB_SESSION_SetKey(session, QRB_ORM_OP_READ, table, keyArgument, setKey));
    const uint32_t ret = getFields(session, output);
    if (ret != OK) {
        QRB_ERROR("Table: %s get fields failed.", table);
    }
    return ret;
}

uint32_t QRB_DB_Get(const char* table, const void* keyArgument, void* output,
                    QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields)
{
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != OK) {
        QRB_ERROR("Table: %s open session failed.", table);
        return ret;
    }
    ret = QRB_DB_SESSION_Get(session, table, keyArgument, output, setKey, getFields);
    const uint32_t closed = OrmCloseSession(session);
    return ret != OK ? ret : closed;
}

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

uint32_t QRB_DB_TransStringToHexNumString(const char* text, char* output, int32_t size)
{
    if (size < 0) {
        return FAIL;
    }
    const size_t bytes = static_cast<size_t>(size);
    uint8_t* const work = static_cast<uint8_t*>(calloc(bytes, 1));
    if (work == nullptr) {
        return FAIL;
    }
    memcpy(work, text, strnlen(text, bytes));
    uint32_t ret = FAIL;
    if (strcpy_s(output, LiteralSize(bytes), LITERAL_PREFIX) == 0) {
        ret = AppendBytes(work, bytes, output);
    }
    free(work);
    return ret;
}
