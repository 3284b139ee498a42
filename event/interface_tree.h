// Finding one's place in the interface event tree.
#pragma once

#include <tarnd_qrb/event_registry.h>

namespace qrb {

inline IF_EVT_NODE_S* FindChild(const IF_EVT_NODE_S* node, uint32_t id)
{
    return node != nullptr && node->children != nullptr && id < node->childCount
               ? &node->children[id]
               : nullptr;
}

// The node of a sub-event, or of an event as a whole; null where there is none.
inline IF_EVT_NODE_S* FindEvent(uint32_t eventId, uint32_t subId)
{
    IF_EVT_NODE_S* event =
        eventId < IF_EVT_COUNT ? FindChild(&g_qrbIFEventCallbacks, eventId) : nullptr;
    return subId == IF_EVT_WHOLE ? event : FindChild(event, subId);
}

}  // namespace qrb
