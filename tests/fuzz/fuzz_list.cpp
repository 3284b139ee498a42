// List operations in any order, with failing allocations and copies, compared with vectors.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/memory.h>
#include <tarnd_qrb/util_list.h>

#include "fuzz.h"

namespace {

uint32_t blocks = 0;     // in use
uint32_t stepsLeft = 0;  // until the failing one; 0: none fails

bool Fails()
{
    return stepsLeft > 0 && --stepsLeft == 0;
}

}  // namespace

// Interposes the platform's functions.
extern "C" void* malloc_ex(uint16_t /*handle*/, const char* /*file*/, uint32_t /*line*/,
                           size_t size)
{
    if (Fails()) {
        return nullptr;
    }
    blocks++;
    return std::malloc(size);
}

extern "C" int memcpy_s(void* destination, size_t /*size*/, const void* source, size_t count)
{
    if (Fails()) {
        return 1;
    }
    std::memcpy(destination, source, count);
    return 0;
}

extern "C" void free_ex(uint16_t /*handle*/, void* memory)
{
    blocks -= memory != nullptr ? 1 : 0;
    std::free(memory);
}

namespace {

using List = UTIL_LIST_S;
using Node = UTIL_LIST_NODE_S*;
using Model = std::vector<uint32_t>;

// Elements that own memory, so that a double or missing destruction is detected.
using Owner = uint32_t*;

Owner Make(uint32_t value)
{
    blocks++;
    return new uint32_t(value);
}

uint32_t ValueIn(const void* element)
{
    return **static_cast<const Owner*>(element);
}

void Destroy(void* element)
{
    blocks--;
    delete *static_cast<Owner*>(element);
}

// The list ignores the statuses.
uint32_t Copy(void* element, const void* value)
{
    *static_cast<Owner*>(element) = Make(ValueIn(value));
    return 1;
}

uint32_t Move(void* element, void* value)
{
    *static_cast<Owner*>(element) = std::exchange(*static_cast<Owner*>(value), nullptr);
    return 1;
}

Model printed;

void Print(const void* element)
{
    printed.push_back(ValueIn(element));
}

// With all callbacks, and without the optional ones.
constexpr UTIL_LIST_TRAITS_S owners[] = {
    {sizeof(Owner), nullptr, Destroy, Copy, Move, nullptr, Print},
    {sizeof(Owner), nullptr, Destroy, Copy, nullptr, nullptr, nullptr}};

bool StaysAhead(const void* existing, const void* added, uint64_t context)
{
    return ValueIn(existing) + context > ValueIn(added);
}

bool IsAtLeast(const void* element, uint64_t context)
{
    return ValueIn(element) >= context;
}

enum class InsertPlace { Front, Back, Before, Sorted };

// The ways of insertion: a copied or moved value, or a node constructed from one.
struct Way {
    InsertPlace place;
    uint32_t (*copy)(List* list, Node at, Owner* value, uint64_t order);
    uint32_t (*move)(List* list, Node at, Owner* value, uint64_t order);
    void (*link)(List* list, Node at, Node node, uint64_t order);
};

// clang-format off
#define BY(...) [](List* l, [[maybe_unused]] Node at, auto* v, [[maybe_unused]] uint64_t order) { return __VA_ARGS__; }
constexpr Way ways[] = {
    {InsertPlace::Front, BY(UTIL_LIST_PushFront(l, v)), BY(UTIL_LIST_PushFrontMove(l, v)), BY(UTIL_LIST_PushFrontImpl(l, v))},
    {InsertPlace::Back, BY(UTIL_LIST_PushBack(l, v)), BY(UTIL_LIST_PushBackMove(l, v)), BY(UTIL_LIST_PushBackImpl(l, v))},
    {InsertPlace::Before, BY(UTIL_LIST_InsertBefore(l, at, v)), BY(UTIL_LIST_InsertBeforeMove(l, at, v)), BY(UTIL_LIST_InsertBeforeImpl(l, at, v))},
    {InsertPlace::Sorted, BY(UTIL_LIST_SortedInsert(l, v, StaysAhead, order)), BY(UTIL_LIST_SortedInsertMove(l, v, StaysAhead, order)),
     BY(UTIL_LIST_SortedInsertImpl(l, v, StaysAhead, order))},
};
// clang-format on

// Returns the contents of a list; checks its links and count.
Model ValuesIn(const List& list)
{
    Model values;
    Node previous = nullptr;
    for (Node node = list.head; node != nullptr; previous = node, node = node->next) {
        CHECK(node->prev == previous);
        values.push_back(ValueIn(UTIL_LIST_Data(node)));
    }
    CHECK(list.tail == previous && list.count == values.size());
    CHECK(UTIL_LIST_IsEmpty(&list) == values.empty());
    return values;
}

// Null after the tail.
Node NodeAt(const List& list, std::ptrdiff_t place)
{
    Node node = list.head;
    for (; place > 0; place--) {
        node = node->next;
    }
    return node;
}

// A list and its expected contents.
struct Pair {
    List list;
    Model model;
};

fuzz::Input* input;
Pair pairs[3];

uint32_t Below(size_t limit)
{
    return input->ConsumeIntegralInRange<uint32_t>(0, static_cast<uint32_t>(limit) - 1);
}

Pair& Any()
{
    return pairs[Below(std::size(pairs))];
}

// Returns false on failure.
bool Put(const Way& way, bool moves, List& list, Node at, Owner* value, uint64_t order)
{
    if (Below(2) == 0) {
        return (moves ? way.move : way.copy)(&list, at, value, order) == 0;
    }
    const Node node = moves ? UTIL_LIST_ConstructNodeMove(value, list.traits)
                            : UTIL_LIST_ConstructNodeCopy(value, list.traits);
    if (node != nullptr) {
        CHECK(node->next == nullptr && node->prev == nullptr);
        way.link(&list, at, node, order);
    }
    return node != nullptr;
}

void Insert()
{
    auto& [list, model] = Any();
    const Way& way = ways[Below(std::size(ways))];
    const bool moves = Below(2) != 0;
    const uint64_t order = Below(2);
    const uint32_t value = Below(10);
    auto place = model.end();
    if (way.place == InsertPlace::Front) {
        place = model.begin();
    } else if (way.place == InsertPlace::Before) {
        place = model.begin() + Below(model.size() + 1);
    } else if (way.place == InsertPlace::Sorted) {
        place = std::ranges::find_if(model, [=](auto one) { return one + order <= value; });
    }
    Owner given = Make(value);
    const bool done = Put(way, moves, list, NodeAt(list, place - model.begin()), &given, order);
    CHECK((given == nullptr) == (moves && done && list.traits->constructMove != nullptr));
    if (!moves || !done) {
        Destroy(&given);
    }
    if (done) {
        model.insert(place, value);
    }
}

// Elements of size 0, and of the largest size.
void Refuse()
{
    UTIL_LIST_TRAITS_S absurd = owners[0];
    absurd.elemSize = ~uint64_t{0} - 8;
    for (const UTIL_LIST_TRAITS_S* traits : {&owners[0], &std::as_const(absurd), {}}) {
        List list;
        Owner value = nullptr;
        UTIL_LIST_Construct(&list, traits);
        CHECK(!Put(ways[Below(std::size(ways))], Below(2) != 0, list, nullptr,
                   traits == owners ? nullptr : &value, 0));
        CHECK(ValuesIn(list).empty());
    }
}

void Pop()
{
    auto& [list, model] = Any();
    const bool front = Below(2) != 0;
    CHECK((front ? UTIL_LIST_PopFront(&list) : UTIL_LIST_PopBack(&list)) ==
          (model.empty() ? 1 : 0));
    if (!model.empty()) {
        model.erase(front ? model.begin() : model.end() - 1);
    }
}

void Remove()
{
    auto& [list, model] = Any();
    const uint32_t from = Below(11);  // 0: all
    from == 0 ? UTIL_LIST_Clear(&list) : UTIL_LIST_RemoveIf(&list, IsAtLeast, from);
    std::erase_if(model, [=](uint32_t value) { return value >= from; });
}

// Also removes the elements that are found.
void Search()
{
    auto& [list, model] = Any();
    const uint32_t from = Below(10);
    const auto meant = [=](uint32_t value) { return value >= from; };
    const auto place = std::ranges::find_if(model, meant);
    const Node found = UTIL_LIST_FindIf(&list, IsAtLeast, from);
    CHECK(found == NodeAt(list, place - model.begin()));
    CHECK(UTIL_LIST_CountIf(&list, IsAtLeast, from) ==
          static_cast<uint64_t>(std::ranges::count_if(model, meant)));
    if (found != nullptr) {
        const Node next = found->next;
        CHECK(UTIL_LIST_DeleteNode(&list, found) == next);
        model.erase(place);
    }
}

// Iterates from either end and erases elements on the way, by the iterator's own methods.
void Iterate()
{
    constexpr UTIL_LIST_ITER_METHODS_S backwards = {UTIL_LIST_Prev, nullptr, UTIL_LIST_GetDataPtr,
                                                    UTIL_LIST_Erase};
    auto& [list, model] = Any();
    const uint32_t erased = Below(10);
    const bool back = Below(2) != 0;
    Model met;
    auto at = back ? UTIL_LIST_End(&list) : UTIL_LIST_Begin(&list);
    if (back) {
        at.methods->prev(&at);
        at.methods = &backwards;
    }
    while (at.node != nullptr) {
        met.push_back(ValueIn(at.methods->getDataPtr(&at)));
        const auto moved = met.back() == erased ? at.methods->erase(&at) : at.methods->next(&at);
        CHECK(moved.node == at.node);
    }
    if (back) {
        std::ranges::reverse(met);
    }
    CHECK(met == model);
    std::erase(model, erased);
}

void Swap()
{
    Pair& one = Any();
    Pair& other = Any();
    UTIL_LIST_Swap(&one.list, &other.list);
    std::swap(one.model, other.model);
}

void MoveWhole()
{
    Pair& source = Any();
    Pair& target = Any();
    if (&source != &target) {
        UTIL_LIST_Destruct(&target.list);
    }
    UTIL_LIST_ConstructMove(&target.list, &source.list);
    target.model = std::exchange(source.model, {});
}

// If an allocation fails, the elements copied before stay.
void CopyWhole()
{
    Pair& source = Any();
    Pair& target = Any();
    if (&source != &target) {
        UTIL_LIST_Destruct(&target.list);
    }
    const bool failed = UTIL_LIST_ConstructCopy(&target.list, &source.list) != 0;
    target.model = source.model;
    if (failed) {
        CHECK(target.list.count < target.model.size());
        target.model.resize(target.list.count);
    }
}

void Concatenate()
{
    Pair& target = Any();
    Pair& source = Any();
    UTIL_LIST_ConcatenateMove(&target.list, &source.list);
    const Model moved = std::exchange(source.model, {});
    target.model.insert(target.model.end(), moved.begin(), moved.end());
}

// A list as an element, by value or by pointer: copied, moved, and copied after a move.
void Nest()
{
    union Element {
        List list;
        List* pointer;
    } copied, moved, left;
    const auto& [list, model] = Any();
    const bool scarce = stepsLeft > 0;
    const bool byPointer = Below(2) != 0;
    const List* const pointer = &list;
    const auto& traits = byPointer ? g_utilListByPtrTraits : g_utilListByValueTraits;
    const uint32_t status =
        traits.constructCopy(&copied, byPointer ? static_cast<const void*>(&pointer) : pointer);
    CHECK(status == (byPointer && copied.pointer == nullptr ? 1 : 0));
    CHECK(traits.elemSize == (byPointer ? sizeof(List*) : sizeof(List)));
    CHECK(traits.constructMove(&moved, &copied) == 0 && traits.constructCopy(&left, &copied) == 0);

    const List* const inner = byPointer ? moved.pointer : &moved.list;
    const Model values = inner == nullptr ? Model() : ValuesIn(*inner);
    CHECK(values.size() <= model.size() && std::equal(values.begin(), values.end(), model.begin()));
    CHECK(scarce || values == model);
    CHECK(byPointer ? copied.pointer == nullptr : ValuesIn(copied.list).empty());
    CHECK(byPointer ? left.pointer == nullptr : ValuesIn(left.list).empty());

    const List unmade = {};
    g_utilListByValueTraits.print(&unmade);
    for (Element* element : {&copied, &moved, &left}) {
        traits.print(element);
        traits.destruct(element);
    }
    CHECK(std::exchange(printed, {}) == (list.traits->print != nullptr ? values : Model()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr void (*steps[])() = {Insert,    Insert,      Insert,  Refuse, Pop,
                                   Remove,    Search,      Iterate, Swap,   MoveWhole,
                                   CopyWhole, Concatenate, Nest};
    fuzz::Input all(data, size);
    input = &all;
    const auto& traits = owners[Below(2)];
    for (Pair& pair : pairs) {
        UTIL_LIST_Construct(&pair.list, &traits);
    }
    while (all.remaining_bytes() > 0) {
        stepsLeft = Below(16) == 0 ? 1 + Below(4) : 0;
        steps[Below(std::size(steps))]();
        for (const Pair& pair : pairs) {
            CHECK(ValuesIn(pair.list) == pair.model);
        }
    }
    stepsLeft = 0;
    for (Pair& pair : pairs) {
        UTIL_LIST_Destruct(&pair.list);
        pair.model.clear();
    }
    CHECK(blocks == 0);
    return 0;
}
