// The generic list: random operations against a vector, with every node accounted for; lists of
// lists; and what neither reaches.
#include <tarnd_platform/memory.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/util_list.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>

#include "support/platform.h"

namespace {

using List   = UTIL_LIST_S*;
using Node   = UTIL_LIST_NODE_S*;
using Traits = const UTIL_LIST_TRAITS_S*;
using Values = std::vector<uint32_t>;
using Charge = std::pair<uint64_t, uint64_t>;  // bytes, blocks

constexpr uint32_t GONE = 0xDEADBEEF;

// Two kinds of elements, which begin with their value: counted ones, whose callbacks tell how many
// are alive (and answer statuses that nobody may heed), and plain ones, which end with its
// complement.
int alive = 0;

uint32_t& ValueAt(void* element)
{
    return *static_cast<uint32_t*>(element);
}

uint32_t Copy(void* element, const void* value)
{
    alive++;
    ValueAt(element) = *static_cast<const uint32_t*>(value);
    return 1;
}

uint32_t Move(void* element, void* value)
{
    alive++;
    ValueAt(element) = std::exchange(ValueAt(value), GONE);
    return 1;
}

void Destroy(void* element)
{
    alive--;
    EXPECT_NE(std::exchange(ValueAt(element), GONE), GONE);
}

// clang-format off
const UTIL_LIST_TRAITS_S COUNTED = {4,  nullptr, Destroy, Copy,    Move,    nullptr, nullptr};
const UTIL_LIST_TRAITS_S PLAIN   = {12, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
// clang-format on

// order 0: among equals the newest comes first; 1: last.
bool StaysAhead(const void* existing, const void* added, uint64_t order)
{
    const uint32_t a = *static_cast<const uint32_t*>(existing);
    const uint32_t b = *static_cast<const uint32_t*>(added);
    return order == 0 ? a > b : a >= b;
}

bool IsMultiple(const void* element, uint64_t divisor)
{
    return *static_cast<const uint32_t*>(element) % divisor == 0;
}

Charge Charged()
{
    Charge         charge;
    const uint16_t handle = MEM_EX_GetHandle(MEM_EX_MODULE_FRAMEWORK);
    EXPECT_EQ(meminfo_get(5, handle, &charge.first, &charge.second), 0U);
    return charge;
}

void FailAllocation(size_t nth)
{
    support::FailCall("malloc_ex", static_cast<unsigned>(nth), 0);
}

Node NodeAt(List list, size_t index)
{
    Node node = list->head;
    for (; index > 0; index--) {
        node = node->next;
    }
    return node;
}

// By iterators, once each way.
Values ValuesOf(List list)
{
    Values forward;
    Values backward;
    for (auto at = UTIL_LIST_Begin(list); at.node != UTIL_LIST_End(list).node;) {
        forward.push_back(ValueAt(at.methods->getDataPtr(&at)));
        EXPECT_TRUE(list->traits == &COUNTED ||
                    (&ValueAt(UTIL_LIST_Data(at.node)))[2] == ~forward.back());
        at.methods->next(&at);
    }
    for (auto at = UTIL_LIST_End(list); at.methods->prev(&at).node != nullptr;) {
        backward.insert(backward.begin(), ValueAt(UTIL_LIST_GetDataPtr(&at)));
    }
    EXPECT_EQ(forward, backward);
    return forward;
}

class UtilList : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        MEM_EX_Init();
        before_ = Charged();
    }

    void TearDown() override
    {
        EXPECT_EQ(Charged(), before_);
        EXPECT_EQ(std::exchange(alive, 0), 0);
        PlatformTest::TearDown();
    }

    Charge before_;
};

enum PLACE { FRONT, BACK, BEFORE, SORTED };

// A way into a list.
struct Insertion {
    PLACE place;
    bool  moves;
    uint32_t (*insert)(List list, Node before, void* value, uint64_t order);
};

// The second half of an insertion.
template <typename Link>
uint32_t Then(Node built, Link link)
{
    if (built == nullptr) {
        return 1;
    }
    EXPECT_TRUE(built->next == nullptr && built->prev == nullptr);
    link(built);
    return 0;
}

