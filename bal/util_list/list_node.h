// Nodes of a list: allocation, construction, linking, unlinking and release.
#pragma once

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/memory.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/util_list.h>

namespace qrb {

inline uint16_t ListHandle()
{
    return g_memExModuleMap[MEM_EX_MODULE_FRAMEWORK].handle;
}

// Memory for a node or a list head. Both have this one allocation site.
inline void* AllocateForList(uint64_t size)
{
    return malloc_ex(ListHandle(), __FILE_NAME__, __LINE__, size);
}

// An unlinked node whose element is not constructed yet. Returns null if out of memory.
inline UTIL_LIST_NODE_S* AllocateNode(const UTIL_LIST_TRAITS_S* traits)
{
    uint64_t size = 0;
    if (__builtin_add_overflow(traits->elemSize, sizeof(UTIL_LIST_NODE_S), &size)) {
        return nullptr;
    }
    auto* node = static_cast<UTIL_LIST_NODE_S*>(AllocateForList(size));
    if (node != nullptr) {
        *node = {};
    }
    return node;
}

// Fills a new node's element with the value's bytes. Frees the node and returns null if the
// platform refuses to copy them.
inline UTIL_LIST_NODE_S* CopyBytes(UTIL_LIST_NODE_S* node, const void* value, uint64_t size)
{
    if (memcpy_s(UTIL_LIST_Data(node), size, value, size) != 0) {
        free_ex(ListHandle(), node);
        return nullptr;
    }
    return node;
}

// CopyNode and MoveNode are forced inline: an insertion is short enough for one more call to be
// measurable.

[[gnu::always_inline]] inline UTIL_LIST_NODE_S* CopyNode(const void* value,
                                                         const UTIL_LIST_TRAITS_S* traits)
{
    if (value == nullptr || traits == nullptr) {
        return nullptr;
    }
    UTIL_LIST_NODE_S* node = AllocateNode(traits);
    if (node == nullptr) {
        return nullptr;
    }
    if (traits->constructCopy == nullptr) {
        return CopyBytes(node, value, traits->elemSize);
    }
    traits->constructCopy(UTIL_LIST_Data(node), value);
    return node;
}

[[gnu::always_inline]] inline UTIL_LIST_NODE_S* MoveNode(void* value,
                                                         const UTIL_LIST_TRAITS_S* traits)
{
    if (value == nullptr || traits == nullptr) {
        return nullptr;
    }
    UTIL_LIST_NODE_S* node = AllocateNode(traits);
    if (node == nullptr) {
        return nullptr;
    }
    if (traits->constructMove == nullptr) {
        return CopyBytes(node, value, traits->elemSize);
    }
    traits->constructMove(UTIL_LIST_Data(node), value);
    return node;
}

// Inserts a node before position; null is the end of the list.
inline void Link(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, UTIL_LIST_NODE_S* node)
{
    UTIL_LIST_NODE_S* previous = position != nullptr ? position->prev : list->tail;
    node->next = position;
    node->prev = previous;
    if (previous != nullptr) {
        previous->next = node;
    } else {
        list->head = node;
    }
    if (position != nullptr) {
        position->prev = node;
    } else {
        list->tail = node;
    }
    ++list->count;
}

// Detaches a node from its neighbours. The caller adjusts the list's count.
inline void Unlink(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node)
{
    UTIL_LIST_NODE_S* next = node->next;
    UTIL_LIST_NODE_S* previous = node->prev;
    if (previous != nullptr) {
        previous->next = next;
    } else {
        list->head = next;
    }
    if (next != nullptr) {
        next->prev = previous;
    } else {
        list->tail = previous;
    }
}

inline void DestroyNode(const UTIL_LIST_TRAITS_S* traits, UTIL_LIST_NODE_S* node)
{
    if (traits->destruct != nullptr) {
        traits->destruct(UTIL_LIST_Data(node));
    }
    free_ex(ListHandle(), node);
}

// Returns the node that followed the removed one.
inline UTIL_LIST_NODE_S* RemoveNode(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node)
{
    UTIL_LIST_NODE_S* next = node->next;
    Unlink(list, node);
    DestroyNode(list->traits, node);
    --list->count;
    return next;
}

}  // namespace qrb
