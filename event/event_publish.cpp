// Publication of layer-2 events and interface notifications. Interface events have a source of
// their own, event_publish_interface.cpp.
#include <tarnd_qrb/event_publish.h>

#include "event/registry_walk.h"

using namespace qrb;

uint32_t L2IF_SH_EvtPublishEvent(uint32_t eventId, const void* data, uint32_t value, void* argument)
{
    if (eventId >= L2IF_EVT_COUNT) {
        QRB_ERROR("Failed to publis event id=%u\n", eventId);
        return FAIL;
    }
    LockRegistries();
    if (g_isL2IFEvtInited == 0) {
        UnlockRegistries();
        QRB_ERROR("Failed to execute callback, it is not inited\n");
        return FAIL;
    }
    uint32_t ret = OK;
    uint64_t word = 0;
    WALK_S walk;
    L2IF_SH_EVT_CB_S entry;
    BeginWalk(&walk, &g_qrbL2IFEventCallbacks[eventId]);
    while (ret == OK && NextEntry(&walk, &entry)) {
        UnlockRegistries();
        if (entry.pfCallback != nullptr) {
            entry.pfCallback(data, value, argument, &word);
        } else {
            QRB_ERROR("Failed to execute callback, moduleName=%s, priority=%u\n", entry.moduleName,
                      entry.priority);
            ret = FAIL;
        }
        LockRegistries();
    }
    EndWalk(&walk);
    UnlockRegistries();
    return ret;
}

uint32_t IF_NotifyAll(uint32_t ulIfIndex, uint32_t ulCmd, uint32_t a, uint32_t b)
{
    LockRegistries();
    if (g_isIFNotifyInited == 0) {
        UnlockRegistries();
        QRB_ERROR("Failed to execute callback, it is not inited\n");
        return FAIL;
    }
    WALK_S walk;
    IF_NOTIFY_FUNC_S entry;
    BeginWalk(&walk, &g_pstIfNotifyFunc);
    // No more calls than there are entries now: a callback that removes and registers itself would
    // otherwise be reached again at the list's end, without limit.
    for (uint64_t left = g_pstIfNotifyFunc.count; left != 0 && NextEntry(&walk, &entry); --left) {
        UnlockRegistries();
        entry.pfCallback(ulIfIndex, ulCmd, a, b);
        LockRegistries();
    }
    EndWalk(&walk);
    UnlockRegistries();
    return OK;
}
