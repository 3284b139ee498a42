// Publication of interface events.
#include "event/event_publish_interface.h"

#include <tarnd_qrb/event_publish.h>

#include "db/probes.h"
#include "event/entry_removal.h"
#include "event/interface_event_tree.h"

using namespace qrb;

namespace {

// Finds the list of a sub-event or event and returns it with the registries locked. Returns null
// with the registries unlocked, and logs, if there is none.
UTIL_LIST_S* LockAndFindList(uint32_t eventId, uint32_t subId)
{
    constexpr char FUNCTION[] = "IF_SH_EvtPublishEventGetEventNode";
    UTIL_LIST_S* list = nullptr;
    LockRegistries();
    const bool isBuilt = g_isIFEvtInited != 0;
    if (isBuilt && FindEventList(eventId, subId, &list) == LIST_FOUND) {
        return list;
    }
    UnlockRegistries();
    if (isBuilt || eventId >= IF_EVT_COUNT) {
        QRB_ERROR_AT(FUNCTION, "Failed to publish event id=%u, subId=%u\n", eventId, subId);
    } else {
        QRB_ERROR_AT(FUNCTION, "Failed to execute callback, it is not inited\n");
    }
    return nullptr;
}

}  // namespace

uint32_t IF_SH_EvtPublishEventGetEventNode(uint32_t eventId, uint32_t subId,
                                           UTIL_LIST_NODE_S** first, uint64_t* count)
{
    const UTIL_LIST_S* list = LockAndFindList(eventId, subId);
    if (list == nullptr) {
        return FAIL;
    }
    *first = list->head;
    *count = list->count;
    UnlockRegistries();
    return OK;
}

void qrb::PublishInterfaceEvent(const char* function, uint32_t eventId, uint32_t subId,
                                uint32_t flag, uint32_t ifIndex, void* first, void* second)
{
    const UTIL_LIST_S* list = LockAndFindList(eventId, subId);
    if (list == nullptr) {
        return;
    }
    WALK_S walk;
    IF_EVT_CB_S entry;
    BeginWalk(&walk, list);
    QRB_PROBE(interface_event_begin, eventId, subId, ifIndex);
    bool isCalled = true;
    while (isCalled && NextEntry(&walk, &entry)) {
        UnlockRegistries();
        isCalled = entry.pfCallback != nullptr;
        if (isCalled) {
            QRB_PROBE(callback_begin, reinterpret_cast<const void*>(entry.pfCallback));
            entry.pfCallback(subId, flag, ifIndex, first, second);
            QRB_PROBE(callback_end, reinterpret_cast<const void*>(entry.pfCallback));
        } else {
            QRB_ERROR_AT(function, "Failed to execute callback, subId=%u, priority=%u\n",
                         entry.subId, entry.priority);
        }
        LockRegistries();
    }
    EndWalk(&walk);
    UnlockRegistries();
    QRB_PROBE(interface_event_end, eventId, subId, ifIndex);
}
