// From an event to the callbacks that are registered for it.
#include <tarnd_qrb/event_publish.h>

#include "event/entries.h"
#include "event/interface_tree.h"

using namespace qrb;

namespace {

// False, and logged, before a registry is built.
bool IsBuilt(const char* function, uint8_t flag)
{
    if (flag == 0) {
        QRB_ERROR_AT(function, "Failed to execute callback, it is not inited\n");
    }
    return flag != 0;
}

}  // namespace

uint32_t L2IF_SH_EvtPublishEvent(uint32_t eventId, const void* data, uint32_t value, void* argument)
{
    const char* const here = __func__;
    if (eventId >= L2IF_EVT_COUNT) {
        QRB_ERROR_AT(here, "Failed to publis event id=%u\n", eventId);
        return FAIL;
    }
    if (!IsBuilt(here, g_isL2IFEvtInited)) {
        return FAIL;
    }
    uint64_t word = 0;
    const bool all = WalkEntries<L2IF_SH_EVT_CB_S>(
        g_qrbL2IFEventCallbacks[eventId].head, [&](const L2IF_SH_EVT_CB_S& entry) {
            if (entry.pfCallback == nullptr) {
                QRB_ERROR_AT(here, "Failed to execute callback, moduleName=%s, priority=%u\n",
                             entry.moduleName, entry.priority);
                return false;
            }
            entry.pfCallback(data, value, argument, &word);
            return true;
        });
    return all ? OK : FAIL;
}

uint32_t IF_SH_EvtPublishEventGetEventNode(uint32_t eventId, uint32_t subId,
                                           UTIL_LIST_NODE_S** first, uint64_t* count)
{
    // An id that no event has is refused as such, with or without a tree.
    if (eventId < IF_EVT_COUNT && !IsBuilt(__func__, g_isIFEvtInited)) {
        return FAIL;
    }
    const IF_EVT_NODE_S* node = FindEvent(eventId, subId);
    if (node == nullptr) {
        QRB_ERROR("Failed to publish event id=%u, subId=%u\n", eventId, subId);
        return FAIL;
    }
    *first = node->list.head;
    *count = node->list.count;
    return OK;
}

uint32_t IF_NotifyAll(uint32_t ulIfIndex, uint32_t ulCmd, uint32_t a, uint32_t b)
{
    if (!IsBuilt(__func__, g_isIFNotifyInited)) {
        return FAIL;
    }
    // A callback that registers itself anew would be met again and again: no more calls than there
    // were entries.
    uint64_t left = g_pstIfNotifyFunc.count;
    WalkEntries<IF_NOTIFY_FUNC_S>(g_pstIfNotifyFunc.head, [&](const IF_NOTIFY_FUNC_S& entry) {
        entry.pfCallback(ulIfIndex, ulCmd, a, b);
        return --left != 0;
    });
    return OK;
}
