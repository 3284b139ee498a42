// Callbacks for interface events and sub-events: the event tree, and registration in it.
#include <algorithm>
#include <cstdarg>
#include <cstdlib>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/event_registry.h>

#include "event/entries.h"
#include "event/interface_tree.h"

using namespace qrb;

IF_EVT_NODE_S g_qrbIFEventCallbacks = {};
uint8_t g_isIFEvtInited = 0;
constinit const UTIL_LIST_TRAITS_S g_qrbBilevelEventHandlerTraits = EntryTraits<IF_EVT_CB_S>();

namespace {

// The events that have sub-events, in the order in which these are built and freed.
constexpr struct {
    uint32_t eventId;
    uint32_t subEvents;
} SHAPE[] = {
    {1, 10}, {2, 13}, {3, 7},  {5, 46}, {7, 55}, {8, 32},  {9, 14}, {11, 3},
    {12, 5}, {52, 2}, {46, 9}, {58, 4}, {66, 2}, {67, 12}, {71, 1}, {74, 1},
};

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

void IF_EvtInit()
{
    if (g_isIFEvtInited != 0) {
        return;
    }
    g_isIFEvtInited = 1;
    memset_s(&g_qrbIFEventCallbacks, sizeof(g_qrbIFEventCallbacks), 0,
             sizeof(g_qrbIFEventCallbacks));
    UTIL_LIST_Construct(&g_qrbIFEventCallbacks.list, &g_qrbBilevelEventHandlerTraits);
    IF_CBF_Create_Child(&g_qrbIFEventCallbacks, IF_EVT_COUNT);
    if (g_qrbIFEventCallbacks.children == nullptr) {
        g_isIFEvtInited = 0;
        return;
    }
    for (const auto& [eventId, subEvents] : SHAPE) {
        IF_CBF_Create_Child(&g_qrbIFEventCallbacks.children[eventId], subEvents);
    }
}

void IF_EvtDeInit()
{
    if (g_isIFEvtInited == 0) {
        return;
    }
    g_isIFEvtInited = 0;
    for (const auto& [eventId, subEvents] : SHAPE) {
        IF_CBF_Free_Child(&g_qrbIFEventCallbacks.children[eventId], subEvents);
    }
    IF_CBF_Free_Child(&g_qrbIFEventCallbacks, IF_EVT_COUNT);
    RemoveEntries(&g_qrbIFEventCallbacks.list);
}

void IF_CBF_Create_Child(IF_EVT_NODE_S* node, uint32_t ulCnt)
{
    if (ulCnt == 0) {
        QRB_ERROR("ulCnt is equal 0 \n");
        return;
    }
    node->children = static_cast<IF_EVT_NODE_S*>(calloc(ulCnt, sizeof(IF_EVT_NODE_S)));
    if (node->children == nullptr) {
        return;
    }
    node->childCount = ulCnt;
    for (uint32_t i = 0; i < ulCnt; ++i) {
        UTIL_LIST_Construct(&node->children[i].list, &g_qrbBilevelEventHandlerTraits);
        node->children[i].parent = node;
    }
}

void IF_CBF_Free_Child(IF_EVT_NODE_S* node, uint32_t count)
{
    const uint32_t emptied = node->children != nullptr ? std::min(count, node->childCount) : 0;
    for (uint32_t i = 0; i < emptied; ++i) {
        node->children[i].parent = nullptr;
        RemoveEntries(&node->children[i].list);
    }
    free(node->children);
    node->children = nullptr;
    node->childCount = 0;
}

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
