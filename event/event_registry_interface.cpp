// Callbacks for interface events and sub-events: the event tree, and registration in it.
#include <algorithm>
#include <cstdarg>
#include <cstdlib>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/event_registry.h>

#include "event/entry_removal.h"
#include "event/interface_event_tree.h"

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

// Logs a lookup that failed.
bool IsFound(const char* function, TREE_LOOKUP lookup, uint32_t eventId, uint32_t subId)
{
    if (lookup == NO_CHILD_ARRAY) {
        QRB_ERROR_AT(function, "Failed to find event node.\n");
    } else if (lookup == NO_SUCH_EVENT) {
        QRB_ERROR_AT(function, "Failed to reg event id=%u, subId=%u\n", eventId, subId);
    }
    return lookup == LIST_FOUND;
}

// The functions below are called with the registries locked.

void CreateChildren(IF_EVT_NODE_S* node, uint32_t count)
{
    node->children = static_cast<IF_EVT_NODE_S*>(calloc(count, sizeof(IF_EVT_NODE_S)));
    if (node->children == nullptr) {
        return;
    }
    node->childCount = count;
    for (uint32_t i = 0; i < count; ++i) {
        UTIL_LIST_Construct(&node->children[i].list, &g_qrbBilevelEventHandlerTraits);
        node->children[i].parent = node;
    }
}

void FreeChildren(IF_EVT_NODE_S* node, uint32_t count, UTIL_LIST_S* removed)
{
    const uint32_t emptied = node->children != nullptr ? std::min(count, node->childCount) : 0;
    for (uint32_t i = 0; i < emptied; ++i) {
        node->children[i].parent = nullptr;
        RemoveEntries(&node->children[i].list, removed);
    }
    free(node->children);
    node->children = nullptr;
    node->childCount = 0;
}

void BuildTree()
{
    if (g_isIFEvtInited != 0) {
        return;
    }
    g_isIFEvtInited = 1;
    memset_s(&g_qrbIFEventCallbacks, sizeof(g_qrbIFEventCallbacks), 0,
             sizeof(g_qrbIFEventCallbacks));
    UTIL_LIST_Construct(&g_qrbIFEventCallbacks.list, &g_qrbBilevelEventHandlerTraits);
    CreateChildren(&g_qrbIFEventCallbacks, IF_EVT_COUNT);
    if (g_qrbIFEventCallbacks.children == nullptr) {
        g_isIFEvtInited = 0;
        return;
    }
    for (const auto& [eventId, subEvents] : SHAPE) {
        CreateChildren(&g_qrbIFEventCallbacks.children[eventId], subEvents);
    }
}

void FreeTree(UTIL_LIST_S* removed)
{
    if (g_isIFEvtInited == 0) {
        return;
    }
    g_isIFEvtInited = 0;
    for (const auto& [eventId, subEvents] : SHAPE) {
        FreeChildren(&g_qrbIFEventCallbacks.children[eventId], subEvents, removed);
    }
    FreeChildren(&g_qrbIFEventCallbacks, IF_EVT_COUNT, removed);
    RemoveEntries(&g_qrbIFEventCallbacks.list, removed);
}

}  // namespace

void IF_EvtInit()
{
    LockRegistries();
    BuildTree();
    UnlockRegistries();
}

void IF_EvtDeInit()
{
    UTIL_LIST_S removed = {};
    LockRegistries();
    FreeTree(&removed);
    UnlockAndFree(&removed);
}

void IF_CBF_Create_Child(IF_EVT_NODE_S* node, uint32_t ulCnt)
{
    if (ulCnt == 0) {
        QRB_ERROR("ulCnt is equal 0 \n");
        return;
    }
    LockRegistries();
    CreateChildren(node, ulCnt);
    UnlockRegistries();
}

void IF_CBF_Free_Child(IF_EVT_NODE_S* node, uint32_t count)
{
    UTIL_LIST_S removed = {};
    LockRegistries();
    FreeChildren(node, count, &removed);
    UnlockAndFree(&removed);
}

uint32_t IF_EvtRegCbf(IF_EVT_CB_FUNC* callback, uint32_t /*unused*/, uint32_t priority,
                      uint32_t idCount, uint32_t eventId, ...)
{
    va_list ids;
    va_start(ids, eventId);
    const uint32_t subId = idCount == IF_EVT_WITH_SUB_EVENT ? va_arg(ids, uint32_t) : IF_EVT_WHOLE;
    va_end(ids);

    IF_EVT_CB_S entry = {};
    entry.subId = subId;
    entry.pfCallback = callback;
    entry.priority = priority;
    UTIL_LIST_S* list = nullptr;
    uint32_t ret = FAIL;
    LockRegistries();
    BuildTree();
    const TREE_LOOKUP lookup = FindEventList(eventId, subId, &list);
    if (lookup == LIST_FOUND) {
        ret = UTIL_LIST_SortedInsert(list, &entry, IF_EventPriorityComparator, 0);
    }
    UnlockRegistries();
    if (IsFound(__func__, lookup, eventId, subId) && ret != OK) {
        QRB_ERROR("Failed to add callback to list.\n");
    }
    return ret;
}

uint32_t IF_EvtUnRegCbf(IF_EVT_CB_FUNC* callback, uint32_t /*unused*/, uint32_t idCount,
                        uint32_t eventId, ...)
{
    va_list ids;
    va_start(ids, eventId);
    const uint32_t subId = idCount == IF_EVT_WITH_SUB_EVENT ? va_arg(ids, uint32_t) : IF_EVT_WHOLE;
    va_end(ids);

    UTIL_LIST_S* list = nullptr;
    LockRegistries();
    const TREE_LOOKUP lookup = FindEventList(eventId, subId, &list);
    if (lookup != LIST_FOUND) {
        UnlockRegistries();
        IsFound(__func__, lookup, eventId, subId);
        return FAIL;
    }
    return RemoveFirstAndUnlock<IF_EVT_CB_S>(list, [&](const IF_EVT_CB_S& entry) {
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
