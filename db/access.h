// The shapes that queries are made of: a one-shot read, steps in a session, a scan.
//
// A helper that logs does so on behalf of its caller, which hands its own name over as __func__. A
// lambda, whose __func__ names nobody, takes the name from around it.
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

// Leaves the function with the code of the first failing step; only where the result is such a
// code.
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
inline constexpr uint32_t FAIL = 1;  // every failure of a plain status function
inline constexpr uint32_t NONE = QRB_VALUE_NONE;

// Whether the result of ending a scan or closing a session decides over the query's own.
enum CHECK { CHECKED, IGNORED };

// True, and logged, when a pointer is null.
template <typename... Pointer>
bool AnyNull(const char* function, Pointer... pointer)
{
    const bool anyNull = (... || (pointer == nullptr));
    if (anyNull) {
        QRB_ERROR_AT(function, "Null value provided\n");
    }
    return anyNull;
}

// One field of the current record, by number.
template <typename Value>
uint32_t ReadField(ORM_SESSION session, uint32_t field, Value* value)
{
    return OrmGetFieldById(session, field, value, sizeof(*value));
}

// One field of a list item, by number.
template <typename Value>
uint32_t ReadItemField(ORM_NODE item, uint32_t field, Value* value)
{
    return OrmNodeGetFieldById(item, field, value, sizeof(*value));
}

// The current record whole. It is zeroed first: what the accessor leaves alone reads as zero.
template <typename Accessor, typename Record>
uint32_t ReadCurrent(Accessor* getAllFields, ORM_SESSION session, Record* record)
{
    *record = {};
    return getAllFields(session, record, sizeof(*record));
}

// The one record with this key, without a session. It is zeroed first: an absent record reads as
// zeros.
template <typename Accessor, typename Key, typename Record>
uint32_t ReadRecord(Accessor* read, const Key& key, Record* record)
{
    *record = {};
    return read(&key, sizeof(key), record, sizeof(*record));
}

// Runs body(session) in a session of its own. body answers 0 or the first failing code, which is
// logged here; the session is closed on every path.
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

// Hands each row of a table to onRow(session, &done), in a session of its own, until one fails or
// sets done. The scan ends, and the session is closed, on every path.
template <typename OnRow>
uint32_t ScanTable(const char* function, CHECK check, const char* table, OnRow&& onRow)
{
    return InSession(function, check, [&](ORM_SESSION session) -> uint32_t {
        ORM_SCAN scan = 0;
        QRB_TRY(OrmPrepare(session, table, QRB_ORM_OP_SCAN));
        QRB_TRY(OrmScanStart(session, &scan));
        uint8_t atEnd = 0;
        bool done = false;
        uint32_t ret = OrmScanNext(session, scan, &atEnd);
        while (ret == OK && atEnd == 0 && !done) {
            ret = onRow(session, &done);
            if (ret == OK && !done) {
                ret = OrmScanNext(session, scan, &atEnd);
            }
        }
        const uint32_t ended = OrmScanEnd(session, scan);
        return (ret == OK && check == CHECKED) ? ended : ret;
    });
}

// One field, by name, of the record that an interface has in a table keyed by interface index.
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
