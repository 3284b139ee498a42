/**
 * @file
 * @brief A doubly linked list that stores its elements inside the nodes.
 *
 * A traits record describes the elements: their size, and callbacks that copy, move, destroy and
 * print one. A list of plain values needs only the size:
 *
 * @code{.c}
 * static bool Greater(const void* existing, const void* added, uint64_t context)
 * {
 *     (void)context;
 *     return *(const uint32_t*)existing > *(const uint32_t*)added;
 * }
 *
 * static const UTIL_LIST_TRAITS_S numbers = {.elemSize = sizeof(uint32_t)};
 *
 * uint32_t Largest(const uint32_t* values, size_t size)
 * {
 *     uint32_t    largest = 0;
 *     UTIL_LIST_S list;
 *     UTIL_LIST_Construct(&list, &numbers);
 *     for (size_t i = 0; i < size; ++i) {
 *         if (UTIL_LIST_SortedInsert(&list, &values[i], Greater, 0) != 0) {
 *             break;
 *         }
 *     }
 *     if (!UTIL_LIST_IsEmpty(&list)) {
 *         largest = *(const uint32_t*)UTIL_LIST_Data(list.head);
 *     }
 *     UTIL_LIST_Destruct(&list);
 *     return largest;
 * }
 * @endcode
 *
 * @par Results
 * Status functions return 0 for success and 1 for failure. A failed operation leaves the list
 * unchanged. An insertion fails if there is no memory, the value is null, the list has no traits,
 * or memcpy_s() refuses to copy the element.
 * @par Null pointers
 * Pointers must not be null: they are not checked, except the value of an insertion. Nodes and
 * iterators must belong to the list they are used with.
 * @par Ownership
 * A list owns its nodes and the elements in them. A copying function leaves the value to the
 * caller. A moving function (with Move in its name) hands the value to the constructMove callback,
 * which may take over what it owns; without that callback it copies the bytes.
 * @par Threads
 * A list has no lock: it is used by one thread at a time. A callback must not change the list that
 * calls it.
 * @par Memory
 * A node is one block of elemSize + 16 bytes from malloc_ex(), charged to the framework's module
 * (tarnd_qrb/memory_map.h). A list is cleared before its memory is reused, or its nodes are lost.
 * @par Invariants
 * head is null if and only if tail is null and count is 0. prev of the first node and next of the
 * last node are null. count is the number of nodes.
 * @par Cost
 * Constant, except for functions that visit the elements (sorted insertion, FindIf, CountIf,
 * RemoveIf, Clear, copying), which make one callback for each element visited.
 * @par Log
 * Nothing is logged. No function uses the database.
 */
#pragma once

#include <assert.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Releases what an element owns. Called just before the node is freed.
 *
 * @param[in,out] element  address of the element in its node
 */
typedef void (*UTIL_LIST_DESTRUCT_FUNC)(void* element);

/**
 * Constructs the element of a new node as a copy of a value.
 *
 * @param[out] element  address of the element in its node, aligned for any type
 * @param[in]  value    address of the caller's value
 * @return not used; a callback that fails leaves an element that the destruct callback accepts
 */
typedef uint32_t (*UTIL_LIST_COPY_FUNC)(void* element, const void* value);

/**
 * Constructs the element of a new node by moving a value into it.
 *
 * @param[out]    element  address of the element in its node, aligned for any type
 * @param[in,out] value    address of the caller's value
 * @return not used; a callback that fails leaves an element that the destruct callback accepts
 */
typedef uint32_t (*UTIL_LIST_MOVE_FUNC)(void* element, void* value);

/**
 * Prints an element.
 *
 * @param[in] element  address of the element in its node
 */
typedef void (*UTIL_LIST_PRINT_FUNC)(const void* element);

/**
 * Decides the place of an element in a sorted insertion.
 *
 * @param[in] existing  address of an element of the list
 * @param[in] added     address of the element that is inserted
 * @param[in] context   context of the calling function
 * @return true if existing stays in front of added
 */
