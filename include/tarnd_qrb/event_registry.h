/*
 * Callbacks for changes: where modules register and unregister them.
 *
 * Three registries: one list for each layer-2 event; a tree with one list for each interface event
 * and, below some events, one for each sub-event; and one list for interface notifications. Which
 * events the library raises and what they pass is told in tarnd_qrb/event_publish.h.
 *
 * Order of calls: layer-2 and interface callbacks, higher priority first and, within a priority,
 * the newest first; notifications, the oldest first. The same callback may be registered any number
 * of times; each is an entry of its own, is called for itself and is unregistered for itself.
 *
 * Results: 0, or 1 for a failure, which leaves the registry as it was and is logged, but for two:
 * unregistering what is not registered, for an event that there is, and a null notification
 * callback. Null is checked where a comment says so.
 *
 * Threads: no lock. Modules register before the changes arrive that they care about; afterwards a
 * registry is changed only on the thread that publishes to it, which for the library's own events
 * is its listener thread; one to which more threads publish is not changed at all once they do.
 *
 * What a callback may do: everything but subscribe, on the thread that calls it. It may unregister
 * itself and others, also the next in line; register; tear a registry down; publish, the same event
 * included.
 *   - An entry that is registered all along is called exactly once by a publication.
 *   - One that is unregistered is not called any more, once that has returned.
 *   - One that is registered by a callback is called by the next publication; whether by the one
 *     under way is not told.
 * It must return by itself: no exception, no longjmp. It should be quick: all that comes later,
 * callbacks and changes, waits for it. Its result is ignored.
 */
#pragma once

#include <stdbool.h>
#include <stdint.h>

#include <tarnd_qrb/layout.h>
#include <tarnd_qrb/util_list.h>

#ifdef __cplusplus
extern "C" {
#endif

#define L2IF_EVT_COUNT 74u          /* layer-2 event ids are below */
#define L2IF_MODULE_NAME_SIZE 64    /* a module's name and its NUL */
#define IF_EVT_COUNT 76u            /* interface event ids are below */
#define IF_EVT_WHOLE 0xFFFFFFFFu    /* as sub-event id: the event as a whole */
#define IF_EVT_WITH_SUB_EVENT 2u    /* as id count: a sub-event id follows the event id */
#define IF_EVT_WITHOUT_SUB_EVENT 1u /* any other id count: none does */

/*
 * A layer-2 callback.
 *
 * data, argument  what the event passes; the publisher's, valid during the call.
 * value           0 in every event of the library.
 * word            the publication's own: 0 for the first callback, then what callbacks leave in it.
 */
typedef uint32_t L2IF_SH_EVT_CB_FUNC(const void* data, uint32_t value, void* argument,
                                     uint64_t* word);

/* An interface callback. first and second: what the event passes, null for most; the publisher's,
   valid during the call. */
typedef uint32_t IF_EVT_CB_FUNC(uint32_t subId, uint32_t flag, uint32_t ifIndex, void* first,
                                void* second);

/* A notification callback. The last two are 0 in every notification of the library. */
typedef uint32_t IF_NOTIFY_FUNC(uint32_t ulIfIndex, uint32_t ulCmd, uint32_t a, uint32_t b);

/* An entry of a layer-2 event's list. */
typedef struct {
    L2IF_SH_EVT_CB_FUNC* pfCallback; /* null ends a publication that comes to it */
    uint32_t priority;               /* 0 to 65535 */
    char moduleName[L2IF_MODULE_NAME_SIZE];
} L2IF_SH_EVT_CB_S;
QRB_RECORD_SIZE(L2IF_SH_EVT_CB_S, 80);
QRB_FIELD_AT(L2IF_SH_EVT_CB_S, pfCallback, 0, 8);
QRB_FIELD_AT(L2IF_SH_EVT_CB_S, priority, 8, 4);
QRB_FIELD_AT(L2IF_SH_EVT_CB_S, moduleName, 12, 64);

/* An entry of a list in the interface event tree. */
typedef struct {
    uint32_t subId;             /* IF_EVT_WHOLE where registered for the whole event */
    IF_EVT_CB_FUNC* pfCallback; /* null ends a publication that comes to it */
    uint32_t priority;
} IF_EVT_CB_S;
QRB_RECORD_SIZE(IF_EVT_CB_S, 24);
QRB_FIELD_AT(IF_EVT_CB_S, subId, 0, 4);
QRB_FIELD_AT(IF_EVT_CB_S, pfCallback, 8, 8);
QRB_FIELD_AT(IF_EVT_CB_S, priority, 16, 4);

/* A node of the interface event tree: the root, an event or a sub-event. */
typedef struct IF_EVT_NODE_S {
    UTIL_LIST_S list;               /* of IF_EVT_CB_S; the root's stays empty */
    struct IF_EVT_NODE_S* children; /* array by id, or null */
    uint32_t childCount;            /* its length */
    struct IF_EVT_NODE_S* parent;   /* null for the root */
} IF_EVT_NODE_S;
static_assert(sizeof(IF_EVT_NODE_S) == 56 && offsetof(IF_EVT_NODE_S, children) == 32 &&
                  offsetof(IF_EVT_NODE_S, childCount) == 40 &&
                  offsetof(IF_EVT_NODE_S, parent) == 48,
              "IF_EVT_NODE_S has another layout");

/* An entry of the notification list. */
typedef struct {
    uint32_t ulKey;             /* the module's own choice: finds the entry again */
    IF_NOTIFY_FUNC* pfCallback; /* never null */
} IF_NOTIFY_FUNC_S;
QRB_RECORD_SIZE(IF_NOTIFY_FUNC_S, 16);
QRB_FIELD_AT(IF_NOTIFY_FUNC_S, ulKey, 0, 4);
QRB_FIELD_AT(IF_NOTIFY_FUNC_S, pfCallback, 8, 8);

/* The registries, for reading. A flag is 1 while its registry is built, else 0. */
extern UTIL_LIST_S g_qrbL2IFEventCallbacks[L2IF_EVT_COUNT]; /* of L2IF_SH_EVT_CB_S, by event id */
extern uint8_t g_isL2IFEvtInited;
extern IF_EVT_NODE_S g_qrbIFEventCallbacks; /* the root; its children by event id */
extern uint8_t g_isIFEvtInited;
extern UTIL_LIST_S g_pstIfNotifyFunc; /* of IF_NOTIFY_FUNC_S */
extern uint8_t g_isIFNotifyInited;

/* What their elements are; only elemSize is set. */
extern const UTIL_LIST_TRAITS_S g_qrbEventHandlerTraits;        /* L2IF_SH_EVT_CB_S */
extern const UTIL_LIST_TRAITS_S g_qrbBilevelEventHandlerTraits; /* IF_EVT_CB_S */
extern const UTIL_LIST_TRAITS_S g_pstIfNotifyFuncHandlerTraits; /* IF_NOTIFY_FUNC_S */

/* Layer-2 events. */

/* Builds the layer-2 table; does nothing when it is built. Registration does so by itself. */
void L2IF_SH_EvtCbRegTbl_Init(void);

/* Frees every entry of the layer-2 table, which stays built. */
void L2IF_SH_EvtCbRegTbl_Deinit(void);

/* Registers a callback for an event. Refused: an event id of L2IF_EVT_COUNT or more, a null name,
   one of more than 63 characters. A null callback is not. The name is copied. */
uint32_t L2IF_SH_EvtCbFuncReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                              L2IF_SH_EVT_CB_FUNC* callback);

