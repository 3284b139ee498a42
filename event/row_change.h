// Steps shared by the change detection of all tables: fetching a delivery's messages, classifying
// them, and extracting their rows.
#pragma once

#include <tarnd_platform/orm_subscription.h>

#include "db/access.h"

namespace qrb {

// Moves to the next message. Returns false at the end of the delivery and, logged, after a failure.
inline bool FetchNext(const char* function, ORM_MESSAGE message)
{
    uint8_t end = 0;
    const uint32_t ret = OrmSubFetchNext(message, &end);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", ret);
    }
    return ret == OK && end == 0;
}

// Whether the current message inserts a row. Each message of a delivery of replacements is
// classified on its own: without an old row it is an insertion.
inline bool IsInsertion(ORM_MESSAGE message, uint32_t eventType)
{
    return eventType == ORM_EVENT_INSERT ||
           (eventType == ORM_EVENT_REPLACE && OrmSubExtractData(message, ORM_OBJECT_OLD, 0) != OK);
}

// Reads one object of the current message, with the table's accessor for all fields.
template <typename Accessor, typename Row>
uint32_t ExtractRow(const char* function, ORM_MESSAGE message, uint32_t object,
                    Accessor* getAllFields, Row* row)
{
    uint32_t ret = OrmSubExtractData(message, object, 0);
    if (ret == OK) {
        ret = ReadCurrent(getAllFields, message, row);
    }
    if (ret != OK) {
        QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    return OK;
}

// Change of a state that is 0 or 1. A change from or to any other value is ignored.
enum TRANSITION { UNCHANGED, ROSE, FELL };

inline TRANSITION TransitionOf(uint8_t oldState, uint8_t newState)
{
    if (oldState == 0 && newState == 1) {
        return ROSE;
    }
    if (oldState == 1 && newState == 0) {
        return FELL;
    }
    return UNCHANGED;
}

}  // namespace qrb