typedef bool (*UTIL_LIST_COMPARE_FUNC)(const void* existing, const void* added, uint64_t context);

/**
 * Tests an element.
 *
 * @param[in] element  address of the element in its node
 * @param[in] context  context of the calling function
 * @return true if the element satisfies the condition
 */
typedef bool (*UTIL_LIST_PREDICATE_FUNC)(const void* element, uint64_t context);

/** Description of a list's elements. It must outlive the list. */
typedef struct {
    uint64_t elemSize;                 /**< size of an element in bytes */
    void* reserved1;                   /**< not used */
    UTIL_LIST_DESTRUCT_FUNC destruct;  /**< null: elements own nothing */
    UTIL_LIST_COPY_FUNC constructCopy; /**< null: the bytes are copied */
    UTIL_LIST_MOVE_FUNC constructMove; /**< null: the bytes are copied */
    void* reserved5;                   /**< not used */
    UTIL_LIST_PRINT_FUNC print;        /**< used by UTIL_LIST_PrintCallback() only; may be null */
} UTIL_LIST_TRAITS_S;

/** A node. Its element follows at offset 16, see UTIL_LIST_Data(). */
typedef struct UTIL_LIST_NODE_S {
    struct UTIL_LIST_NODE_S* next; /**< next node; null at the tail */
    struct UTIL_LIST_NODE_S* prev; /**< previous node; null at the head */
} UTIL_LIST_NODE_S;

/** A list, usually a member of its owner. Its members are for reading. */
typedef struct {
    const UTIL_LIST_TRAITS_S* traits; /**< description of the elements */
    UTIL_LIST_NODE_S* head;           /**< first node; null if the list is empty */
    UTIL_LIST_NODE_S* tail;           /**< last node; null if the list is empty */
    uint64_t count;                   /**< number of nodes */
} UTIL_LIST_S;

/** Methods of an iterator. */
typedef struct UTIL_LIST_ITER_METHODS_S UTIL_LIST_ITER_METHODS_S;

/**
 * An iterator: a position in a list, which is a node or the end, one past the tail. It is passed by
 * value and valid until its node is removed.
 */
typedef struct {
    UTIL_LIST_NODE_S* node;                  /**< node; null at the end */
    UTIL_LIST_S* list;                       /**< the list */
    const UTIL_LIST_ITER_METHODS_S* methods; /**< g_UTIL_ListIteratorMethods */
} UTIL_LIST_ITER_S;

/** Methods of an iterator. */
struct UTIL_LIST_ITER_METHODS_S {
    UTIL_LIST_ITER_S (*next)(UTIL_LIST_ITER_S* iterator);  /**< UTIL_LIST_Next() */
    UTIL_LIST_ITER_S (*prev)(UTIL_LIST_ITER_S* iterator);  /**< UTIL_LIST_Prev() */
    void* (*getDataPtr)(const UTIL_LIST_ITER_S* iterator); /**< UTIL_LIST_GetDataPtr() */
    UTIL_LIST_ITER_S (*erase)(UTIL_LIST_ITER_S* iterator); /**< UTIL_LIST_Erase() */
};

static_assert(sizeof(UTIL_LIST_TRAITS_S) == 56 && offsetof(UTIL_LIST_TRAITS_S, elemSize) == 0 &&
                  offsetof(UTIL_LIST_TRAITS_S, destruct) == 16 &&
                  offsetof(UTIL_LIST_TRAITS_S, constructCopy) == 24 &&
                  offsetof(UTIL_LIST_TRAITS_S, constructMove) == 32 &&
                  offsetof(UTIL_LIST_TRAITS_S, print) == 48,
              "UTIL_LIST_TRAITS_S has another layout");
static_assert(sizeof(UTIL_LIST_NODE_S) == 16 && offsetof(UTIL_LIST_NODE_S, prev) == 8,
              "UTIL_LIST_NODE_S has another layout");