// clang-format off
#define BY(...) [](List l, [[maybe_unused]] Node at, void* v, [[maybe_unused]] uint64_t order) { return __VA_ARGS__; }
#define LINK(...) [&](Node n) { __VA_ARGS__; }
const Insertion INSERTIONS[] = {
    {FRONT,  false, BY(UTIL_LIST_PushFront(l, v))},
    {FRONT,  true,  BY(UTIL_LIST_PushFrontMove(l, v))},
    {FRONT,  false, BY(Then(UTIL_LIST_ConstructNodeCopy(v, l->traits), LINK(UTIL_LIST_PushFrontImpl(l, n))))},
    {BACK,   false, BY(UTIL_LIST_PushBack(l, v))},
    {BACK,   true,  BY(UTIL_LIST_PushBackMove(l, v))},
    {BACK,   true,  BY(Then(UTIL_LIST_ConstructNodeMove(v, l->traits), LINK(UTIL_LIST_PushBackImpl(l, n))))},
    {BEFORE, false, BY(UTIL_LIST_InsertBefore(l, at, v))},
    {BEFORE, true,  BY(UTIL_LIST_InsertBeforeMove(l, at, v))},
    {BEFORE, false, BY(Then(UTIL_LIST_ConstructNodeCopy(v, l->traits), LINK(UTIL_LIST_InsertBeforeImpl(l, at, n))))},
    {SORTED, false, BY(UTIL_LIST_SortedInsert(l, v, StaysAhead, order))},
    {SORTED, true,  BY(UTIL_LIST_SortedInsertMove(l, v, StaysAhead, order))},
    {SORTED, true,  BY(Then(UTIL_LIST_ConstructNodeMove(v, l->traits),
                            LINK(UTIL_LIST_SortedInsertImpl(l, n, StaysAhead, order))))},
};
// clang-format on

// Lists beside the vectors that they should equal. They stay short: there the cases are.
class BesideAVector : public UtilList {
protected:
    struct Pair {
        UTIL_LIST_S list;
        Traits      traits;
        Values      model;

        auto At(size_t index) { return model.begin() + static_cast<ptrdiff_t>(index); }
    };

    uint32_t Below(size_t limit) { return static_cast<uint32_t>(random_() % limit); }

    void Insert(Pair& pair)
    {
        const Insertion& way   = INSERTIONS[Below(std::size(INSERTIONS))];
        const uint32_t   value = Below(20);
        const uint64_t   order = Below(2);
        size_t           at    = way.place == BACK ? pair.model.size() : 0;
        if (way.place == BEFORE) {
            if (pair.model.empty()) {
                return;
            }
            at = Below(pair.model.size());
        }
        while (way.place == SORTED && at < pair.model.size() &&
               StaysAhead(&pair.model[at], &value, order)) {
            at++;
        }
        const bool fails = Below(8) == 0;
        if (fails) {
            support::FailCall(pair.traits == &PLAIN && Below(2) == 0 ? "memcpy_s" : "malloc_ex", 1,
                              1);
        }
        uint32_t   given[3] = {value, 0, ~value};
        const Node before   = way.place == BEFORE ? NodeAt(&pair.list, at) : nullptr;
        EXPECT_EQ(way.insert(&pair.list, before, given, order), fails ? 1U : 0U);
        EXPECT_EQ(given[0], way.moves && pair.traits == &COUNTED && !fails ? GONE : value);
        if (!fails) {
            pair.model.insert(pair.At(at), value);
        }
    }

    void Remove(Pair& pair)
    {
        const size_t   size = pair.model.size();
        const uint32_t way  = Below(5);
        const size_t   at   = size == 0 || way == 0 ? 0 : way == 1 ? size - 1 : Below(size);
        const Node     node = NodeAt(&pair.list, at);
        if (way < 2) {
            EXPECT_EQ((way == 0 ? UTIL_LIST_PopFront : UTIL_LIST_PopBack)(&pair.list), size == 0);
        }
        if (size == 0) {
            return;
        }
        pair.model.erase(pair.At(at));
        // An iterator may bring methods of its own.
        static const UTIL_LIST_ITER_METHODS_S BACKWARD = {UTIL_LIST_Prev, nullptr, nullptr,
                                                          nullptr};
        UTIL_LIST_ITER_S                      iterator = {node, &pair.list,
                                     way == 3 ? &g_UTIL_ListIteratorMethods : &BACKWARD};
        const Node after = way < 2 ? node : way == 4 ? node->prev : node->next;
        if (way == 2) {
            EXPECT_EQ(UTIL_LIST_DeleteNode(&pair.list, node), after);
        } else if (way > 2) {
            EXPECT_EQ(UTIL_LIST_Erase(&iterator).node, after);
            EXPECT_EQ(iterator.node, after);
        }
    }

