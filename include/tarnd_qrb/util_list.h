/*
 * A doubly linked list whose nodes hold their elements inline.
 *
 * What the elements are is told at run time by a traits record: their size, and callbacks that
 * copy, take over, destroy and print one. A list of plain values needs the size only:
 *
 *     static bool Greater(const void* existing, const void* added, uint64_t context)
 *     {
 *         (void)context;
 *         return *(const uint32_t*)existing > *(const uint32_t*)added;
 *     }
 *
 *     static const UTIL_LIST_TRAITS_S numbers = {.elemSize = sizeof(uint32_t)};
 *
 *     uint32_t Largest(const uint32_t* values, size_t size)
 *     {
 *         uint32_t    largest = 0;
 *         UTIL_LIST_S list;
 *         UTIL_LIST_Construct(&list, &numbers);
 *         for (size_t i = 0; i < size; ++i) {
 *             if (UTIL_LIST_SortedInsert(&list, &values[i], Greater, 0) != 0) {
 *                 break;
 *             }
 *         }
 *         if (!UTIL_LIST_IsEmpty(&list)) {
 *             largest = *(const uint32_t*)UTIL_LIST_Data(list.head);
 *         }
 *         UTIL_LIST_Destruct(&list);
 *         return largest;
 *     }
 *
 * Invariants of a constructed list: head is null exactly when tail is null and count is 0; the
 * first node's prev and the last node's next are null; count is the number of nodes.
 *
 * Ownership: a list owns its nodes and the elements in them. A value given to a copying operation
 * stays the caller's; one given to a moving operation (...Move) is what the traits' constructMove
 * makes of it, and without that callback the bytes are copied.
 *
 * Memory: each node is one block of elemSize + 16 bytes from the memory-accounting service, charged
 * to the framework's module (tarnd_qrb/memory_map.h). A list that is forgotten without
 * UTIL_LIST_Clear keeps that charge.
 *
 * Results: 0 is success, 1 is failure, after which the list is as it was; nothing is logged. An
 * insertion fails when there is no memory, for a null value, for a list without traits, and for
 * bytes that the platform refuses to copy. Other pointers are not checked: lists must be
 * constructed, callbacks present, and every node and iterator must be one of the list it is used
 * with.
 *
 * Threads: one at a time, or a lock of the owner's. No callback may change the list that calls it.
 *
 * Cost: constant, but for what looks at elements one by one (sorted insertion, FindIf, CountIf,
 * RemoveIf, Clear, copying), which is one call of a callback for each element visited.
 */
#pragma once

#include <assert.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Callbacks. An element pointer is the address of an element in its node, aligned for any type; a
   value pointer that of a caller's element. context is handed through unchanged. */

/* Releases what the element owns, just before its node is freed. */
typedef void (*UTIL_LIST_DESTRUCT_FUNC)(void* element);
/* Makes the element of a new node out of a value. The status is not looked at: a callback that
   fails leaves an element that destruct can take. */
typedef uint32_t (*UTIL_LIST_COPY_FUNC)(void* element, const void* value);
typedef uint32_t (*UTIL_LIST_MOVE_FUNC)(void* element, void* value);
typedef void (*UTIL_LIST_PRINT_FUNC)(const void* element);
/* Whether an existing element stays ahead of the one that is being inserted. */
typedef bool (*UTIL_LIST_COMPARE_FUNC)(const void* existing, const void* added, uint64_t context);
typedef bool (*UTIL_LIST_PREDICATE_FUNC)(const void* element, uint64_t context);

/* Lists. */

/* What a list's elements are. Must outlive the list. */
typedef struct {
    uint64_t elemSize; /* bytes */
    void* reserved1;
    UTIL_LIST_DESTRUCT_FUNC destruct;  /* null: an element owns nothing */
    UTIL_LIST_COPY_FUNC constructCopy; /* null: the bytes are copied */
    UTIL_LIST_MOVE_FUNC constructMove; /* null: the bytes are copied */
    void* reserved5;
    UTIL_LIST_PRINT_FUNC print; /* only for UTIL_LIST_PrintCallback */
} UTIL_LIST_TRAITS_S;

/* A node. The elemSize bytes of its element follow, at offset 16: UTIL_LIST_Data. */
typedef struct UTIL_LIST_NODE_S {
    struct UTIL_LIST_NODE_S* next; /* null at the tail */
    struct UTIL_LIST_NODE_S* prev; /* null at the head */
} UTIL_LIST_NODE_S;