static_assert(sizeof(UTIL_LIST_S) == 32 && offsetof(UTIL_LIST_S, head) == 8 &&
                  offsetof(UTIL_LIST_S, tail) == 16 && offsetof(UTIL_LIST_S, count) == 24,
              "UTIL_LIST_S has another layout");
static_assert(sizeof(UTIL_LIST_ITER_S) == 24 && offsetof(UTIL_LIST_ITER_S, list) == 8 &&
                  offsetof(UTIL_LIST_ITER_S, methods) == 16,
              "UTIL_LIST_ITER_S has another layout");
static_assert(sizeof(UTIL_LIST_ITER_METHODS_S) == 32 &&
                  offsetof(UTIL_LIST_ITER_METHODS_S, prev) == 8 &&
                  offsetof(UTIL_LIST_ITER_METHODS_S, getDataPtr) == 16 &&
                  offsetof(UTIL_LIST_ITER_METHODS_S, erase) == 24,
              "UTIL_LIST_ITER_METHODS_S has another layout");

/** The methods of every iterator. */
extern const UTIL_LIST_ITER_METHODS_S g_UTIL_ListIteratorMethods;

/**
 * Returns the address of the element of a node.
 *
 * @param[in] node  node
 * @return address of the element
 */
static inline void* UTIL_LIST_Data(UTIL_LIST_NODE_S* node)
{
    return node + 1;
}

/**
 * Constructs an empty list in raw memory.
 *
 * @param[out] list    memory of the list
 * @param[in]  traits  description of the elements
 */
void UTIL_LIST_Construct(UTIL_LIST_S* list, const UTIL_LIST_TRAITS_S* traits);

/**
 * Destroys every element, from head to tail. The list keeps its traits and can be used again.
 *
 * @param[in,out] list  list
 */
void UTIL_LIST_Clear(UTIL_LIST_S* list);

/**
 * Destroys every element, from head to tail. Same as UTIL_LIST_Clear().
 *
 * @param[in,out] list  list
 */
void UTIL_LIST_Destruct(UTIL_LIST_S* list);

/**
 * Checks whether a list has no element.
 *
 * @param[in] list  list
 * @return true if the list is empty
 */
bool UTIL_LIST_IsEmpty(const UTIL_LIST_S* list);

/**
 * Exchanges two lists, elements and traits.
 *
 * @param[in,out] a  list
 * @param[in,out] b  list; may be a
 */
void UTIL_LIST_Swap(UTIL_LIST_S* a, UTIL_LIST_S* b);

/**
 * Constructs a list in raw memory from the nodes of another one.
 *
 * @param[out]    destination  memory of the new list, which gets the traits and nodes of source
 * @param[in,out] source       list; empty afterwards, unless it is destination, which stays
 * unchanged
 */
void UTIL_LIST_ConstructMove(UTIL_LIST_S* destination, UTIL_LIST_S* source);

/**
 * Constructs a list in raw memory as a copy of another one.
 *
 * @param[out] destination  memory of the new list, which gets the traits of source and copies of
 * its elements
 * @param[in]  source       list; may be destination, which then stays unchanged
 *
 * @retval 0  all elements were copied
 * @retval 1  a copy failed
 *
 * @par After a failure
 * destination holds the copies made so far; the caller clears it.
 */
uint32_t UTIL_LIST_ConstructCopy(UTIL_LIST_S* destination, const UTIL_LIST_S* source);

/**
 * Appends the nodes of a list to another list.
 *
 * @param[in,out] destination  list
 * @param[in,out] source       list with the same traits; empty afterwards, unless it is
 * destination, which stays unchanged
 */
void UTIL_LIST_ConcatenateMove(UTIL_LIST_S* destination, UTIL_LIST_S* source);

