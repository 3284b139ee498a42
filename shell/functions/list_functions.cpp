// The generic list, on two lists of numbers that the shell keeps: "a" and "b".
#include <tarnd_qrb/util_list.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

Json printed;  // filled by the print callback of the elements

void Print(const void* element)
{
    printed.push_back(*static_cast<const uint32_t*>(element));
}

constexpr UTIL_LIST_TRAITS_S NUMBERS{.elemSize = sizeof(uint32_t),
                                     .reserved1 = nullptr,
                                     .destruct = nullptr,
                                     .constructCopy = nullptr,
                                     .constructMove = nullptr,
                                     .reserved5 = nullptr,
                                     .print = Print};

// Frees its memory at program exit.
struct Numbers {
    Numbers() { UTIL_LIST_Construct(&list, &NUMBERS); }
    ~Numbers() { UTIL_LIST_Clear(&list); }
    Numbers(const Numbers&) = delete;
    Numbers& operator=(const Numbers&) = delete;

    UTIL_LIST_S list;
};

UTIL_LIST_S* ListNamed(const char* name)
{
    static Numbers a;
    static Numbers b;
    const std::string_view known = name != nullptr ? name : "";
    if (known != "a" && known != "b") {
        throw UsageError("the lists are a and b");
    }
    return known == "a" ? &a.list : &b.list;
}

UTIL_LIST_NODE_S* NodeAt(const UTIL_LIST_S* list, uint32_t position)
{
    UTIL_LIST_NODE_S* node = list->head;
    for (; node != nullptr && position > 0; --position) {
        node = node->next;
    }
    return node != nullptr ? node : throw UsageError("there is no element at that position");
}

uint32_t ValueOf(UTIL_LIST_NODE_S* node)
{
    return *static_cast<const uint32_t*>(UTIL_LIST_Data(node));
}

Json Elements(const UTIL_LIST_S* list)
{
    Json elements = Json::array();
    for (UTIL_LIST_NODE_S* node = list->head; node != nullptr; node = node->next) {
        elements.push_back(ValueOf(node));
    }
    return elements;
}

struct View {
    const UTIL_LIST_S* list;
    Json* elements;
};

// The result of an operation, if any, and the contents of the lists afterwards.
template <typename Operation, typename... Views>
auto Viewed(const Operation& operation, const Views&... views)
{
    const auto show = [&] { ((*views.elements = Elements(views.list)), ...); };
    if constexpr (std::is_void_v<decltype(operation())>) {
        operation();
        show();
    } else {
        const auto ret = static_cast<uint32_t>(operation());
        show();
        return ret;
    }
}

template <typename Operation>
auto On(const char* name, Json* elements, const Operation& operation)
{
    UTIL_LIST_S* const list = ListNamed(name);
    return Viewed([&] { return operation(list); }, View{list, elements});
}

bool IsGreater(const void* existing, const void* added, uint64_t /*context*/)
{
    return *static_cast<const uint32_t*>(existing) > *static_cast<const uint32_t*>(added);
}

bool IsEqual(const void* element, uint64_t context)
{
    return *static_cast<const uint32_t*>(element) == context;
}

void Construct(UTIL_LIST_S* list)
{
    UTIL_LIST_Clear(list);
    UTIL_LIST_Construct(list, &NUMBERS);
}

template <auto operation>
auto Whole(const char* name, Json* elements)
{
    return On(name, elements, operation);
}

// Both lists are shown. If the operation expects raw memory, the first list is cleared before.
template <auto operation, bool isFromRaw = false>
auto Pair(const char* name, const char* otherName, Json* elements, Json* others)
{
    UTIL_LIST_S* const list = ListNamed(name);
    UTIL_LIST_S* const other = ListNamed(otherName);
    const auto operate = [&] {
        if (isFromRaw && list != other) {
            UTIL_LIST_Clear(list);
        }
        return operation(list, other);
    };
    return Viewed(operate, View{list, elements}, View{other, others});
}

template <auto operation>
auto Push(const char* name, uint32_t number, Json* elements)
{
    return On(name, elements, [&](UTIL_LIST_S* list) { return operation(list, &number); });
}

template <auto operation>
auto Insert(const char* name, uint32_t position, uint32_t number, Json* elements)
{
    return On(name, elements,
              [&](UTIL_LIST_S* list) { return operation(list, NodeAt(list, position), &number); });
}