/* A list, usually by value in its owner. Members are for reading. */
typedef struct {
    const UTIL_LIST_TRAITS_S* traits;
    UTIL_LIST_NODE_S* head;
    UTIL_LIST_NODE_S* tail;
    uint64_t count;
} UTIL_LIST_S;

typedef struct UTIL_LIST_ITER_METHODS_S UTIL_LIST_ITER_METHODS_S;

/* A place in a list: a node, or the end, one past the tail. Passed by value. It stays valid until
   its node is removed. */
typedef struct {
    UTIL_LIST_NODE_S* node; /* null: the end */
    UTIL_LIST_S* list;
    const UTIL_LIST_ITER_METHODS_S* methods;
} UTIL_LIST_ITER_S;

struct UTIL_LIST_ITER_METHODS_S {
    UTIL_LIST_ITER_S (*next)(UTIL_LIST_ITER_S* iterator);
    UTIL_LIST_ITER_S (*prev)(UTIL_LIST_ITER_S* iterator);
    void* (*getDataPtr)(const UTIL_LIST_ITER_S* iterator);
    UTIL_LIST_ITER_S (*erase)(UTIL_LIST_ITER_S* iterator);
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

/* The methods of every iterator: the functions UTIL_LIST_Next, Prev, GetDataPtr and Erase. */
extern const UTIL_LIST_ITER_METHODS_S g_UTIL_ListIteratorMethods;

/* The element of a node. */
static inline void* UTIL_LIST_Data(UTIL_LIST_NODE_S* node)
{
    return node + 1;
}

/* Whole lists. */

/* Makes a list out of raw memory: empty, for elements of these traits. */
void UTIL_LIST_Construct(UTIL_LIST_S* list, const UTIL_LIST_TRAITS_S* traits);

/* Destroys every element, head to tail. The list keeps its traits and may be used again. Clear is
   Destruct by another name. */
void UTIL_LIST_Clear(UTIL_LIST_S* list);
void UTIL_LIST_Destruct(UTIL_LIST_S* list);

/* Whether a list has no element. */
bool UTIL_LIST_IsEmpty(const UTIL_LIST_S* list);

/* Exchanges two lists, elements and traits. */
void UTIL_LIST_Swap(UTIL_LIST_S* a, UTIL_LIST_S* b);

/* Makes a list out of raw memory, with the source's traits and nodes. The source is left empty. A
   list moved to itself stays as it is. */
void UTIL_LIST_ConstructMove(UTIL_LIST_S* destination, UTIL_LIST_S* source);

/* Makes a list out of raw memory, with the source's traits and copies of its elements. On failure
   the destination holds the copies made so far, and the caller clears it. A list copied to itself
   stays as it is. */
uint32_t UTIL_LIST_ConstructCopy(UTIL_LIST_S* destination, const UTIL_LIST_S* source);

/* Appends the source's nodes to the destination, which has the same traits. The source is left
   empty. A list appended to itself stays as it is. */
void UTIL_LIST_ConcatenateMove(UTIL_LIST_S* destination, UTIL_LIST_S* source);

/* Insertion. The new node holds a copy of the value. */

/* Before the head. */
uint32_t UTIL_LIST_PushFront(UTIL_LIST_S* list, const void* value);

/* Behind the tail. */
uint32_t UTIL_LIST_PushBack(UTIL_LIST_S* list, const void* value);

/* Immediately before a node of the list. */
uint32_t UTIL_LIST_InsertBefore(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, const void* value);

/*
 * Immediately before the first element for which compare answers false, or at the tail where it is
 * true of all. Elements are asked from the head on, each at most once. A compare like ">" keeps the
 * list in descending order and the newest of equals first; one like ">=", the newest last.
 */
uint32_t UTIL_LIST_SortedInsert(UTIL_LIST_S* list, const void* value,
                                UTIL_LIST_COMPARE_FUNC compare, uint64_t context);

/* Insertion by moving. */

/* Takes the value over, in the place where the function without "Move" puts a copy. */
uint32_t UTIL_LIST_PushFrontMove(UTIL_LIST_S* list, void* value);
uint32_t UTIL_LIST_PushBackMove(UTIL_LIST_S* list, void* value);
uint32_t UTIL_LIST_InsertBeforeMove(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position, void* value);
uint32_t UTIL_LIST_SortedInsertMove(UTIL_LIST_S* list, void* value, UTIL_LIST_COMPARE_FUNC compare,
                                    uint64_t context);

/* Insertion in two halves. First a node, in no list and the caller's; then its place in a list with
   the same traits, whose it becomes. */

/* A node that holds a copy of the value, or takes it over. Null for what fails an insertion. */
UTIL_LIST_NODE_S* UTIL_LIST_ConstructNodeCopy(const void* value, const UTIL_LIST_TRAITS_S* traits);
UTIL_LIST_NODE_S* UTIL_LIST_ConstructNodeMove(void* value, const UTIL_LIST_TRAITS_S* traits);

/* Puts a node in the place where the function without "Impl" puts a new one. */
void UTIL_LIST_PushFrontImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node);
void UTIL_LIST_PushBackImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node);
void UTIL_LIST_InsertBeforeImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* position,
                                UTIL_LIST_NODE_S* node);
