// The generic list: lists of lists, and what random operations against vectors don't reach.
#include <tarnd_qrb/util_list.h>

#include "support/platform.h"

namespace {

using List = UTIL_LIST_S*;
using Node = UTIL_LIST_NODE_S*;

constexpr UTIL_LIST_TRAITS_S NUMBERS = {4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};

class UtilList : public support::PlatformTest {
protected:
    void TearDown() override
    {
        EXPECT_EQ(support::LibraryBlocks(), 0);
        PlatformTest::TearDown();
    }
};

TEST_F(UtilList, RefusesWhatCannotBeAnElement)
{
    UTIL_LIST_TRAITS_S absurd = NUMBERS;
    absurd.elemSize           = ~uint64_t{0} - 8;
    uint32_t    value         = 1;
    UTIL_LIST_S list;
    for (const UTIL_LIST_TRAITS_S* traits : {&NUMBERS, &std::as_const(absurd), {}}) {
        uint32_t* const given = traits == &NUMBERS ? nullptr : &value;
        UTIL_LIST_Construct(&list, traits);
        EXPECT_EQ(UTIL_LIST_PushBack(&list, given), 1U);
        EXPECT_EQ(UTIL_LIST_SortedInsertMove(&list, given, nullptr, 0), 1U);
        EXPECT_EQ(UTIL_LIST_ConstructNodeMove(given, traits), nullptr);
        EXPECT_TRUE(UTIL_LIST_IsEmpty(&list) && list.count == 0);
    }
}

TEST_F(UtilList, MovesBytesAndErasesInTheIteratorsOwnDirection)
{
    static constexpr UTIL_LIST_ITER_METHODS_S backward = {UTIL_LIST_Prev, nullptr, nullptr,
                                                          nullptr};
    uint32_t                                  value    = 7;
    UTIL_LIST_S                               list;
    UTIL_LIST_Construct(&list, &NUMBERS);
    support::FailCall("memcpy_s", 1, 22);
    for (const uint32_t failed : {1U, 0U, 0U}) {
        EXPECT_EQ(UTIL_LIST_PushBackMove(&list, &value), failed);
    }
    EXPECT_EQ(*static_cast<uint32_t*>(UTIL_LIST_Data(list.tail)), 7U);
    UTIL_LIST_ITER_S iterator = {list.tail, &list, &backward};
    EXPECT_EQ(UTIL_LIST_Erase(&iterator).node, list.head);
    EXPECT_TRUE(iterator.node == list.tail && list.count == 1);
    UTIL_LIST_Destruct(&list);
}

// By pointer or by value. The inner ones hold 1; 1, 2; and 1, 2, 3.
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
        UTIL_LIST_Construct(&inner, &NUMBERS);
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
    unsigned nth = 0;
    for (bool whole = false; !whole && nth < 100;) {
        UTIL_LIST_S list;
        UTIL_LIST_S copy;
        support::FailCall("malloc_ex", ++nth, 0);
        Build(&list);
        UTIL_LIST_ConstructCopy(&copy, &list);
        whole = IsWhole(&copy);
        UTIL_LIST_Destruct(&copy);
        UTIL_LIST_Destruct(&list);
        ASSERT_EQ(support::LibraryBlocks(), 0) << "allocation " << nth;
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
    UTIL_LIST_Destruct(&copy);
    UTIL_LIST_Destruct(&list);
}

TEST_P(ListOfLists, CallbacksTellWhetherThereWasMemory)
{
    UTIL_LIST_S list;
    UTIL_LIST_S element;
    UTIL_LIST_S taken;
    Build(&list);
    support::FailCall("malloc_ex", 1, 0);
    EXPECT_EQ(list.traits->constructCopy(&element, UTIL_LIST_Data(list.tail)),
              GetParam() ? 1U : 0U);
    list.traits->destruct(&element);
    EXPECT_EQ(list.traits->constructCopy(&element, UTIL_LIST_Data(list.tail)), 0U);
    EXPECT_EQ(list.traits->constructMove(&taken, &element), 0U);
    list.traits->destruct(&taken);
    EXPECT_EQ(list.traits->constructCopy(&taken, &element), 0U);  // of null, or of an empty list
    UTIL_LIST_Destruct(&list);
}

INSTANTIATE_TEST_SUITE_P(, ListOfLists, testing::Bool(),
                         [](const auto& by) { return by.param ? "ByPointer" : "ByValue"; });

TEST_F(UtilList, PrintsInnerElementsWhereTheirTraitsCan)
{
    static std::string printed;
    UTIL_LIST_TRAITS_S printing = NUMBERS;
    printing.print              = [](const void* e) { printed += *static_cast<const char*>(e); };
    for (const UTIL_LIST_TRAITS_S* traits : {&std::as_const(printing), &NUMBERS}) {
        UTIL_LIST_S list;
        List        pointers[] = {&list, nullptr};
        UTIL_LIST_Construct(&list, traits);
        ASSERT_EQ(UTIL_LIST_PushBack(&list, "a  ") + UTIL_LIST_PushBack(&list, "b  "), 0U);
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
