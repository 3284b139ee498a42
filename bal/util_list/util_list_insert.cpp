// Insertion: node construction and linking, together and separately.
#include "bal/util_list/list_node.h"

using namespace qrb;

namespace {

uint32_t LinkBuilt(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, UTIL_LIST_NODE_S* node)
{
    if (node == nullptr) {
        return 1;
    }
    Link(list, position, node);
    return 0;
}

uint32_t LinkSorted(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node, UTIL_LIST_COMPARE_FUNC compare,
                    uint64_t context)
{
    if (node == nullptr) {
        return 1;
    }
    UTIL_LIST_NODE_S* position = list->head;
    while (position != nullptr &&
           compare(UTIL_LIST_Data(position), UTIL_LIST_Data(node), context)) {
        position = position->next;
    }
    Link(list, position, node);
    return 0;
}

}  // namespace

UTIL_LIST_NODE_S* UTIL_LIST_ConstructNodeCopy(const void* value, const UTIL_LIST_TRAITS_S* traits)
{
    return CopyNode(value, traits);
}

UTIL_LIST_NODE_S* UTIL_LIST_ConstructNodeMove(void* value, const UTIL_LIST_TRAITS_S* traits)
{
    return MoveNode(value, traits);
}

void UTIL_LIST_PushFrontImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node)
{
    Link(list, list->head, node);
}

void UTIL_LIST_PushBackImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node)
{
    Link(list, nullptr, node);
}

void UTIL_LIST_InsertBeforeImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position,
                                UTIL_LIST_NODE_S* node)
{
    Link(list, position, node);
}

void UTIL_LIST_SortedInsertImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node,
                                UTIL_LIST_COMPARE_FUNC compare, uint64_t context)
{
    LinkSorted(list, node, compare, context);
}

uint32_t UTIL_LIST_PushFront(UTIL_LIST_S* list, const void* value)
{
    return LinkBuilt(list, list->head, CopyNode(value, list->traits));
}

uint32_t UTIL_LIST_PushFrontMove(UTIL_LIST_S* list, void* value)
{
    return LinkBuilt(list, list->head, MoveNode(value, list->traits));
}

uint32_t UTIL_LIST_PushBack(UTIL_LIST_S* list, const void* value)
{
    return LinkBuilt(list, nullptr, CopyNode(value, list->traits));
}

uint32_t UTIL_LIST_PushBackMove(UTIL_LIST_S* list, void* value)
{
    return LinkBuilt(list, nullptr, MoveNode(value, list->traits));
}

uint32_t UTIL_LIST_InsertBefore(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, const void* value)
{
    return LinkBuilt(list, position, CopyNode(value, list->traits));
}

uint32_t UTIL_LIST_InsertBeforeMove(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, void* value)
{
    return LinkBuilt(list, position, MoveNode(value, list->traits));
}

uint32_t UTIL_LIST_SortedInsert(UTIL_LIST_S* list, const void* value,
                                UTIL_LIST_COMPARE_FUNC compare, uint64_t context)
{
    return LinkSorted(list, CopyNode(value, list->traits), compare, context);
}

uint32_t UTIL_LIST_SortedInsertMove(UTIL_LIST_S* list, void* value, UTIL_LIST_COMPARE_FUNC compare,
                                    uint64_t context)
{
    return LinkSorted(list, MoveNode(value, list->traits), compare, context);
}
