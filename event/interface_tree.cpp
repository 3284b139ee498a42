// The interface event tree: its shape, how it is built and taken down.
#include "event/interface_tree.h"

#include <algorithm>
#include <cstdlib>

#include <tarnd_platform/bounded.h>

#include "event/entries.h"

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