/**
 * Inserts a copy of a value at the head.
 *
 * @param[in,out] list   list
 * @param[in]     value  value of elemSize bytes; null is refused
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_PushFront(UTIL_LIST_S* list, const void* value);

/**
 * Inserts a copy of a value at the tail.
 *
 * @param[in,out] list   list
 * @param[in]     value  value of elemSize bytes; null is refused
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_PushBack(UTIL_LIST_S* list, const void* value);

/**
 * Inserts a copy of a value before a node.
 *
 * @param[in,out] list      list
 * @param[in]     position  node of the list
 * @param[in]     value     value of elemSize bytes; null is refused
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_InsertBefore(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, const void* value);

/**
 * Inserts a copy of a value before the first element for which compare returns false, or at the
 * tail.
 *
 * compare is called with the elements from the head on, each at most once. A comparison with ">"
 * keeps the list in descending order, a new element before equal ones; with ">=", after them.
 *
 * @param[in,out] list     list
 * @param[in]     value    value of elemSize bytes; null is refused
 * @param[in]     compare  comparison, called with the new element as its second argument
 * @param[in]     context  passed to compare
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_SortedInsert(UTIL_LIST_S* list, const void* value,
                                UTIL_LIST_COMPARE_FUNC compare, uint64_t context);

/**
 * Moves a value into a new element at the head.
 *
 * @param[in,out] list   list
 * @param[in,out] value  value of elemSize bytes; null is refused
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_PushFrontMove(UTIL_LIST_S* list, void* value);

/**
 * Moves a value into a new element at the tail.
 *
 * @param[in,out] list   list
 * @param[in,out] value  value of elemSize bytes; null is refused
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_PushBackMove(UTIL_LIST_S* list, void* value);

/**
 * Moves a value into a new element before a node.
 *
 * @param[in,out] list      list
 * @param[in]     position  node of the list
 * @param[in,out] value     value of elemSize bytes; null is refused
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_InsertBeforeMove(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, void* value);

/**
 * Moves a value into a new element before the first element for which compare returns false, or at
 * the tail.
 *
 * @param[in,out] list     list
 * @param[in,out] value    value of elemSize bytes; null is refused
 * @param[in]     compare  comparison, called with the new element as its second argument
 * @param[in]     context  passed to compare
 *
 * @retval 0  the element was inserted
 * @retval 1  the insertion failed
 */
uint32_t UTIL_LIST_SortedInsertMove(UTIL_LIST_S* list, void* value, UTIL_LIST_COMPARE_FUNC compare,
                                    uint64_t context);

/**
 * Constructs a node that holds a copy of a value. The node is in no list and is the caller's.
 *
 * Every node is passed to one of the linking functions (with Impl in their names), for a list with
 * the same traits: nothing else frees it.
 *
 * @param[in]     value   value of elemSize bytes; null is refused
 * @param[in]     traits  description of the element; null is refused
 *
 * @return the node
 * @retval null  an argument is refused, no memory, or memcpy_s() refused to copy the element
 */
UTIL_LIST_NODE_S* UTIL_LIST_ConstructNodeCopy(const void* value, const UTIL_LIST_TRAITS_S* traits);

/**
 * Constructs a node and moves a value into it. The node is in no list and is the caller's.
 *
 * Every node is passed to one of the linking functions (with Impl in their names), for a list with
 * the same traits: nothing else frees it.
 *
 * @param[in,out] value   value of elemSize bytes; null is refused
 * @param[in]     traits  description of the element; null is refused
 *
 * @return the node
 * @retval null  an argument is refused, no memory, or memcpy_s() refused to copy the element
 */
UTIL_LIST_NODE_S* UTIL_LIST_ConstructNodeMove(void* value, const UTIL_LIST_TRAITS_S* traits);

/**
 * Links a node into a list at the head. The list owns it from then on.
 *
 * @param[in,out] list  list with the traits of the node
 * @param[in,out] node  node that is in no list
 */
void UTIL_LIST_PushFrontImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node);

/**
 * Links a node into a list at the tail. The list owns it from then on.
 *
 * @param[in,out] list  list with the traits of the node
 * @param[in,out] node  node that is in no list
 */
void UTIL_LIST_PushBackImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node);