    void Select(Pair& pair)
    {
        const uint64_t divisor = 1 + Below(9);
        const auto     matches = [&](uint32_t value) { return value % divisor == 0; };
        const auto     found   = std::find_if(pair.At(0), pair.model.end(), matches);
        EXPECT_EQ(UTIL_LIST_FindIf(&pair.list, IsMultiple, divisor),
                  NodeAt(&pair.list, static_cast<size_t>(found - pair.At(0))));
        EXPECT_EQ(UTIL_LIST_CountIf(&pair.list, IsMultiple, divisor),
                  static_cast<uint64_t>(std::count_if(found, pair.model.end(), matches)));
        if (Below(3) == 0) {
            UTIL_LIST_RemoveIf(&pair.list, IsMultiple, divisor);
            std::erase_if(pair.model, matches);
        }
    }

    // To itself: nothing happens. Then a copy, whole or up to an allocation that fails, is taken
    // over, to and fro.
    void CopyAndMove(Pair& pair)
    {
        const size_t copied = Below(pair.model.size() + 1);
        const bool   fails  = copied < pair.model.size();
        UTIL_LIST_S  copy;
        UTIL_LIST_S  moved;
        if (fails) {
            FailAllocation(copied + 1);
        }
        UTIL_LIST_ConstructMove(&pair.list, &pair.list);
        EXPECT_EQ(UTIL_LIST_ConstructCopy(&pair.list, &pair.list), 0U);
        EXPECT_EQ(UTIL_LIST_ConstructCopy(&copy, &pair.list), fails ? 1U : 0U);
        UTIL_LIST_ConstructMove(&moved, &copy);
        EXPECT_EQ(ValuesOf(&moved), Values(pair.At(0), pair.At(copied)));
        UTIL_LIST_ConcatenateMove(&copy, &moved);
        EXPECT_EQ(copy.count, copied);
        UTIL_LIST_Destruct(&copy);
        EXPECT_TRUE(ValuesOf(&copy).empty() && ValuesOf(&moved).empty());
    }

    void Join(Pair& pair, Pair& other)
    {
        if (Below(2) == 0) {
            UTIL_LIST_Swap(&pair.list, &other.list);
            std::swap(pair, other);
            std::swap(pair.list, other.list);
        } else if (pair.traits == other.traits) {
            UTIL_LIST_ConcatenateMove(&pair.list, &other.list);
            const Values appended = &pair != &other ? std::exchange(other.model, {}) : Values{};
            pair.model.insert(pair.model.end(), appended.begin(), appended.end());
        }
    }

    void Check(const std::array<Pair, 4>& pairs)
    {
        Charge expected = before_;
        size_t counted  = 0;
        for (Pair pair : pairs) {
            const size_t size = pair.model.size();
            EXPECT_EQ(ValuesOf(&pair.list), pair.model);
            EXPECT_EQ(pair.list.count, size);
            EXPECT_EQ(pair.list.traits, pair.traits);
            EXPECT_EQ(UTIL_LIST_IsEmpty(&pair.list), size == 0);
            expected.first += size * (pair.traits->elemSize + 16);
            expected.second += size;
            counted += pair.traits == &COUNTED ? size : 0;
        }
        EXPECT_EQ(Charged(), expected);
        EXPECT_EQ(alive, static_cast<int>(counted));
    }

    std::mt19937 random_;
};

TEST_F(BesideAVector, AfterEveryRandomOperation)
{
    for (unsigned seed = 20261124; seed < 20261128; seed++) {
        random_.seed(seed);
        std::array<Pair, 4> pairs;
        for (Pair& pair : pairs) {
            pair.traits = &pair < &pairs[2] ? &COUNTED : &PLAIN;
            UTIL_LIST_Construct(&pair.list, pair.traits);
        }
        for (int step = 0; step < 2500 && !HasFailure(); step++) {
            SCOPED_TRACE("step " + std::to_string(step) + " of seed " + std::to_string(seed));
            Pair&          pair = pairs[Below(4)];
            const uint32_t kind = Below(100);
            support::ResetPlatform();
            kind < 50   ? Insert(pair)
            : kind < 70 ? Remove(pair)
            : kind < 80 ? Select(pair)
            : kind < 90 ? CopyAndMove(pair)
                        : Join(pair, pairs[Below(4)]);
            Check(pairs);
        }
        for (Pair& pair : pairs) {
            UTIL_LIST_Clear(&pair.list);
        }
    }
}

TEST_F(UtilList, RefusesWhatCannotBeAnElement)
{
    UTIL_LIST_TRAITS_S absurd = PLAIN;
    absurd.elemSize           = ~uint64_t{0} - 8;
    uint32_t value            = 1;
    for (const Traits traits : {&COUNTED, Traits{&absurd}, Traits{nullptr}}) {
        UTIL_LIST_S list;
        UTIL_LIST_Construct(&list, traits);
        for (const Insertion& way : INSERTIONS) {
            EXPECT_EQ(way.insert(&list, nullptr, traits == &COUNTED ? nullptr : &value, 0), 1U);
        }
        EXPECT_TRUE(UTIL_LIST_IsEmpty(&list) && list.count == 0);
    }
}

