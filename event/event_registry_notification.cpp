// Callbacks for interface notifications: one list.
#include <tarnd_qrb/event_registry.h>

#include "event/entries.h"

using namespace qrb;

UTIL_LIST_S g_pstIfNotifyFunc = {};
uint8_t g_isIFNotifyInited = 0;
constinit const UTIL_LIST_TRAITS_S g_pstIfNotifyFuncHandlerTraits = EntryTraits<IF_NOTIFY_FUNC_S>();

void IF_NotifyFuncRegTbl_Init()
{
    if (g_isIFNotifyInited != 0) {
        return;
    }
    g_isIFNotifyInited = 1;
    UTIL_LIST_Construct(&g_pstIfNotifyFunc, &g_pstIfNotifyFuncHandlerTraits);
}

void IF_NotifyFuncRegTbl_Deinit()
{
    RemoveEntries(&g_pstIfNotifyFunc);
}

uint32_t IF_RegNotifyFunc(uint32_t ulKey, IF_NOTIFY_FUNC* callback)
{
    IF_NotifyFuncRegTbl_Init();
    if (callback == nullptr) {
        return FAIL;
    }
    IF_NOTIFY_FUNC_S entry = {};
    entry.ulKey = ulKey;
    entry.pfCallback = callback;
    if (UTIL_LIST_PushBack(&g_pstIfNotifyFunc, &entry) != OK) {
        QRB_ERROR("Failed to add callback to list.\n");
        return FAIL;
    }
    return OK;
}

uint32_t IF_UnRegNotifyFunc(uint32_t ulKey, IF_NOTIFY_FUNC* callback)
{
    return RemoveFirst<IF_NOTIFY_FUNC_S>(&g_pstIfNotifyFunc, [&](const IF_NOTIFY_FUNC_S& entry) {
        return entry.ulKey == ulKey && entry.pfCallback == callback;
    });
}