template <auto operation>
auto Sort(const char* name, uint32_t number, Json* elements)
{
    return On(name, elements,
              [&](UTIL_LIST_S* list) { return operation(list, &number, IsGreater, 0); });
}

template <auto construct>
auto PushNode(const char* name, uint32_t number, Json* elements)
{
    return On(name, elements, [&](UTIL_LIST_S* list) {
        UTIL_LIST_PushBackImpl(list, construct(&number, list->traits));
    });
}

template <auto operation>
auto PushImpl(const char* name, uint32_t number, Json* elements)
{
    return On(name, elements, [&](UTIL_LIST_S* list) {
        operation(list, UTIL_LIST_ConstructNodeCopy(&number, list->traits));
    });
}

auto InsertImpl(const char* name, uint32_t position, uint32_t number, Json* elements)
{
    return On(name, elements, [&](UTIL_LIST_S* list) {
        UTIL_LIST_NODE_S* const before = NodeAt(list, position);
        UTIL_LIST_InsertBeforeImpl(list, before,
                                   UTIL_LIST_ConstructNodeCopy(&number, list->traits));
    });
}

auto SortImpl(const char* name, uint32_t number, Json* elements)
{
    return On(name, elements, [&](UTIL_LIST_S* list) {
        UTIL_LIST_SortedInsertImpl(list, UTIL_LIST_ConstructNodeCopy(&number, list->traits),
                                   IsGreater, 0);
    });
}

auto DeleteNode(const char* name, uint32_t position, Json* elements)
{
    return On(name, elements,
              [&](UTIL_LIST_S* list) { UTIL_LIST_DeleteNode(list, NodeAt(list, position)); });
}

auto RemoveIf(const char* name, uint32_t number, Json* elements)
{
    return On(name, elements,
              [&](UTIL_LIST_S* list) { UTIL_LIST_RemoveIf(list, IsEqual, number); });
}

uint32_t FindIf(const char* name, uint32_t number)
{
    return UTIL_LIST_FindIf(ListNamed(name), IsEqual, number) != nullptr ? 1 : 0;
}

uint32_t CountIf(const char* name, uint32_t number)
{
    return static_cast<uint32_t>(UTIL_LIST_CountIf(ListNamed(name), IsEqual, number));
}

UTIL_LIST_ITER_S IteratorAt(UTIL_LIST_S* list, uint32_t position)
{
    UTIL_LIST_ITER_S iterator = UTIL_LIST_Begin(list);
    iterator.node = NodeAt(list, position);
    return iterator;
}

// The position of an iterator: a number, or "end".
Json Shown(const UTIL_LIST_ITER_S& iterator)
{
    return iterator.node != nullptr ? Json(ValueOf(iterator.node)) : Json("end");
}

template <auto operation>
void Place(const char* name, Json* element)
{
    *element = Shown(operation(ListNamed(name)));
}

template <auto operation>
void Move(const char* name, uint32_t position, Json* element)
{
    UTIL_LIST_ITER_S iterator = IteratorAt(ListNamed(name), position);
    *element = Shown(operation(&iterator));
}

void GetData(const char* name, uint32_t position, uint32_t* element)
{
    const UTIL_LIST_ITER_S iterator = IteratorAt(ListNamed(name), position);
    *element = *static_cast<const uint32_t*>(UTIL_LIST_GetDataPtr(&iterator));
}

// Runs the copy and delete callbacks of nested lists on a copy of the list.
Json WithCopy(const char* name, Json (*use)(UTIL_LIST_S*& copy))
{
    const UTIL_LIST_S* const list = ListNamed(name);
    UTIL_LIST_S* copy = nullptr;
    UTIL_LIST_ConstructPtrCopyCallback(&copy, &list);
    Json shown = use(copy);
    UTIL_LIST_DeleteCallback(&copy);
    return shown;
}

void CopyPointer(const char* name, Json* elements)
{
    *elements = WithCopy(name, [](UTIL_LIST_S*& copy) { return Elements(copy); });
}

void MovePointer(const char* name, Json* elements)
{
    *elements = WithCopy(name, [](UTIL_LIST_S*& copy) {
        UTIL_LIST_S* moved = nullptr;
        UTIL_LIST_ConstructPtrMoveCallback(&moved, &copy);
        Json shown = Elements(moved);
        std::swap(moved, copy);
        return shown;
    });
}

