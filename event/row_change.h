// What the detection of changes in every table is made of: the loop over a delivery's messages, the
// extraction of their rows, and the one kind of change that counts in a state.
#pragma once

#include <algorithm>
#include <initializer_list>

#include <tarnd_platform/orm_subscription.h>

#include "db/access.h"

namespace qrb {

// Moves to the next message. False at the end of the delivery and, logged, where it ends early.
inline bool FetchNext(const char* function, ORM_MESSAGE message)
{
    uint8_t end = 0;
    const uint32_t ret = OrmSubFetchNext(message, &end);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", ret);
    }
    return ret == OK && end == 0;
}

// Whether the delivery goes on after a message.
enum NEXT { NEXT_MESSAGE, END_DELIVERY };

// Hands each message of a delivery to onMessage. The table handles these event types and no other.
template <typename OnMessage>
void ForEachMessage(const char* function, ORM_MESSAGE message, uint32_t eventType,
                    std::initializer_list<uint32_t> handled, OnMessage&& onMessage)
{
    if (std::find(handled.begin(), handled.end(), eventType) == handled.end()) {
        QRB_ERROR_AT(function, "Incorrect type of event type, type=%u\n", eventType);
        return;
    }
    while (FetchNext(function, message) && onMessage() == NEXT_MESSAGE) {
    }
}

// Whether the current message brings a row where there was none. Each message of a delivery of
// replacements answers for itself.
inline bool IsInsertion(ORM_MESSAGE message, uint32_t eventType)
{
    return eventType == ORM_EVENT_INSERT ||
           (eventType == ORM_EVENT_REPLACE && OrmSubExtractData(message, ORM_OBJECT_OLD, 0) != OK);
}

// One object of the current message, whole.
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

// The rows of an update. False, and logged, where one can't be had; name is the table's there.
template <typename Row>
bool ExtractBoth(const char* function, ORM_MESSAGE message, const char* name,
                 uint32_t (*getOld)(ORM_MESSAGE, Row*), Row* oldRow,
                 uint32_t (*getNew)(ORM_MESSAGE, Row*), Row* newRow)
{
    if (getOld(message, oldRow) != OK) {
        QRB_ERROR_AT(function, "Failed to get old orm %s data.\n", name);
        return false;
    }
    if (getNew(message, newRow) != OK) {
        QRB_ERROR_AT(function, "Failed to get new orm %s data.\n", name);
        return false;
    }
    return true;
}

// A change of a state that is 0 or 1. Other values are no state: they neither rise nor fall.
enum TRANSITION { STAYED, ROSE, FELL };

inline TRANSITION TransitionOf(uint8_t oldState, uint8_t newState)
{
    if (oldState == 0 && newState == 1) {
        return ROSE;
    }
    return oldState == 1 && newState == 0 ? FELL : STAYED;
}

}  // namespace qrb
