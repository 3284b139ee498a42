// Callbacks for layer-2 events: a list for each event.
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/event_registry.h>

#include "event/entries.h"

using namespace qrb;

UTIL_LIST_S g_qrbL2IFEventCallbacks[L2IF_EVT_COUNT] = {};
uint8_t g_isL2IFEvtInited = 0;
constinit const UTIL_LIST_TRAITS_S g_qrbEventHandlerTraits = EntryTraits<L2IF_SH_EVT_CB_S>();

namespace {

// The list of an event; null, and logged, where there is no such event.
UTIL_LIST_S* FindList(const char* function, uint32_t eventId)
{
    if (eventId >= L2IF_EVT_COUNT) {
        QRB_ERROR_AT(function, "Failed to reg event id=%u\n", eventId);
        return nullptr;
    }
    return &g_qrbL2IFEventCallbacks[eventId];
}

}  // namespace

void L2IF_SH_EvtCbRegTbl_Init()
{
    if (g_isL2IFEvtInited != 0) {
        return;
    }
    g_isL2IFEvtInited = 1;
    for (UTIL_LIST_S& list : g_qrbL2IFEventCallbacks) {
        UTIL_LIST_Construct(&list, &g_qrbEventHandlerTraits);
    }
}

void L2IF_SH_EvtCbRegTbl_Deinit()
{
    for (UTIL_LIST_S& list : g_qrbL2IFEventCallbacks) {
        RemoveEntries(&list);
    }
}

uint32_t L2IF_SH_EvtCbFuncReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                              L2IF_SH_EVT_CB_FUNC* callback)
{
    L2IF_SH_EvtCbRegTbl_Init();
    UTIL_LIST_S* list = FindList(__func__, eventId);
    if (list == nullptr) {
        return FAIL;
    }
    L2IF_SH_EVT_CB_S entry = {};
    entry.pfCallback = callback;
    entry.priority = priority;
    const int copied = strcpy_s(entry.moduleName, sizeof(entry.moduleName), pszModuleName);
    if (copied != 0) {
        QRB_ERROR("strcpy_s for pszModuleName failed, ret = %d.\n", copied);
        return FAIL;
    }
    const uint32_t ret = UTIL_LIST_SortedInsert(list, &entry, L2IF_SH_EventPriorityComparator, 0);
    if (ret != OK) {
        QRB_ERROR("Failed to make sorted insert, ret=%d\n", ret);
        return FAIL;
    }
    return OK;
}

uint32_t L2IF_SH_EvtCbFuncUnReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                                L2IF_SH_EVT_CB_FUNC* callback)
{
    UTIL_LIST_S* list = FindList(__func__, eventId);
    if (list == nullptr || pszModuleName == nullptr) {
        return FAIL;
    }
    return RemoveFirst<L2IF_SH_EVT_CB_S>(list, [&](const L2IF_SH_EVT_CB_S& entry) {
        return entry.pfCallback == callback && entry.priority == priority &&
               strcmp(entry.moduleName, pszModuleName) == 0;
    });
}

bool L2IF_SH_EventPriorityComparator(const void* existing, const void* added, uint64_t /*context*/)
{
    return static_cast<const L2IF_SH_EVT_CB_S*>(existing)->priority >
           static_cast<const L2IF_SH_EVT_CB_S*>(added)->priority;
}
