// How entries leave a registry, past the walks that are under way.
#include "event/entries.h"

namespace qrb {

[[gnu::tls_model("initial-exec")]] constinit thread_local WALK_S* walks = nullptr;

void RemoveEntry(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node)
{
    for (WALK_S* walk = walks; walk != nullptr; walk = walk->outer) {
        if (walk->next == node) {
            walk->next = node->next;
        }
    }
    UTIL_LIST_DeleteNode(list, node);
}

void RemoveEntries(UTIL_LIST_S* list)
{
    while (list->head != nullptr) {
        RemoveEntry(list, list->head);
    }
}

}  // namespace qrb