/**
 * Links a node into a list before another node. The list owns it from then on.
 *
 * @param[in,out] list      list with the traits of the node
 * @param[in]     position  node of the list
 * @param[in,out] node      node that is in no list
 */
void UTIL_LIST_InsertBeforeImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position,
                                UTIL_LIST_NODE_S* node);

/**
 * Links a node into a list in the place that UTIL_LIST_SortedInsert() selects. The list owns it
 * from then on.
 *
 * @param[in,out] list     list with the traits of the node
 * @param[in,out] node     node that is in no list
 * @param[in]     compare  comparison, called with the new element as its second argument
 * @param[in]     context  passed to compare
 */
void UTIL_LIST_SortedInsertImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node,
                                UTIL_LIST_COMPARE_FUNC compare, uint64_t context);

/**
 * Removes the first element.
 *
 * @param[in,out] list  list
 *
 * @retval 0  the element was removed
 * @retval 1  the list is empty
 */
uint32_t UTIL_LIST_PopFront(UTIL_LIST_S* list);

/**
 * Removes the last element.
 *
 * @param[in,out] list  list
 *
 * @retval 0  the element was removed
 * @retval 1  the list is empty
 */
uint32_t UTIL_LIST_PopBack(UTIL_LIST_S* list);

/**
 * Removes a node and its element.
 *
 * @param[in,out] list  list
 * @param[in]     node  node of the list
 *
 * @return the node that followed; null if the node was the tail
 */
UTIL_LIST_NODE_S* UTIL_LIST_DeleteNode(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node);

/**
 * Removes every element that satisfies a predicate. Each element is tested once, from head to tail.
 *
 * @param[in,out] list       list
 * @param[in]     predicate  test
 * @param[in]     context    passed to predicate
 */
void UTIL_LIST_RemoveIf(UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate, uint64_t context);

/**
 * Finds the first element that satisfies a predicate.
 *
 * @param[in] list       list
 * @param[in] predicate  test
 * @param[in] context    passed to predicate
 *
 * @return the node of the element; null if no element satisfies the predicate
 */
UTIL_LIST_NODE_S* UTIL_LIST_FindIf(const UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate,
                                   uint64_t context);

/**
 * Counts the elements that satisfy a predicate.
 *
 * @param[in] list       list
 * @param[in] predicate  test
 * @param[in] context    passed to predicate
 *
 * @return the number of elements
 */
uint64_t UTIL_LIST_CountIf(const UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate,
                           uint64_t context);

/**
 * Returns an iterator at the head.
 *
 * @param[in] list  list
 * @return the iterator; at the end if the list is empty
 */
UTIL_LIST_ITER_S UTIL_LIST_Begin(UTIL_LIST_S* list);

/**
 * Returns an iterator at the end, one past the tail.
 *
 * @param[in] list  list
 * @return the iterator
 */
UTIL_LIST_ITER_S UTIL_LIST_End(UTIL_LIST_S* list);

/**
 * Moves an iterator to the next element; from the tail to the end.
 *
 * @param[in,out] iterator  iterator, not at the end
 * @return a copy of the moved iterator
 */
UTIL_LIST_ITER_S UTIL_LIST_Next(UTIL_LIST_ITER_S* iterator);

/**
 * Moves an iterator to the previous element; from the end to the tail, from the head to the end.
 *
 * @param[in,out] iterator  iterator
 * @return a copy of the moved iterator
 */
UTIL_LIST_ITER_S UTIL_LIST_Prev(UTIL_LIST_ITER_S* iterator);

/**
 * Returns the address of the current element.
 *
 * @param[in] iterator  iterator, not at the end
 * @return address of the element
 */
void* UTIL_LIST_GetDataPtr(const UTIL_LIST_ITER_S* iterator);

/**
 * Removes the current element and moves the iterator to the one that followed, or to the end.
 *
 * The step is made by the next method of the iterator.
 *
 * @param[in,out] iterator  iterator, not at the end
 * @return a copy of the moved iterator
 */
