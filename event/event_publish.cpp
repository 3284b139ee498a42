// Publication of layer-2 events and interface notifications.
#include <tarnd_qrb/event_publish.h>

#include "db/probes.h"
#include "event/entry_removal.h"

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
    QRB_PROBE(layer2_event_begin, eventId, data);
    while (ret == OK && NextEntry(&walk, &entry)) {
        UnlockRegistries();
        if (entry.pfCallback != nullptr) {
            QRB_PROBE(callback_begin, reinterpret_cast<const void*>(entry.pfCallback));
            entry.pfCallback(data, value, argument, &word);
            QRB_PROBE(callback_end, reinterpret_cast<const void*>(entry.pfCallback));
        } else {
            QRB_ERROR("Failed to execute callback, moduleName=%s, priority=%u\n", entry.moduleName,
                      entry.priority);
            ret = FAIL;
        }
        LockRegistries();
    }
    EndWalk(&walk);
    UnlockRegistries();
    QRB_PROBE(layer2_event_end, eventId, data);
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
    QRB_PROBE(notification_begin, ulCmd, ulIfIndex);
    // No more calls than there are entries now: a callback that removes and registers itself would
    // otherwise be reached again at the list's end, without limit.
    for (uint64_t left = g_pstIfNotifyFunc.count; left != 0 && NextEntry(&walk, &entry); --left) {
        UnlockRegistries();
        QRB_PROBE(callback_begin, reinterpret_cast<const void*>(entry.pfCallback));
        entry.pfCallback(ulIfIndex, ulCmd, a, b);
        QRB_PROBE(callback_end, reinterpret_cast<const void*>(entry.pfCallback));
        LockRegistries();
    }
    EndWalk(&walk);
    UnlockRegistries();
    QRB_PROBE(notification_end, ulCmd, ulIfIndex);
    return OK;
}
