// Active walks, and removals that wait for them.
#include "event/entry_removal.h"

#include "bal/util_list/list_node.h"

namespace qrb {

pthread_mutex_t registryLock = PTHREAD_MUTEX_INITIALIZER;

// A removal that waits for a callback; lives on the stack of the thread that removes.
struct REMOVAL_S {
    pthread_t thread;
    const UTIL_LIST_NODE_S* node;  // the removed entry
    pthread_t awaited;             // the thread that runs its callback
    REMOVAL_S* other;              // in the chain of all waiting removals
};

REMOVAL_S* waitingRemovals = nullptr;

namespace {

WALK_S* walks = nullptr;
pthread_cond_t callbackReturned = PTHREAD_COND_INITIALIZER;

bool IsRunning(const UTIL_LIST_NODE_S* node, pthread_t thread)
{
    const WALK_S* walk = walks;
    while (walk != nullptr && (walk->running != node || pthread_equal(walk->thread, thread) == 0)) {
        walk = walk->other;
    }
    return walk != nullptr;
}

// The removal in which a thread waits for a callback that has not returned yet.
const REMOVAL_S* FindRemoval(pthread_t thread)
{
    const REMOVAL_S* removal = waitingRemovals;
    while (removal != nullptr && (pthread_equal(removal->thread, thread) == 0 ||
                                  !IsRunning(removal->node, removal->awaited))) {
        removal = removal->other;
    }
    return removal;
}

// Whether a thread waits for a callback of another, directly or through further threads. A thread
// waits for one callback at a time, and no wait closes a cycle.
bool WaitsFor(pthread_t thread, pthread_t other)
{
    const REMOVAL_S* removal = FindRemoval(thread);
    while (removal != nullptr && pthread_equal(removal->awaited, other) == 0) {
        removal = FindRemoval(removal->awaited);
    }
    return removal != nullptr;
}

// A walk on another thread that runs the node's callback and may be waited for.
const WALK_S* FindAwaited(const UTIL_LIST_NODE_S* node)
{
    const pthread_t self = pthread_self();
    const WALK_S* walk = walks;
    while (walk != nullptr && (walk->running != node || pthread_equal(walk->thread, self) != 0 ||
                               WaitsFor(walk->thread, self))) {
        walk = walk->other;
    }
    return walk;
}

// Waits, with the registries' lock released, until some callback has returned.
void WaitForReturn(const UTIL_LIST_NODE_S* node, pthread_t awaited)
{
    REMOVAL_S removal = {pthread_self(), node, awaited, waitingRemovals};
    waitingRemovals = &removal;
    pthread_cond_wait(&callbackReturned, &registryLock);
    REMOVAL_S** link = &waitingRemovals;
    while (*link != &removal) {
        link = &(*link)->other;
    }
    *link = removal.other;
}

void WaitUntilReturned(const UTIL_LIST_NODE_S* node)
{
    for (const WALK_S* walk = FindAwaited(node); walk != nullptr; walk = FindAwaited(node)) {
        WaitForReturn(node, walk->thread);
    }
    // The node is freed next: a new one at its address must not count as running.
    for (WALK_S* walk = walks; walk != nullptr; walk = walk->other) {
        if (walk->running == node) {
            walk->running = nullptr;
        }
    }
}

}  // namespace

void SignalReturn()
{
    pthread_cond_broadcast(&callbackReturned);
}

void BeginWalk(WALK_S* walk, const UTIL_LIST_S* list)
{
    *walk = {list->head, nullptr, pthread_self(), walks};
    walks = walk;
}

void EndWalk(WALK_S* walk)
{
    WALK_S** link = &walks;
    while (*link != walk) {
        link = &(*link)->other;
    }
    *link = walk->other;
    if (waitingRemovals != nullptr) {
        SignalReturn();
    }
}

void RemoveEntry(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node, UTIL_LIST_S* removed)
{
    for (WALK_S* walk = walks; walk != nullptr; walk = walk->other) {
        if (walk->next == node) {
            walk->next = node->next;
        }
    }
    Unlink(list, node);
    --list->count;
    removed->traits = list->traits;
    Link(removed, nullptr, node);
}

void RemoveEntries(UTIL_LIST_S* list, UTIL_LIST_S* removed)
{
    while (list->head != nullptr) {
        RemoveEntry(list, list->head, removed);
    }
}

void UnlockAndFree(UTIL_LIST_S* removed)
{
    for (const UTIL_LIST_NODE_S* node = removed->head; node != nullptr; node = node->next) {
        WaitUntilReturned(node);
    }
    UnlockRegistries();
    UTIL_LIST_Clear(removed);
}

}  // namespace qrb
