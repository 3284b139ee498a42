// Lookup in the interface event tree.
#pragma once

#include <tarnd_qrb/event_registry.h>

namespace qrb {

enum TREE_LOOKUP {
    LIST_FOUND,
    NO_SUCH_EVENT,   // the event or sub-event id does not exist
    NO_CHILD_ARRAY,  // it does, but there was no memory for its node
};

// Finds the list of a sub-event or, with IF_EVT_WHOLE, of an event. Called with the registries
// locked.
inline TREE_LOOKUP FindEventList(uint32_t eventId, uint32_t subId, UTIL_LIST_S** list)
{
    if (eventId >= IF_EVT_COUNT) {
        return NO_SUCH_EVENT;
    }
    if (g_qrbIFEventCallbacks.children == nullptr) {
        return NO_CHILD_ARRAY;
    }
    IF_EVT_NODE_S* node = &g_qrbIFEventCallbacks.children[eventId];
    if (subId != IF_EVT_WHOLE) {
        if (subId >= node->childCount) {
            return NO_SUCH_EVENT;
        }
        if (node->children == nullptr) {
            return NO_CHILD_ARRAY;
        }
        node = &node->children[subId];
    }
    *list = &node->list;
    return LIST_FOUND;
}

}  // namespace qrb
