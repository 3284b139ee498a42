// Walks over the entries of a registry, and removal of entries during walks.
//
// One lock guards the three registries, with all their lists, tree nodes and flags, and the walks
// over them. It is held for a registration, a removal, or the step of a publication from one
// callback to the next, and never while a callback runs or a line is logged.
//
// A list may therefore change while one of its callbacks runs. All walks are in a global chain:
// removing a node advances the walks whose next node it is, and the removal waits until no other
// thread runs the node's callback. Entries are removed from a registry only by RemoveEntry.
#pragma once

#include <pthread.h>

#include <tarnd_qrb/util_list.h>

#include "db/access.h"

namespace qrb {

extern pthread_mutex_t registryLock;

inline void LockRegistries()
{
    pthread_mutex_lock(&registryLock);
}

inline void UnlockRegistries()
{
    pthread_mutex_unlock(&registryLock);
}

// Entries own no resources: they are copied and freed as bytes.
template <typename Entry>
constexpr UTIL_LIST_TRAITS_S EntryTraits()
{
    UTIL_LIST_TRAITS_S traits = {};
    traits.elemSize = sizeof(Entry);
    return traits;
}

// An active walk, on the stack of the publishing thread.
struct WALK_S {
    UTIL_LIST_NODE_S* next;           // called next; null at the end
    const UTIL_LIST_NODE_S* running;  // its callback runs; null if none does or it was removed
    pthread_t thread;
    WALK_S* other;  // in the chain of all walks
};

// Begins a walk at a list's head. Lock held.
void BeginWalk(WALK_S* walk, const UTIL_LIST_S* list);

// Ends a walk, at the end of its list or before. Lock held.
void EndWalk(WALK_S* walk);

// Set while a removal waits for callbacks to return.
struct REMOVAL_S;
extern REMOVAL_S* waitingRemovals;

// Wakes the waiting removals. Lock held.
void SignalReturn();

// Copies the next entry, since it may be removed while its callback runs, and marks it as running
// until the next call or EndWalk. Returns false at the end of the list. Lock held.
template <typename Entry>
bool NextEntry(WALK_S* walk, Entry* entry)
{
    UTIL_LIST_NODE_S* node = walk->next;
    walk->running = node;
    if (waitingRemovals != nullptr) {
        SignalReturn();
    }
    if (node == nullptr) {
        return false;
    }
    walk->next = node->next;
    *entry = *static_cast<const Entry*>(UTIL_LIST_Data(node));
    return true;
}

// Moves a node from a registry's list to the list of removed ones: no walk goes to it any more.
// Lock held.
void RemoveEntry(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node, UTIL_LIST_S* removed);
void RemoveEntries(UTIL_LIST_S* list, UTIL_LIST_S* removed);

// Waits until no other thread runs the callback of a removed entry, releases the lock, and frees
// the entries. The lock is held on entry and free while this waits.
//
// Does not wait for a callback on a thread that itself waits, directly or through others, for a
// callback of the calling thread: callbacks that remove each other would deadlock.
void UnlockAndFree(UTIL_LIST_S* removed);

// Removes the first entry that matches, and frees it as UnlockAndFree does. Returns FAIL if none
// matches. The lock is held on entry and released.
template <typename Entry, typename Matches>
uint32_t RemoveFirstAndUnlock(UTIL_LIST_S* list, Matches&& matches)
{
    UTIL_LIST_NODE_S* node = list->head;
    while (node != nullptr && !matches(*static_cast<const Entry*>(UTIL_LIST_Data(node)))) {
        node = node->next;
    }
    if (node == nullptr) {
        UnlockRegistries();
        return FAIL;
    }
    UTIL_LIST_S removed = {};
    RemoveEntry(list, node, &removed);
    UnlockAndFree(&removed);
    return OK;
}

}  // namespace qrb
