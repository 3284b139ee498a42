// Building blocks of queries: keyed reads, sessions and scans.
//
// A helper that logs takes the name of the exported function that it logs for: messages carry that
// name, and __func__ would be the helper's own.
#pragma once

#include <cstdint>

#include <tarnd_platform/orm.h>
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/log.h>

#define QRB_ERROR(...) QRB_ERROR_AT(__func__, __VA_ARGS__)
#define QRB_WARN(...) Tarn_QRB_Log_Printf(::qrb::PRIORITY_WARNING, __func__, __LINE__, __VA_ARGS__)
#define QRB_INFO(...) QRB_INFO_AT(__func__, __VA_ARGS__)
#define QRB_ERROR_AT(function, ...) \
    Tarn_QRB_Log_Printf(::qrb::PRIORITY_ERROR, function, __LINE__, __VA_ARGS__)
#define QRB_INFO_AT(function, ...) \
    Tarn_QRB_Log_Printf(::qrb::PRIORITY_INFO, function, __LINE__, __VA_ARGS__)

// Returns the code of a failing step from the enclosing function.
#define QRB_TRY(step)                     \
    do {                                  \
        const uint32_t qrbTried = (step); \
        if (qrbTried != 0) {              \
            return qrbTried;              \
        }                                 \
    } while (0)

namespace qrb {

inline constexpr uint32_t PRIORITY_ERROR = 3;
inline constexpr uint32_t PRIORITY_WARNING = 4;
inline constexpr uint32_t PRIORITY_INFO = 6;

inline constexpr uint32_t OK = 0;
inline constexpr uint32_t FAIL = 1;  // of status functions, for every failure
inline constexpr uint32_t NONE = QRB_VALUE_NONE;

// Whether a failure to end the scan or to close the session fails the query.
enum CHECK { CHECKED, IGNORED };

// Returns whether any of the pointers is null, and logs it.
template <typename... Pointer>
bool AnyNull(const char* function, Pointer... pointer)
{
    const bool anyNull = (... || (pointer == nullptr));
    if (anyNull) {
        QRB_ERROR_AT(function, "Null value provided\n");
    }
    return anyNull;
}

// Reads one field of the current record by number.
template <typename Value>
uint32_t ReadField(ORM_SESSION session, uint32_t field, Value* value)
{
    return OrmGetFieldById(session, field, value, sizeof(*value));
}

// Reads one field of a list item by number.
template <typename Value>
uint32_t ReadItemField(ORM_NODE item, uint32_t field, Value* value)
{
    return OrmNodeGetFieldById(item, field, value, sizeof(*value));
}

// Reads all fields of the current record. The record is zeroed first: fields that the accessor does
// not write are 0.
template <typename Accessor, typename Record>
uint32_t ReadCurrent(Accessor* getAllFields, ORM_SESSION session, Record* record)
{
    *record = {};
    return getAllFields(session, record, sizeof(*record));
}

// Reads the record with this key, without a session. The record is zeroed first: a missing one
// reads as zeros.
template <typename Accessor, typename Key, typename Record>
uint32_t ReadRecord(Accessor* read, const Key& key, Record* record)
{
    *record = {};
    return read(&key, sizeof(key), record, sizeof(*record));
}

// Calls body(session) with a session of its own, and closes the session on every path. body returns
// 0 or the first failing code, which is logged after the close.
template <typename Body>
uint32_t InSession(const char* function, CHECK close, Body&& body)
{
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", ret);
        return ret;
    }
    ret = body(session);
    const uint32_t closed = OrmCloseSession(session);
    if (ret != OK) {
        QRB_ERROR_AT(function, "DB error: %d\n", ret);
    } else if (close == CHECKED && closed != OK) {
        QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", closed);
        ret = closed;
    }
    return ret;
}

// Advances a scan. True: the next row is the current record. False: *ret is OK at the end of the
// table, and the code of a failure otherwise. *end must be 0 before the first call; the database
// sets it.
inline bool NextRow(ORM_SESSION session, ORM_SCAN scan, uint8_t* end, uint32_t* ret)
{
    *ret = OrmScanNext(session, scan, end);
    return *ret == OK && *end == 0;
}

// Calls body(session, scan) with a started scan of a table. Ends the scan and closes the session on
// every path. body returns 0 or the first failing code, which is logged after the close.
template <typename Body>
uint32_t ScanTable(const char* function, CHECK check, const char* table, Body&& body)
{
    return InSession(function, check, [&](ORM_SESSION session) -> uint32_t {
        ORM_SCAN scan = 0;
        QRB_TRY(OrmPrepare(session, table, QRB_ORM_OP_SCAN));
        QRB_TRY(OrmScanStart(session, &scan));
        const uint32_t ret = body(session, scan);
        const uint32_t ended = OrmScanEnd(session, scan);
        return (ret == OK && check == CHECKED) ? ended : ret;
    });
}

// Reads one field, by name, of an interface's record in a table keyed by interface index.
template <typename Value>
uint32_t ReadFieldByIfIndex(const char* function, const char* table, uint32_t ifIndex,
                            const char* field, Value* value)
{
    return InSession(function, CHECKED, [&](ORM_SESSION session) -> uint32_t {
        QRB_TRY(OrmPrepare(session, table, QRB_ORM_OP_READ));
        QRB_TRY(OrmSetKeyName(session, "primary_key"));
        QRB_TRY(OrmSetIndexKeyValue(session, 0, QRB_KEY_TYPE_U32, &ifIndex, sizeof(ifIndex)));
        QRB_TRY(OrmExecute(session));
        return OrmGetField(session, field, value, sizeof(*value));
    });
}

}  // namespace qrb
