// Callbacks for interface notifications: one list.
#include <tarnd_qrb/event_registry.h>

#include "event/entry_removal.h"

using namespace qrb;

UTIL_LIST_S g_pstIfNotifyFunc = {};
uint8_t g_isIFNotifyInited = 0;
constinit const UTIL_LIST_TRAITS_S g_pstIfNotifyFuncHandlerTraits = EntryTraits<IF_NOTIFY_FUNC_S>();

void IF_NotifyFuncRegTbl_Init()
{
    LockRegistries();
    if (g_isIFNotifyInited == 0) {
        g_isIFNotifyInited = 1;
        UTIL_LIST_Construct(&g_pstIfNotifyFunc, &g_pstIfNotifyFuncHandlerTraits);
    }
    UnlockRegistries();
}

void IF_NotifyFuncRegTbl_Deinit()
{
    UTIL_LIST_S removed = {};
    LockRegistries();
    RemoveEntries(&g_pstIfNotifyFunc, &removed);
    UnlockAndFree(&removed);
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
    LockRegistries();
    const uint32_t ret = UTIL_LIST_PushBack(&g_pstIfNotifyFunc, &entry);
    UnlockRegistries();
    if (ret != OK) {
        QRB_ERROR("Failed to add callback to list.\n");
        return FAIL;
    }
    return OK;
}

uint32_t IF_UnRegNotifyFunc(uint32_t ulKey, IF_NOTIFY_FUNC* callback)
{
    LockRegistries();
    return RemoveFirstAndUnlock<IF_NOTIFY_FUNC_S>(
        &g_pstIfNotifyFunc, [&](const IF_NOTIFY_FUNC_S& entry) {
            return entry.ulKey == ulKey && entry.pfCallback == callback;
        });
}