UTIL_LIST_ITER_S UTIL_LIST_Erase(UTIL_LIST_ITER_S* iterator);

/**
 * Traits of a list whose elements are lists (UTIL_LIST_S, 32 bytes).
 *
 * A copying insertion copies the inner list with its elements, a moving one takes its nodes and
 * leaves the caller's list empty, and a removal clears the inner list. If memory runs out, the copy
 * of the inner list holds the elements copied so far.
 */
extern const UTIL_LIST_TRAITS_S g_utilListByValueTraits;

/**
 * Traits of a list whose elements are pointers to lists (UTIL_LIST_S*, 8 bytes), or null.
 *
 * An element owns the list it points to. A copying insertion allocates a list and copies into it:
 * the element is null if there is no memory for the list, and the list holds the elements copied so
 * far if there is none for an element. A moving insertion takes the pointer over and sets the
 * caller's to null. A removal destroys the list and frees it with free_ex(), so a pointer that is
 * moved in must come from another such element.
 */
extern const UTIL_LIST_TRAITS_S g_utilListByPtrTraits;

/**
 * Clears the list in an element. Callback of g_utilListByValueTraits.
 *
 * @param[in,out] element  address of a UTIL_LIST_S
 */
void UTIL_LIST_DestructCallback(void* element);

/**
 * Constructs an element as a copy of a list: UTIL_LIST_ConstructCopy(). Callback of
 * g_utilListByValueTraits.
 *
 * @param[out] element  memory of a UTIL_LIST_S
 * @param[in]  value    address of a UTIL_LIST_S
 *
 * @retval 0  always
 *
 * @par After a failure
 * The element holds the copies made so far.
 */
uint32_t UTIL_LIST_ConstructCopyCallback(void* element, const void* value);

/**
 * Constructs an element from the nodes of a list: UTIL_LIST_ConstructMove(). Callback of
 * g_utilListByValueTraits.
 *
 * @param[out]    element  memory of a UTIL_LIST_S
 * @param[in,out] value    address of a UTIL_LIST_S; empty afterwards
 *
 * @retval 0  always
 */
uint32_t UTIL_LIST_ConstructMoveCallback(void* element, void* value);

/**
 * Prints each element of the list in an element, if its traits have a print callback. Callback of
 * g_utilListByValueTraits.
 *
 * @param[in] element  address of a UTIL_LIST_S
 */
void UTIL_LIST_PrintCallback(const void* element);

/**
 * Destroys and frees the list that an element points to, and sets the pointer to null. Callback of
 * g_utilListByPtrTraits.
 *
 * @param[in,out] element  address of a UTIL_LIST_S*, which may be null
 */
void UTIL_LIST_DeleteCallback(void* element);

/**
 * Constructs an element that points to a new copy of a list. Callback of g_utilListByPtrTraits.
 *
 * @param[out] element  memory of a UTIL_LIST_S*
 * @param[in]  value    address of a UTIL_LIST_S*, which may be null: so is the element then
 *
 * @retval 0  the element was constructed
 * @retval 1  no memory for the list
 *
 * @par After a failure
 * The element is null.
 */
uint32_t UTIL_LIST_ConstructPtrCopyCallback(void* element, const void* value);

/**
 * Constructs an element that takes over a pointer to a list. Callback of g_utilListByPtrTraits.
 *
 * @param[out]    element  memory of a UTIL_LIST_S*
 * @param[in,out] value    address of a UTIL_LIST_S*; null afterwards
 *
 * @retval 0  always
 */
uint32_t UTIL_LIST_ConstructPtrMoveCallback(void* element, void* value);

/**
 * Prints each element of the list that an element points to: UTIL_LIST_PrintCallback(). Callback of
 * g_utilListByPtrTraits.
 *
 * @param[in] element  address of a UTIL_LIST_S*, which may be null
 */
void UTIL_LIST_PrintPtrCallback(const void* element);

#ifdef __cplusplus
}
#endif
