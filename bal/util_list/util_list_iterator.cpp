// Iterators.
#include "bal/util_list/list_node.h"

using namespace qrb;

const UTIL_LIST_ITER_METHODS_S g_UTIL_ListIteratorMethods = {
    .next = UTIL_LIST_Next,
    .prev = UTIL_LIST_Prev,
    .getDataPtr = UTIL_LIST_GetDataPtr,
    .erase = UTIL_LIST_Erase,
};

UTIL_LIST_ITER_S UTIL_LIST_Begin(UTIL_LIST_S* list)
{
    return {list->head, list, &g_UTIL_ListIteratorMethods};
}

UTIL_LIST_ITER_S UTIL_LIST_End(UTIL_LIST_S* list)
{
    return {nullptr, list, &g_UTIL_ListIteratorMethods};
}

UTIL_LIST_ITER_S UTIL_LIST_Next(UTIL_LIST_ITER_S* iterator)
{
    iterator->node = iterator->node->next;
    return *iterator;
}

UTIL_LIST_ITER_S UTIL_LIST_Prev(UTIL_LIST_ITER_S* iterator)
{
    iterator->node = iterator->node != nullptr ? iterator->node->prev : iterator->list->tail;
    return *iterator;
}

void* UTIL_LIST_GetDataPtr(const UTIL_LIST_ITER_S* iterator)
{
    return UTIL_LIST_Data(iterator->node);
}

UTIL_LIST_ITER_S UTIL_LIST_Erase(UTIL_LIST_ITER_S* iterator)
{
    UTIL_LIST_NODE_S* erased = iterator->node;

    // Through the methods of the iterator, which need not be those above.
    *iterator = iterator->methods->next(iterator);
    RemoveNode(iterator->list, erased);
    return *iterator;
}
