// Traits of lists whose elements are lists, by value and by pointer.
#include "bal/util_list/list_node.h"

using namespace qrb;

namespace {

UTIL_LIST_S* ListIn(void* element)
{
    return static_cast<UTIL_LIST_S*>(element);
}

const UTIL_LIST_S* ListIn(const void* element)
{
    return static_cast<const UTIL_LIST_S*>(element);
}

UTIL_LIST_S** PointerIn(void* element)
{
    return static_cast<UTIL_LIST_S**>(element);
}

const UTIL_LIST_S* PointedTo(const void* element)
{
    return *static_cast<UTIL_LIST_S* const*>(element);
}

}  // namespace

const UTIL_LIST_TRAITS_S g_utilListByValueTraits = {
    .elemSize = sizeof(UTIL_LIST_S),
    .reserved1 = nullptr,
    .destruct = UTIL_LIST_DestructCallback,
    .constructCopy = UTIL_LIST_ConstructCopyCallback,
    .constructMove = UTIL_LIST_ConstructMoveCallback,
    .reserved5 = nullptr,
    .print = UTIL_LIST_PrintCallback,
};

const UTIL_LIST_TRAITS_S g_utilListByPtrTraits = {
    .elemSize = sizeof(UTIL_LIST_S*),
    .reserved1 = nullptr,
    .destruct = UTIL_LIST_DeleteCallback,
    .constructCopy = UTIL_LIST_ConstructPtrCopyCallback,
    .constructMove = UTIL_LIST_ConstructPtrMoveCallback,
    .reserved5 = nullptr,
    .print = UTIL_LIST_PrintPtrCallback,
};

void UTIL_LIST_DestructCallback(void* element)
{
    UTIL_LIST_Destruct(ListIn(element));
}

uint32_t UTIL_LIST_ConstructCopyCallback(void* element, const void* value)
{
    UTIL_LIST_ConstructCopy(ListIn(element), ListIn(value));
    return 0;
}

uint32_t UTIL_LIST_ConstructMoveCallback(void* element, void* value)
{
    UTIL_LIST_ConstructMove(ListIn(element), ListIn(value));
    return 0;
}

void UTIL_LIST_PrintCallback(const void* element)
{
    const UTIL_LIST_S* list = ListIn(element);
    if (list->traits == nullptr || list->traits->print == nullptr) {
        return;
    }
    for (UTIL_LIST_NODE_S* node = list->head; node != nullptr; node = node->next) {
        list->traits->print(UTIL_LIST_Data(node));
    }
}

void UTIL_LIST_DeleteCallback(void* element)
{
    UTIL_LIST_S* list = *PointerIn(element);
    if (list != nullptr) {
        UTIL_LIST_Destruct(list);
        free_ex(ListHandle(), list);
    }
    *PointerIn(element) = nullptr;
}

uint32_t UTIL_LIST_ConstructPtrCopyCallback(void* element, const void* value)
{
    const UTIL_LIST_S* source = PointedTo(value);
    UTIL_LIST_S* copy = nullptr;
    if (source != nullptr) {
        copy = ListIn(AllocateForList(sizeof(*copy)));
        if (copy != nullptr) {
            UTIL_LIST_ConstructCopy(copy, source);
        }
    }
    *PointerIn(element) = copy;
    return source != nullptr && copy == nullptr ? 1 : 0;
}

uint32_t UTIL_LIST_ConstructPtrMoveCallback(void* element, void* value)
{
    *PointerIn(element) = *PointerIn(value);
    *PointerIn(value) = nullptr;
    return 0;
}

void UTIL_LIST_PrintPtrCallback(const void* element)
{
    if (PointedTo(element) != nullptr) {
        UTIL_LIST_PrintCallback(PointedTo(element));
    }
}
