// Operations on whole lists: construction, clearing, swapping, copying, concatenation.
#include "bal/util_list/list_node.h"

using namespace qrb;

namespace {

void ResetToEmpty(UTIL_LIST_S* list)
{
    list->head = nullptr;
    list->tail = nullptr;
    list->count = 0;
}

}  // namespace

void UTIL_LIST_Construct(UTIL_LIST_S* list, const UTIL_LIST_TRAITS_S* traits)
{
    list->traits = traits;
    ResetToEmpty(list);
}

void UTIL_LIST_Clear(UTIL_LIST_S* list)
{
    UTIL_LIST_NODE_S* node = list->head;
    while (node != nullptr) {
        UTIL_LIST_NODE_S* next = node->next;
        DestroyNode(list->traits, node);
        node = next;
    }
    ResetToEmpty(list);
}

void UTIL_LIST_Destruct(UTIL_LIST_S* list)
{
    UTIL_LIST_Clear(list);
}

bool UTIL_LIST_IsEmpty(const UTIL_LIST_S* list)
{
    return list->head == nullptr;
}

void UTIL_LIST_Swap(UTIL_LIST_S* a, UTIL_LIST_S* b)
{
    const UTIL_LIST_S kept = *a;

    *a = *b;
    *b = kept;
}

void UTIL_LIST_ConstructMove(UTIL_LIST_S* destination, UTIL_LIST_S* source)
{
    if (destination == source) {
        return;
    }
    *destination = *source;
    ResetToEmpty(source);
}

uint32_t UTIL_LIST_ConstructCopy(UTIL_LIST_S* destination, const UTIL_LIST_S* source)
{
    if (destination == source) {
        return 0;
    }
    UTIL_LIST_Construct(destination, source->traits);
    for (UTIL_LIST_NODE_S* node = source->head; node != nullptr; node = node->next) {
        if (UTIL_LIST_PushBack(destination, UTIL_LIST_Data(node)) != 0) {
            return 1;
        }
    }
    return 0;
}

void UTIL_LIST_ConcatenateMove(UTIL_LIST_S* destination, UTIL_LIST_S* source)
{
    if (destination == source || source->head == nullptr) {
        return;
    }
    source->head->prev = destination->tail;
    if (destination->tail != nullptr) {
        destination->tail->next = source->head;
    } else {
        destination->head = source->head;
    }
    destination->tail = source->tail;
    destination->count += source->count;
    ResetToEmpty(source);
}