void UTIL_LIST_SortedInsertImpl(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node,
                                UTIL_LIST_COMPARE_FUNC compare, uint64_t context);

/* Removal. */

/* Removes the head, or the tail. 0, or 1 when the list was empty. */
uint32_t UTIL_LIST_PopFront(UTIL_LIST_S* list);
uint32_t UTIL_LIST_PopBack(UTIL_LIST_S* list);

/* Removes a node of the list. The node that followed it, null where it was the tail. */
UTIL_LIST_NODE_S* UTIL_LIST_DeleteNode(UTIL_LIST_S* list, UTIL_LIST_NODE_S* node);

/* Removes every element for which the predicate is true. Each is asked once, head to tail. */
void UTIL_LIST_RemoveIf(UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate, uint64_t context);

/* Search. */

/* The first node whose element satisfies the predicate, or null. */
UTIL_LIST_NODE_S* UTIL_LIST_FindIf(const UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate,
                                   uint64_t context);

/* How many elements satisfy it. */
uint64_t UTIL_LIST_CountIf(const UTIL_LIST_S* list, UTIL_LIST_PREDICATE_FUNC predicate,
                           uint64_t context);

/* Iteration. Next, GetDataPtr and Erase are not for an iterator at the end. */

/* An iterator at the head, or at the end of an empty list. */
UTIL_LIST_ITER_S UTIL_LIST_Begin(UTIL_LIST_S* list);

/* An iterator at the end, one past the tail. */
UTIL_LIST_ITER_S UTIL_LIST_End(UTIL_LIST_S* list);

/* Moves the iterator one on, or one back, and returns a copy of it. Back from the end is the tail;
   back from the head is the end. */
UTIL_LIST_ITER_S UTIL_LIST_Next(UTIL_LIST_ITER_S* iterator);
UTIL_LIST_ITER_S UTIL_LIST_Prev(UTIL_LIST_ITER_S* iterator);

/* The current element. */
void* UTIL_LIST_GetDataPtr(const UTIL_LIST_ITER_S* iterator);

/* Removes the current element. The iterator moves to the one that followed, and a copy is returned.
 */
UTIL_LIST_ITER_S UTIL_LIST_Erase(UTIL_LIST_ITER_S* iterator);

/* Lists of lists. */

/*
 * Traits for elements that are lists themselves.
 *
 * With g_utilListByValueTraits an element is a UTIL_LIST_S (32 bytes); a copied insertion copies
 * the inner list whole, a moved one empties the caller's, and a removal clears the inner list.
 *
 * With g_utilListByPtrTraits an element is a pointer to a UTIL_LIST_S, or null, and owns it: a
 * copied insertion allocates a list and copies into it (null, where there is no memory for it), a
 * moved one takes the pointer over and sets the caller's to null, and a removal destroys the list
 * and frees it. So a pointer that is moved in must come from such an element.
 *
 * Where memory runs out within an inner list, the copy holds what was copied so far.
 */
extern const UTIL_LIST_TRAITS_S g_utilListByValueTraits;
extern const UTIL_LIST_TRAITS_S g_utilListByPtrTraits;

/* Callbacks of g_utilListByValueTraits: elements are lists. The status is always 0. Printing prints
   each inner element, where the inner list's traits can. */
void UTIL_LIST_DestructCallback(void* element);
uint32_t UTIL_LIST_ConstructCopyCallback(void* element, const void* value);
uint32_t UTIL_LIST_ConstructMoveCallback(void* element, void* value);
void UTIL_LIST_PrintCallback(const void* element);

/* Callbacks of g_utilListByPtrTraits: elements are pointers to lists. */
void UTIL_LIST_DeleteCallback(void* element);
uint32_t UTIL_LIST_ConstructPtrCopyCallback(void* element, const void* value); /* 0, 1 no memory */
uint32_t UTIL_LIST_ConstructPtrMoveCallback(void* element, void* value);       /* always 0 */
void UTIL_LIST_PrintPtrCallback(const void* element);

#ifdef __cplusplus
}
#endif
