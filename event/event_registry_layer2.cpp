// Callbacks for layer-2 events: one list for each event.
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/event_registry.h>

#include "event/entry_removal.h"

using namespace qrb;

UTIL_LIST_S g_qrbL2IFEventCallbacks[L2IF_EVT_COUNT] = {};
uint8_t g_isL2IFEvtInited = 0;
constinit const UTIL_LIST_TRAITS_S g_qrbEventHandlerTraits = EntryTraits<L2IF_SH_EVT_CB_S>();

namespace {

// Logs an event id that does not exist.
bool IsEvent(const char* function, uint32_t eventId)
{
    if (eventId >= L2IF_EVT_COUNT) {
        QRB_ERROR_AT(function, "Failed to reg event id=%u\n", eventId);
    }
    return eventId < L2IF_EVT_COUNT;
}

}  // namespace

void L2IF_SH_EvtCbRegTbl_Init()
{
    LockRegistries();
    if (g_isL2IFEvtInited == 0) {
        g_isL2IFEvtInited = 1;
        for (UTIL_LIST_S& list : g_qrbL2IFEventCallbacks) {
            UTIL_LIST_Construct(&list, &g_qrbEventHandlerTraits);
        }
    }
    UnlockRegistries();
}

void L2IF_SH_EvtCbRegTbl_Deinit()
{
    UTIL_LIST_S removed = {};
    LockRegistries();
    for (UTIL_LIST_S& list : g_qrbL2IFEventCallbacks) {
        RemoveEntries(&list, &removed);
    }
    UnlockAndFree(&removed);
}

uint32_t L2IF_SH_EvtCbFuncReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                              L2IF_SH_EVT_CB_FUNC* callback)
{
    L2IF_SH_EvtCbRegTbl_Init();
    if (!IsEvent(__func__, eventId)) {
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
    LockRegistries();
    const uint32_t ret = UTIL_LIST_SortedInsert(&g_qrbL2IFEventCallbacks[eventId], &entry,
                                                L2IF_SH_EventPriorityComparator, 0);
    UnlockRegistries();
    if (ret != OK) {
        QRB_ERROR("Failed to make sorted insert, ret=%d\n", ret);
        return FAIL;
    }
    return OK;
}

uint32_t L2IF_SH_EvtCbFuncUnReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                                L2IF_SH_EVT_CB_FUNC* callback)
{
    if (!IsEvent(__func__, eventId) || pszModuleName == nullptr) {
        return FAIL;
    }
    LockRegistries();
    return RemoveFirstAndUnlock<L2IF_SH_EVT_CB_S>(
        &g_qrbL2IFEventCallbacks[eventId], [&](const L2IF_SH_EVT_CB_S& entry) {
            return entry.pfCallback == callback && entry.priority == priority &&
                   strcmp(entry.moduleName, pszModuleName) == 0;
        });
}

bool L2IF_SH_EventPriorityComparator(const void* existing, const void* added, uint64_t /*context*/)
{
    return static_cast<const L2IF_SH_EVT_CB_S*>(existing)->priority >
           static_cast<const L2IF_SH_EVT_CB_S*>(added)->priority;
}
