// The entries of a registry: walked, and removed past the walks that are under way.
//
// The walks under way on a thread form a chain. Each knows the node that it goes to next; whoever
// removes that node sends the walk one node further, before the node is freed. The node whose
// callback is running is not touched any more. So entries leave a registry through here only.
#pragma once

#include <tarnd_qrb/util_list.h>

#include "db/access.h"

namespace qrb {

// Entries are plain bytes: they own nothing.
template <typename Entry>
constexpr UTIL_LIST_TRAITS_S EntryTraits()
{
    UTIL_LIST_TRAITS_S traits = {};
    traits.elemSize = sizeof(Entry);
    return traits;
}

struct WALK_S {
    UTIL_LIST_NODE_S* next;
    WALK_S* outer;  // the walk out of whose callback this one began
};

// The innermost walk of this thread. Reached without a call and without another library.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local WALK_S* walks;

// Hands the entries from first on to onEntry, until it answers false. Whether it never did.
template <typename Entry, typename OnEntry>
bool WalkEntries(UTIL_LIST_NODE_S* first, OnEntry&& onEntry)
{
    WALK_S walk = {first, walks};
    walks = &walk;
    bool goOn = true;
    while (goOn && walk.next != nullptr) {
        const void* entry = UTIL_LIST_Data(walk.next);
        walk.next = walk.next->next;
        goOn = onEntry(*static_cast<const Entry*>(entry));
    }
    walks = walk.outer;
    return goOn;
}

void RemoveEntry(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node);
void RemoveEntries(UTIL_LIST_S* list);

// Removes the first entry that matches. FAIL where none does.
template <typename Entry, typename Matches>
uint32_t RemoveFirst(UTIL_LIST_S* list, Matches&& matches)
{
    for (UTIL_LIST_NODE_S* node = list->head; node != nullptr; node = node->next) {
        if (matches(*static_cast<const Entry*>(UTIL_LIST_Data(node)))) {
            RemoveEntry(list, node);
            return OK;
        }
    }
    return FAIL;
}

}  // namespace qrb