void PrintList(const char* name, Json* elements)
{
    printed = Json::array();
    UTIL_LIST_PrintCallback(ListNamed(name));
    *elements = printed;
}

void PrintPointer(const char* name, Json* elements)
{
    UTIL_LIST_S* const list = ListNamed(name);
    printed = Json::array();
    UTIL_LIST_PrintPtrCallback(&list);
    *elements = printed;
}

uint32_t Methods()
{
    const auto& methods = g_UTIL_ListIteratorMethods;
    return methods.next == UTIL_LIST_Next && methods.prev == UTIL_LIST_Prev &&
           methods.getDataPtr == UTIL_LIST_GetDataPtr && methods.erase == UTIL_LIST_Erase;
}

constexpr Argument LIST{.name = "list"};
constexpr Argument OTHER{.name = "other"};
constexpr Argument POSITION{.name = "position"};
constexpr Argument NUMBER{.name = "number"};
constexpr Argument ELEMENTS{.name = "elements"};
constexpr Argument OTHERS{.name = "others"};
constexpr Argument ELEMENT{.name = "element"};

}  // namespace

// clang-format off
std::vector<Function> ListFunctions()
{
    using namespace arguments;
    return {
        Define("UTIL_LIST_Construct", Whole<Construct>, VALUE, "", "Constructs an empty list: list a or b of the shell.", LIST, ELEMENTS),
        Define("UTIL_LIST_Clear", Whole<UTIL_LIST_Clear>, VALUE, "", "Removes every element.", LIST, ELEMENTS),
        Define("UTIL_LIST_Destruct", Whole<UTIL_LIST_Destruct>, VALUE, "", "Removes every element.", LIST, ELEMENTS),
        Define("UTIL_LIST_IsEmpty", Whole<UTIL_LIST_IsEmpty>, ONE_IS_YES, "", "Whether a list has no elements.", LIST, ELEMENTS),
        Define("UTIL_LIST_Swap", Pair<UTIL_LIST_Swap>, VALUE, "", "Exchanges two lists.", LIST, OTHER, ELEMENTS, OTHERS),
        Define("UTIL_LIST_ConstructMove", Pair<UTIL_LIST_ConstructMove, true>, VALUE, "", "Constructs a list by moving the nodes of another one.", LIST, OTHER, ELEMENTS, OTHERS),
        Define("UTIL_LIST_ConstructCopy", Pair<UTIL_LIST_ConstructCopy, true>, OK_OR1, "", "Constructs a list with copies of another one's elements.", LIST, OTHER, ELEMENTS, OTHERS),
        Define("UTIL_LIST_ConcatenateMove", Pair<UTIL_LIST_ConcatenateMove>, VALUE, "", "Appends another list's nodes.", LIST, OTHER, ELEMENTS, OTHERS),
        Define("UTIL_LIST_PushFront", Push<UTIL_LIST_PushFront>, OK_OR1, "", "Adds an element at the head.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_PushBack", Push<UTIL_LIST_PushBack>, OK_OR1, "", "Adds an element at the tail.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_PushFrontMove", Push<UTIL_LIST_PushFrontMove>, OK_OR1, "", "Moves an element to the head.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_PushBackMove", Push<UTIL_LIST_PushBackMove>, OK_OR1, "", "Moves an element to the tail.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_InsertBefore", Insert<UTIL_LIST_InsertBefore>, OK_OR1, "", "Adds an element before another; positions count from 0.", LIST, POSITION, NUMBER, ELEMENTS),
        Define("UTIL_LIST_InsertBeforeMove", Insert<UTIL_LIST_InsertBeforeMove>, OK_OR1, "", "Moves an element before another; positions count from 0.", LIST, POSITION, NUMBER, ELEMENTS),
        Define("UTIL_LIST_SortedInsert", Sort<UTIL_LIST_SortedInsert>, OK_OR1, "", "Adds an element after the greater ones.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_SortedInsertMove", Sort<UTIL_LIST_SortedInsertMove>, OK_OR1, "", "Moves an element after the greater ones.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_ConstructNodeCopy", PushNode<UTIL_LIST_ConstructNodeCopy>, VALUE, "", "Constructs a node with a copy; the shell appends it.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_ConstructNodeMove", PushNode<UTIL_LIST_ConstructNodeMove>, VALUE, "", "Constructs a node with a moved value; the shell appends it.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_PushFrontImpl", PushImpl<UTIL_LIST_PushFrontImpl>, VALUE, "", "Links a node at the head.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_PushBackImpl", PushImpl<UTIL_LIST_PushBackImpl>, VALUE, "", "Links a node at the tail.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_InsertBeforeImpl", InsertImpl, VALUE, "", "Links a node before another.", LIST, POSITION, NUMBER, ELEMENTS),
        Define("UTIL_LIST_SortedInsertImpl", SortImpl, VALUE, "", "Links a node after the greater ones.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_PopFront", Whole<UTIL_LIST_PopFront>, OK_OR1, "", "Removes the head.", LIST, ELEMENTS),
        Define("UTIL_LIST_PopBack", Whole<UTIL_LIST_PopBack>, OK_OR1, "", "Removes the tail.", LIST, ELEMENTS),
        Define("UTIL_LIST_DeleteNode", DeleteNode, VALUE, "", "Removes an element.", LIST, POSITION, ELEMENTS),
        Define("UTIL_LIST_RemoveIf", RemoveIf, VALUE, "", "Removes the elements equal to a number.", LIST, NUMBER, ELEMENTS),
        Define("UTIL_LIST_FindIf", FindIf, ONE_IS_YES, "", "Whether an element equals a number.", LIST, NUMBER),
        Define("UTIL_LIST_CountIf", CountIf, VALUE, "", "The number of elements equal to a number.", LIST, NUMBER),
        Define("UTIL_LIST_Begin", Place<UTIL_LIST_Begin>, VALUE, "", "The element at the head.", LIST, ELEMENT),
        Define("UTIL_LIST_End", Place<UTIL_LIST_End>, VALUE, "", "The position after the tail.", LIST, ELEMENT),
        Define("UTIL_LIST_Next", Move<UTIL_LIST_Next>, VALUE, "", "The element after another.", LIST, POSITION, ELEMENT),
        Define("UTIL_LIST_Prev", Move<UTIL_LIST_Prev>, VALUE, "", "The element before another.", LIST, POSITION, ELEMENT),
        Define("UTIL_LIST_GetDataPtr", GetData, VALUE, "", "The element at a position.", LIST, POSITION, ELEMENT),
        Define("UTIL_LIST_Erase", Move<UTIL_LIST_Erase>, VALUE, "", "Removes an element; returns the following one.", LIST, POSITION, ELEMENT),
        Define("UTIL_LIST_DestructCallback", Whole<UTIL_LIST_DestructCallback>, VALUE, "", "Destroys an element of a list of lists.", LIST, ELEMENTS),
        Define("UTIL_LIST_ConstructCopyCallback", Pair<UTIL_LIST_ConstructCopyCallback, true>, OK_OR1, "", "Copies an element of a list of lists.", LIST, OTHER, ELEMENTS, OTHERS),
        Define("UTIL_LIST_ConstructMoveCallback", Pair<UTIL_LIST_ConstructMoveCallback, true>, OK_OR1, "", "Moves an element of a list of lists.", LIST, OTHER, ELEMENTS, OTHERS),
        Define("UTIL_LIST_PrintCallback", PrintList, VALUE, "", "Prints each element of a list in a list.", LIST, ELEMENTS),
        Define("UTIL_LIST_DeleteCallback", CopyPointer, VALUE, "", "Deletes an element of a list of pointers; the shell passes a copy.", LIST, ELEMENTS),
        Define("UTIL_LIST_ConstructPtrCopyCallback", CopyPointer, VALUE, "", "Copies an element of a list of pointers.", LIST, ELEMENTS),
        Define("UTIL_LIST_ConstructPtrMoveCallback", MovePointer, VALUE, "", "Moves an element of a list of pointers; the shell passes a copy.", LIST, ELEMENTS),
        Define("UTIL_LIST_PrintPtrCallback", PrintPointer, VALUE, "", "Prints each element of a list that is pointed to.", LIST, ELEMENTS),
        Define("g_UTIL_ListIteratorMethods", Methods, ONE_IS_YES, "", "Whether an iterator's methods are the functions Next, Prev, GetDataPtr and Erase."),
        Define("g_utilListByValueTraits", ElementSize<&g_utilListByValueTraits>, VALUE, "", "The element traits of a list of lists.", Number("elemSize")),
        Define("g_utilListByPtrTraits", ElementSize<&g_utilListByPtrTraits>, VALUE, "", "The element traits of a list of pointers to lists.", Number("elemSize")),
    };
}
// clang-format on

}  // namespace shell
