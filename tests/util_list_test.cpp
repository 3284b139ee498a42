// The generic list: lists of lists, and what random operations against a vector don't reach.
#include <tarnd_platform/memory.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/util_list.h>

#include <cstring>

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

// A way into a list.
using Insertion = uint32_t (*)(List list, Node before, void* value, uint64_t order);

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
    BY(UTIL_LIST_PushFront(l, v)),
    BY(UTIL_LIST_PushFrontMove(l, v)),
    BY(Then(UTIL_LIST_ConstructNodeCopy(v, l->traits), LINK(UTIL_LIST_PushFrontImpl(l, n)))),
    BY(UTIL_LIST_PushBack(l, v)),
    BY(UTIL_LIST_PushBackMove(l, v)),
    BY(Then(UTIL_LIST_ConstructNodeMove(v, l->traits), LINK(UTIL_LIST_PushBackImpl(l, n)))),
    BY(UTIL_LIST_InsertBefore(l, at, v)),
    BY(UTIL_LIST_InsertBeforeMove(l, at, v)),
    BY(Then(UTIL_LIST_ConstructNodeCopy(v, l->traits), LINK(UTIL_LIST_InsertBeforeImpl(l, at, n)))),
    BY(UTIL_LIST_SortedInsert(l, v, StaysAhead, order)),
    BY(UTIL_LIST_SortedInsertMove(l, v, StaysAhead, order)),
    BY(Then(UTIL_LIST_ConstructNodeMove(v, l->traits), LINK(UTIL_LIST_SortedInsertImpl(l, n, StaysAhead, order)))),
};
// clang-format on

// What random operations leave out: plain bytes, the way back, and an iterator's own methods.
TEST_F(UtilList, TakesElementsInEveryWayAndGoesBothWays)
{
    static const UTIL_LIST_ITER_METHODS_S BACKWARD = {UTIL_LIST_Prev, nullptr, nullptr, nullptr};
    for (const Traits traits : {&COUNTED, &PLAIN}) {
        for (const Insertion insert : INSERTIONS) {
            UTIL_LIST_S list;
            uint32_t    first[] = {9, 0, ~9U};
            UTIL_LIST_Construct(&list, traits);
            EXPECT_EQ(UTIL_LIST_PushBack(&list, first), 0U);
            for (const uint32_t value : {8U, 7U}) {
                uint32_t given[] = {value, 0, ~value};
                EXPECT_EQ(insert(&list, list.head, given, 0), 0U);
            }
            const Values values = ValuesOf(&list);
            EXPECT_EQ(values.size(), 3U);
            UTIL_LIST_ITER_S iterator = {list.tail, &list, &BACKWARD};
            EXPECT_EQ(UTIL_LIST_Erase(&iterator).node, list.tail);
            EXPECT_EQ(ValuesOf(&list), Values(values.begin(), values.end() - 1));
            UTIL_LIST_Clear(&list);
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
        for (const Insertion insert : INSERTIONS) {
            EXPECT_EQ(insert(&list, nullptr, traits == &COUNTED ? nullptr : &value, 0), 1U);
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
