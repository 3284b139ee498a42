// Removal of single elements and search.
#include "bal/util_list/list_node.h"

using namespace qrb;

uint32_t UTIL_LIST_PopFront(UTIL_LIST_S* list)
{
    if (list->head == nullptr) {
        return 1;
    }
    RemoveNode(list, list->head);
    return 0;
}

uint32_t UTIL_LIST_PopBack(UTIL_LIST_S* list)
{
    if (list->tail == nullptr) {
        return 1;
    }
    RemoveNode(list, list->tail);
    return 0;
}

UTIL_LIST_NODE_S* UTIL_LIST_DeleteNode(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node)
{
    return RemoveNode(list, node);
}

void UTIL_LIST_RemoveIf(UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate, uint64_t context)
{
    UTIL_LIST_NODE_S* node = list->head;
    while (node != nullptr) {
        node = predicate(UTIL_LIST_Data(node), context) ? RemoveNode(list, node) : node->next;
    }
}

UTIL_LIST_NODE_S* UTIL_LIST_FindIf(const UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate,
                                   uint64_t context)
{
    UTIL_LIST_NODE_S* node = list->head;
    while (node != nullptr && !predicate(UTIL_LIST_Data(node), context)) {
        node = node->next;
    }
    return node;
}

uint64_t UTIL_LIST_CountIf(const UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate,
                           uint64_t context)
{
    uint64_t count = 0;
    for (UTIL_LIST_NODE_S* node = list->head; node != nullptr; node = node->next) {
        if (predicate(UTIL_LIST_Data(node), context)) {
            ++count;
        }
    }
    return count;
}
