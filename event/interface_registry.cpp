// Callbacks for interface events and sub-events.
#include <cstdarg>

#include <tarnd_qrb/event_registry.h>

#include "event/entries.h"
#include "event/interface_tree.h"

using namespace qrb;

namespace {

// The list of a sub-event or whole event; null, and logged, where there is none.
UTIL_LIST_S* FindList(const char* function, uint32_t eventId, uint32_t subId)
{
    // An id that no event has is refused as such, with or without a tree.
    if (eventId < IF_EVT_COUNT && g_qrbIFEventCallbacks.children == nullptr) {
        QRB_ERROR_AT(function, "Failed to find event node.\n");
        return nullptr;
    }
    IF_EVT_NODE_S* node = FindEvent(eventId, subId);
    if (node == nullptr) {
        QRB_ERROR_AT(function, "Failed to reg event id=%u, subId=%u\n", eventId, subId);
        return nullptr;
    }
    return &node->list;
}

}  // namespace

uint32_t IF_EvtRegCbf(IF_EVT_CB_FUNC* callback, uint32_t /*unused*/, uint32_t priority,
                      uint32_t idCount, uint32_t eventId, ...)
{
    va_list ids;
    va_start(ids, eventId);
    const uint32_t subId = idCount == IF_EVT_WITH_SUB_EVENT ? va_arg(ids, uint32_t) : IF_EVT_WHOLE;
    va_end(ids);

    IF_EvtInit();
    UTIL_LIST_S* list = FindList(__func__, eventId, subId);
    if (list == nullptr) {
        return FAIL;
    }
    IF_EVT_CB_S entry = {};
    entry.subId = subId;
    entry.pfCallback = callback;
    entry.priority = priority;
    if (UTIL_LIST_SortedInsert(list, &entry, IF_EventPriorityComparator, 0) != OK) {
        QRB_ERROR("Failed to add callback to list.\n");
        return FAIL;
    }
    return OK;
}

uint32_t IF_EvtUnRegCbf(IF_EVT_CB_FUNC* callback, uint32_t /*unused*/, uint32_t idCount,
                        uint32_t eventId, ...)
{
    va_list ids;
    va_start(ids, eventId);
    const uint32_t subId = idCount == IF_EVT_WITH_SUB_EVENT ? va_arg(ids, uint32_t) : IF_EVT_WHOLE;
    va_end(ids);

    UTIL_LIST_S* list = FindList(__func__, eventId, subId);
    if (list == nullptr) {
        return FAIL;
    }
    return RemoveFirst<IF_EVT_CB_S>(list, [&](const IF_EVT_CB_S& entry) {
        return entry.pfCallback == callback && entry.subId == subId;
    });
}

uint32_t IF_INTF_RegEvtCb(uint32_t eventId, uint32_t subId, IF_EVT_CB_FUNC* callback,
                          uint32_t unused, uint32_t priority)
{
    return subId == IF_EVT_WHOLE
               ? IF_EvtRegCbf(callback, unused, priority, IF_EVT_WITHOUT_SUB_EVENT, eventId)
               : IF_EvtRegCbf(callback, unused, priority, IF_EVT_WITH_SUB_EVENT, eventId, subId);
}

uint32_t IF_INTF_UnRegEvtCb(uint32_t eventId, uint32_t subId, IF_EVT_CB_FUNC* callback,
                            uint32_t unused)
{
    return subId == IF_EVT_WHOLE
               ? IF_EvtUnRegCbf(callback, unused, IF_EVT_WITHOUT_SUB_EVENT, eventId)
               : IF_EvtUnRegCbf(callback, unused, IF_EVT_WITH_SUB_EVENT, eventId, subId);
}

bool IF_EventPriorityComparator(const void* existing, const void* added, uint64_t /*context*/)
{
    return static_cast<const IF_EVT_CB_S*>(existing)->priority >
           static_cast<const IF_EVT_CB_S*>(added)->priority;
}