/* Removes the event's first entry with this callback, priority and name (exactly). 1 where none
   has, as for a null name. */
uint32_t L2IF_SH_EvtCbFuncUnReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                                L2IF_SH_EVT_CB_FUNC* callback);

/* Whether the existing L2IF_SH_EVT_CB_S has a higher priority than the added one. context is not
   looked at. */
bool L2IF_SH_EventPriorityComparator(const void* existing, const void* added, uint64_t context);

/* Interface events. */

/* Builds the interface event tree; does nothing when it is built. Registration does so by itself.
   Without memory for the events, the tree stays unbuilt and a later call tries again; without
   memory for an event's sub-events, that event has none until the tree is built anew. */
void IF_EvtInit(void);

/* Frees the interface event tree and every entry in it. */
void IF_EvtDeInit(void);

/* Gives ulCnt children to a node that has none. Without memory, children is null and childCount as
   it was; a count of 0 is refused (logged). */
void IF_CBF_Create_Child(IF_EVT_NODE_S* node, uint32_t ulCnt);

/* Frees the first count children's entries, then all children. Their own children must be gone
   already. */
void IF_CBF_Free_Child(IF_EVT_NODE_S* node, uint32_t count);

/*
 * Registers for an event or, with IF_EVT_WITH_SUB_EVENT as idCount, a sub-event, whose id then
 * follows as a uint32_t. unused is not looked at. A null callback is accepted.
 */
uint32_t IF_EvtRegCbf(IF_EVT_CB_FUNC* callback, uint32_t unused, uint32_t priority,
                      uint32_t idCount, uint32_t eventId, ...);

/* Removes the first entry with this callback that was registered for that event or sub-event. 1
   where there is none, or no tree (logged). */
uint32_t IF_EvtUnRegCbf(IF_EVT_CB_FUNC* callback, uint32_t unused, uint32_t idCount,
                        uint32_t eventId, ...);

/* IF_EvtRegCbf and IF_EvtUnRegCbf with fixed arguments: subId is IF_EVT_WHOLE for the whole event.
   They log under the names of the former. */
uint32_t IF_INTF_RegEvtCb(uint32_t eventId, uint32_t subId, IF_EVT_CB_FUNC* callback,
                          uint32_t unused, uint32_t priority);
uint32_t IF_INTF_UnRegEvtCb(uint32_t eventId, uint32_t subId, IF_EVT_CB_FUNC* callback,
                            uint32_t unused);

/* Whether the existing IF_EVT_CB_S has a higher priority than the added one. context is not looked
   at. */
bool IF_EventPriorityComparator(const void* existing, const void* added, uint64_t context);

/* Interface notifications. */

/* Builds the notification list; does nothing when it is built. Registration does so by itself. */
void IF_NotifyFuncRegTbl_Init(void);

/* Frees every entry of the notification list, which stays built. */
void IF_NotifyFuncRegTbl_Deinit(void);

/* Registers a callback under a key of the module's choice. A null callback is refused. */
uint32_t IF_RegNotifyFunc(uint32_t ulKey, IF_NOTIFY_FUNC* callback);

/* Removes the first entry with this key and callback from the notification list. 1 where there is
 * none. */
uint32_t IF_UnRegNotifyFunc(uint32_t ulKey, IF_NOTIFY_FUNC* callback);

#ifdef __cplusplus
}
#endif