// Lists of lists, by pointer or by value. The inner ones hold 1; 1, 2; and 1, 2, 3.
class ListOfLists : public UtilList, public testing::WithParamInterface<bool> {
protected:
    static List Inner(Node node)
    {
        void* element = UTIL_LIST_Data(node);
        return GetParam() ? *static_cast<List*>(element) : static_cast<List>(element);
    }

    static void Build(List list)
    {
        UTIL_LIST_Construct(list, GetParam() ? &g_utilListByPtrTraits : &g_utilListByValueTraits);
        UTIL_LIST_S inner;
        const List  pointer = &inner;
        UTIL_LIST_Construct(&inner, &COUNTED);
        for (uint32_t value = 1; value <= 3; value++) {
            UTIL_LIST_PushBack(&inner, &value);
            UTIL_LIST_PushBack(list, GetParam() ? static_cast<const void*>(&pointer) : &inner);
        }
        UTIL_LIST_Destruct(&inner);
    }

    static bool IsWhole(List list)
    {
        uint64_t size = 0;
        for (Node node = list->head; node != nullptr; node = node->next) {
            if (Inner(node) == nullptr || Inner(node)->count != ++size) {
                return false;
            }
        }
        return size == 3;
    }
};

TEST_P(ListOfLists, GivesEveryNodeBackWhicheverAllocationFails)
{
    UTIL_LIST_S list;
    UTIL_LIST_S copy;
    size_t      nth = 0;
    for (bool whole = false; !whole && nth < 100;) {
        FailAllocation(++nth);
        Build(&list);
        UTIL_LIST_ConstructCopy(&copy, &list);
        whole = IsWhole(&copy);
        UTIL_LIST_Destruct(&copy);
        UTIL_LIST_Destruct(&list);
        ASSERT_EQ(Charged(), before_) << "allocation " << nth;
        ASSERT_EQ(alive, 0) << "allocation " << nth;
    }
    // Nodes of the caller's list; then twice outer nodes, inner nodes, and heads of their own.
    EXPECT_EQ(nth, 1 + 3U + 2 * (3 + 6 + (GetParam() ? 3 : 0)));
}

TEST_P(ListOfLists, CopiesDeeplyAndMovesWithoutCopying)
{
    UTIL_LIST_S list;
    UTIL_LIST_S copy;
    Build(&list);
    ASSERT_EQ(UTIL_LIST_ConstructCopy(&copy, &list), 0U);
    UTIL_LIST_PopFront(Inner(copy.tail));
    EXPECT_TRUE(IsWhole(&list));

    // What a move leaves behind is empty, or null; copied again, it stays so.
    const Node moved = Inner(copy.tail)->head;
    ASSERT_EQ(UTIL_LIST_PushFrontMove(&list, UTIL_LIST_Data(copy.tail)), 0U);
    EXPECT_EQ(Inner(list.head)->head, moved);
    ASSERT_EQ(UTIL_LIST_PushBack(&list, UTIL_LIST_Data(copy.tail)), 0U);
    EXPECT_TRUE(GetParam() ? Inner(list.tail) == nullptr : UTIL_LIST_IsEmpty(Inner(list.tail)));
    EXPECT_EQ(alive, 6 + 5);
    UTIL_LIST_Destruct(&copy);
    UTIL_LIST_Destruct(&list);
}

INSTANTIATE_TEST_SUITE_P(, ListOfLists, testing::Bool(),
                         [](const auto& by) { return by.param ? "ByPointer" : "ByValue"; });

TEST_F(UtilList, PrintsInnerElementsWhereTheirTraitsCan)
{
    static std::string printed;
    UTIL_LIST_TRAITS_S printing = PLAIN;
    printing.print              = [](const void* e) { printed += *static_cast<const char*>(e); };
    for (const Traits traits : {Traits{&printing}, &PLAIN}) {
        UTIL_LIST_S list;
        List        pointers[] = {&list, nullptr};
        UTIL_LIST_Construct(&list, traits);
        ASSERT_EQ(
            UTIL_LIST_PushBack(&list, "a          ") + UTIL_LIST_PushBack(&list, "b          "),
            0U);
        g_utilListByValueTraits.print(&list);
        g_utilListByPtrTraits.print(&pointers[0]);
        g_utilListByPtrTraits.print(&pointers[1]);
        UTIL_LIST_Destruct(&list);
    }
    const UTIL_LIST_S unmade = {};
    g_utilListByValueTraits.print(&unmade);
    EXPECT_EQ(printed, "abab");
}

}  // namespace
