// How a node is made, linked, unlinked and given back: what every operation of the list is made of.
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

// A node with room for its element, in no list. Null where there is no memory.
inline UTIL_LIST_NODE_S* NewNode(const UTIL_LIST_TRAITS_S* traits)
{
    uint64_t size = 0;
    if (__builtin_add_overflow(traits->elemSize, sizeof(UTIL_LIST_NODE_S), &size)) {
        return nullptr;
    }
    auto* node =
        static_cast<UTIL_LIST_NODE_S*>(malloc_ex(ListHandle(), __FILE_NAME__, __LINE__, size));
    if (node != nullptr) {
        *node = {};
    }
    return node;
}

// Construct is null, or one of the two callbacks that make an element. Inlined, as a push is so
// short that one call more is felt.
template <typename Construct, typename Value>
[[gnu::always_inline]] inline UTIL_LIST_NODE_S* BuildNode(Value* value,
                                                          const UTIL_LIST_TRAITS_S* traits,
                                                          Construct UTIL_LIST_TRAITS_S::*construct)
{
    UTIL_LIST_NODE_S* node = value != nullptr && traits != nullptr ? NewNode(traits) : nullptr;
    if (node == nullptr) {
        return nullptr;
    }
    if (traits->*construct != nullptr) {
        (traits->*construct)(UTIL_LIST_Data(node), value);
    } else if (memcpy_s(UTIL_LIST_Data(node), traits->elemSize, value, traits->elemSize) != 0) {
        free_ex(ListHandle(), node);
        return nullptr;
    }
    return node;
}

inline UTIL_LIST_NODE_S* CopyNode(const void* value, const UTIL_LIST_TRAITS_S* traits)
{
    return BuildNode(value, traits, &UTIL_LIST_TRAITS_S::constructCopy);
}

inline UTIL_LIST_NODE_S* MoveNode(void* value, const UTIL_LIST_TRAITS_S* traits)
{
    return BuildNode(value, traits, &UTIL_LIST_TRAITS_S::constructMove);
}

// Puts a node before position, where null is the end.
inline void Link(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, UTIL_LIST_NODE_S* node)
{
    UTIL_LIST_NODE_S* previous = position != nullptr ? position->prev : list->tail;

    node->next = position;
    node->prev = previous;
    (previous != nullptr ? previous->next : list->head) = node;
    (position != nullptr ? position->prev : list->tail) = node;
    ++list->count;
}

inline void DestroyNode(const UTIL_LIST_TRAITS_S* traits, UTIL_LIST_NODE_S* node)
{
    if (traits->destruct != nullptr) {
        traits->destruct(UTIL_LIST_Data(node));
    }
    free_ex(ListHandle(), node);
}

// The node that followed.
inline UTIL_LIST_NODE_S* RemoveNode(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node)
{
    UTIL_LIST_NODE_S* next = node->next;
    UTIL_LIST_NODE_S* previous = node->prev;

    (previous != nullptr ? previous->next : list->head) = next;
    (next != nullptr ? next->prev : list->tail) = previous;
    DestroyNode(list->traits, node);
    --list->count;
    return next;
}

}  // namespace qrb
