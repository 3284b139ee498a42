/**
 * @file
 * @brief Registries of callbacks for changes of interfaces, ports and VLANs.
 *
 * There are three registries: a table of layer-2 events with a list of callbacks for each event; a
 * tree of interface events with a list for each event and, below 16 events, a list for each
 * sub-event; and one list of callbacks for interface notifications. tarnd_qrb/event_publish.h lists
 * the events that the library publishes and their arguments.
 *
 * @par Order of calls
 * Layer-2 and interface callbacks: higher priority first, the newest first within one priority.
 * Notification callbacks: the oldest first. A callback that is registered more than once is an
 * entry for each registration: it is called and unregistered once for each.
 * @par Results
 * 0 for success, 1 for failure. A failure leaves the registry unchanged.
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * Any thread may register, unregister, publish and free the registries, several at once. One lock
 * guards the three registries; it is not held while a callback runs or a line is logged. The
 * exported variables are not read while another thread may change the registries: reading them
 * takes no lock.
 * @par Callbacks
 * A callback may call every function of the library except one that subscribes. It may register,
 * unregister itself and others, free a registry, and publish, the same event included.
 *   - A publication calls each entry that is registered throughout it exactly once.
 *   - A publication may or may not call an entry that is registered while it runs.
 *   - When a function that removes an entry has returned, the entry's callback does not run on
 * another thread and is not called for that entry any more. The function waits for it: do not hold
 * a lock that the callback takes. Callbacks on different threads that remove each other's entries
 * do not wait for each other.
 *
 * A callback returns normally: it does not throw or call longjmp(). It should return quickly, since
 * all later callbacks and changes wait for it. Its result is ignored.
 * @par Log
 * Priority 3. Failures are logged, except: unregistering an entry that is not registered for an
 * event that exists; a null module name in L2IF_SH_EvtCbFuncUnReg(); a null callback in
 * IF_RegNotifyFunc(). No function uses the database.
 */
#pragma once

#include <stdbool.h>
#include <stdint.h>

#include <tarnd_qrb/layout.h>
#include <tarnd_qrb/util_list.h>

#ifdef __cplusplus
extern "C" {
#endif

#define L2IF_EVT_COUNT 74u       /**< Number of layer-2 events: ids 0 to 73. */
#define L2IF_MODULE_NAME_SIZE 64 /**< Size of a module name in bytes, NUL included. */
#define IF_EVT_COUNT 76u         /**< Number of interface events: ids 0 to 75. */
#define IF_EVT_WHOLE 0xFFFFFFFFu /**< Sub-event id of an event as a whole. */
/** Id count of IF_EvtRegCbf() and IF_EvtUnRegCbf() with a sub-event id after the event id. */
#define IF_EVT_WITH_SUB_EVENT 2u
/** Id count without a sub-event id; every other value means the same. */
#define IF_EVT_WITHOUT_SUB_EVENT 1u

/**
 * A layer-2 callback.
 *
 * @param[in]     data      data of the event, valid during the call
 * @param[in]     value     0 in every event of the library
 * @param[in,out] argument  argument of the event, valid during the call
 * @param[in,out] word      word of the publication: 0 for the first callback, then what the
 * callbacks store in it
 * @return not used
 */
typedef uint32_t L2IF_SH_EVT_CB_FUNC(const void* data, uint32_t value, void* argument,
                                     uint64_t* word);

/**
 * An interface callback.
 *
 * @param[in]     subId    sub-event id
 * @param[in]     flag     flag of the event
 * @param[in]     ifIndex  interface index
 * @param[in,out] first    argument of the event, valid during the call; null in most events
 * @param[in,out] second   argument of the event, valid during the call; null in most events
 * @return not used
 */
typedef uint32_t IF_EVT_CB_FUNC(uint32_t subId, uint32_t flag, uint32_t ifIndex, void* first,
                                void* second);

/**
 * A notification callback.
 *
 * @param[in] ulIfIndex  interface index
 * @param[in] ulCmd      command
 * @param[in] a          0 in every notification of the library
 * @param[in] b          0 in every notification of the library
 * @return not used
 */
typedef uint32_t IF_NOTIFY_FUNC(uint32_t ulIfIndex, uint32_t ulCmd, uint32_t a, uint32_t b);

/** An entry of the list of a layer-2 event. */
typedef struct {
    L2IF_SH_EVT_CB_FUNC* pfCallback; /**< callback; a publication ends at an entry with null */
    uint32_t priority;               /**< priority, 0 to 65535 */
    char moduleName[L2IF_MODULE_NAME_SIZE]; /**< module name */
} L2IF_SH_EVT_CB_S;
QRB_RECORD_SIZE(L2IF_SH_EVT_CB_S, 80);
QRB_FIELD_AT(L2IF_SH_EVT_CB_S, pfCallback, 0, 8);
QRB_FIELD_AT(L2IF_SH_EVT_CB_S, priority, 8, 4);
QRB_FIELD_AT(L2IF_SH_EVT_CB_S, moduleName, 12, 64);

/** An entry of a list in the interface event tree. */
typedef struct {
    uint32_t subId;             /**< sub-event id, or IF_EVT_WHOLE */
    IF_EVT_CB_FUNC* pfCallback; /**< callback; a publication ends at an entry with null */
    uint32_t priority;          /**< priority */
} IF_EVT_CB_S;
QRB_RECORD_SIZE(IF_EVT_CB_S, 24);
QRB_FIELD_AT(IF_EVT_CB_S, subId, 0, 4);
QRB_FIELD_AT(IF_EVT_CB_S, pfCallback, 8, 8);
QRB_FIELD_AT(IF_EVT_CB_S, priority, 16, 4);

/** A node of the interface event tree: the root, an event or a sub-event. */
typedef struct IF_EVT_NODE_S {
    UTIL_LIST_S list;               /**< list of IF_EVT_CB_S; empty in the root */
    struct IF_EVT_NODE_S* children; /**< array of children, by id; null if there are none */
    uint32_t childCount;            /**< number of children */
    struct IF_EVT_NODE_S* parent;   /**< parent; null for the root */
} IF_EVT_NODE_S;
static_assert(sizeof(IF_EVT_NODE_S) == 56 && offsetof(IF_EVT_NODE_S, children) == 32 &&
                  offsetof(IF_EVT_NODE_S, childCount) == 40 &&
                  offsetof(IF_EVT_NODE_S, parent) == 48,
              "IF_EVT_NODE_S has another layout");

/** An entry of the notification list. */
typedef struct {
    uint32_t ulKey;             /**< key, chosen by the module */
    IF_NOTIFY_FUNC* pfCallback; /**< callback, never null */
} IF_NOTIFY_FUNC_S;
QRB_RECORD_SIZE(IF_NOTIFY_FUNC_S, 16);
QRB_FIELD_AT(IF_NOTIFY_FUNC_S, ulKey, 0, 4);
QRB_FIELD_AT(IF_NOTIFY_FUNC_S, pfCallback, 8, 8);

/** The layer-2 table: a list of L2IF_SH_EVT_CB_S for each event id. For reading. */
extern UTIL_LIST_S g_qrbL2IFEventCallbacks[L2IF_EVT_COUNT];
/** 1 if the layer-2 table is built, else 0. For reading. */
extern uint8_t g_isL2IFEvtInited;
/** Root of the interface event tree; its children are the events, by id. For reading. */
extern IF_EVT_NODE_S g_qrbIFEventCallbacks;
/** 1 if the interface event tree is built, else 0. For reading. */
extern uint8_t g_isIFEvtInited;
/** The notification list, of IF_NOTIFY_FUNC_S. For reading. */
extern UTIL_LIST_S g_pstIfNotifyFunc;
/** 1 if the notification list is built, else 0. For reading. */
extern uint8_t g_isIFNotifyInited;

/** Traits of L2IF_SH_EVT_CB_S: the element size, no callbacks. */
extern const UTIL_LIST_TRAITS_S g_qrbEventHandlerTraits;
/** Traits of IF_EVT_CB_S: the element size, no callbacks. */
extern const UTIL_LIST_TRAITS_S g_qrbBilevelEventHandlerTraits;
/** Traits of IF_NOTIFY_FUNC_S: the element size, no callbacks. */
extern const UTIL_LIST_TRAITS_S g_pstIfNotifyFuncHandlerTraits;

/**
 * Builds the layer-2 table, unless it is built. L2IF_SH_EvtCbFuncReg() calls it.
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void L2IF_SH_EvtCbRegTbl_Init(void);

/**
 * Removes every entry of the layer-2 table. The table stays built.
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void L2IF_SH_EvtCbRegTbl_Deinit(void);

/**
 * Registers a callback for a layer-2 event.
 *
 * @param[in] pszModuleName  module name, at most 63 bytes; copied; null is refused
 * @param[in] eventId        event id, less than L2IF_EVT_COUNT (74)
 * @param[in] priority       priority, 16 bits; a higher one is called earlier
 * @param[in] callback       callback; null is accepted: a publication ends at such an entry
 *
 * @retval 0  the entry was added
 * @retval 1  the event does not exist, the name is null or too long, or no memory
 *
 * @par Log
 * Each failure.
 * @par Source
 * No database.
 */
uint32_t L2IF_SH_EvtCbFuncReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                              L2IF_SH_EVT_CB_FUNC* callback);

/**
 * Unregisters a callback for a layer-2 event: removes the first entry that matches.
 *
 * @param[in] pszModuleName  module name of the entry; null is refused, without a log line
 * @param[in] eventId        event id, less than L2IF_EVT_COUNT (74)
 * @param[in] priority       priority of the entry
 * @param[in] callback       callback of the entry
 *
 * @retval 0  the entry was removed
 * @retval 1  no entry has this name, priority and callback, the name is null, or the event does not
 *            exist
 *
 * @par Log
 * An event that does not exist. Nothing else is logged.
 * @par Source
 * No database.
 */
uint32_t L2IF_SH_EvtCbFuncUnReg(const char* pszModuleName, uint32_t eventId, uint16_t priority,
                                L2IF_SH_EVT_CB_FUNC* callback);

/**
 * Compares the priorities of two L2IF_SH_EVT_CB_S. A UTIL_LIST_COMPARE_FUNC.
 *
 * @param[in] existing  entry of the list
 * @param[in] added     entry that is inserted
 * @param[in] context   not used
 *
 * @return true if existing has the higher priority
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
bool L2IF_SH_EventPriorityComparator(const void* existing, const void* added, uint64_t context);

/**
 * Builds the interface event tree, unless it is built. IF_EvtRegCbf() calls it.
 *
 * @par After a failure
 * Without memory for the events, the tree is not built and a later call tries again. Without memory
 * for the sub-events of an event, the event has none until the tree is freed and built again.
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void IF_EvtInit(void);

/**
 * Frees the interface event tree and every entry in it.
 *
 * No publication that uses IF_SH_EvtPublishEventGetEventNode() may be in progress.
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void IF_EvtDeInit(void);

/**
 * Creates the children of a node that has none.
 *
 * @param[in,out] node   node of an interface event tree
 * @param[in]     ulCnt  number of children; 0 is refused
 *
 * @par After a failure
 * Without memory, children is null and childCount is unchanged. With a count of 0, nothing changes.
 * @par Log
 * A count of 0.
 * @par Source
 * No database.
 */
void IF_CBF_Create_Child(IF_EVT_NODE_S* node, uint32_t ulCnt);

/**
 * Frees the children of a node, which must have no children of their own.
 *
 * @param[in,out] node   node of an interface event tree
 * @param[in]     count  number of children whose entries are removed, normally all
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void IF_CBF_Free_Child(IF_EVT_NODE_S* node, uint32_t count);

/**
 * Registers a callback for an interface event or sub-event. Builds the tree if necessary.
 *
 * IF_INTF_RegEvtCb() does the same with a fixed number of arguments.
 *
 * @param[in] callback  callback; null is accepted: a publication ends at such an entry
 * @param[in] unused    not used
 * @param[in] priority  priority; a higher one is called earlier
 * @param[in] idCount   IF_EVT_WITH_SUB_EVENT (2) if a sub-event id follows as a uint32_t; other:
 * the callback is registered for the event as a whole
 * @param[in] eventId   event id, less than IF_EVT_COUNT (76), then the sub-event id
 *
 * @retval 0  the entry was added
 * @retval 1  the event or sub-event does not exist, or no memory
 *
 * @par Log
 * Each failure.
 * @par Source
 * No database.
 */
uint32_t IF_EvtRegCbf(IF_EVT_CB_FUNC* callback, uint32_t unused, uint32_t priority,
                      uint32_t idCount, uint32_t eventId, ...);

/**
 * Unregisters a callback for an interface event or sub-event: removes the first entry that matches.
 *
 * @param[in] callback  callback of the entry
 * @param[in] unused    not used
 * @param[in] idCount   IF_EVT_WITH_SUB_EVENT (2) if a sub-event id follows as a uint32_t; other:
 * the entry is one for the event as a whole
 * @param[in] eventId   event id, less than IF_EVT_COUNT (76), then the sub-event id
 *
 * @retval 0  the entry was removed
 * @retval 1  no entry has this callback, the event or sub-event does not exist, or the tree is not
 *            built
 *
 * @par Log
 * An event or sub-event that does not exist; a tree that is not built.
 * @par Source
 * No database.
 */
uint32_t IF_EvtUnRegCbf(IF_EVT_CB_FUNC* callback, uint32_t unused, uint32_t idCount,
                        uint32_t eventId, ...);

/**
 * Registers a callback for an interface event or sub-event: IF_EvtRegCbf() with a fixed number of
 * arguments.
 *
 * @param[in] eventId   event id, less than IF_EVT_COUNT (76)
 * @param[in] subId     sub-event id; IF_EVT_WHOLE for the event as a whole
 * @param[in] callback  callback; null is accepted: a publication ends at such an entry
 * @param[in] unused    not used
 * @param[in] priority  priority; a higher one is called earlier
 *
 * @retval 0  the entry was added
 * @retval 1  the event or sub-event does not exist, or no memory
 *
 * @par Log
 * Each failure, under the name IF_EvtRegCbf.
 * @par Source
 * No database.
 */
uint32_t IF_INTF_RegEvtCb(uint32_t eventId, uint32_t subId, IF_EVT_CB_FUNC* callback,
                          uint32_t unused, uint32_t priority);

/**
 * Unregisters a callback for an interface event or sub-event: IF_EvtUnRegCbf() with a fixed number
 * of arguments.
 *
 * @param[in] eventId   event id, less than IF_EVT_COUNT (76)
 * @param[in] subId     sub-event id; IF_EVT_WHOLE for the event as a whole
 * @param[in] callback  callback of the entry
 * @param[in] unused    not used
 *
 * @retval 0  the entry was removed
 * @retval 1  no entry has this callback, the event or sub-event does not exist, or the tree is not
 *            built
 *
 * @par Log
 * An event or sub-event that does not exist; a tree that is not built; under the name
 * IF_EvtUnRegCbf.
 * @par Source
 * No database.
 */
uint32_t IF_INTF_UnRegEvtCb(uint32_t eventId, uint32_t subId, IF_EVT_CB_FUNC* callback,
                            uint32_t unused);

/**
 * Compares the priorities of two IF_EVT_CB_S. A UTIL_LIST_COMPARE_FUNC.
 *
 * @param[in] existing  entry of the list
 * @param[in] added     entry that is inserted
 * @param[in] context   not used
 *
 * @return true if existing has the higher priority
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
bool IF_EventPriorityComparator(const void* existing, const void* added, uint64_t context);

/**
 * Builds the notification list, unless it is built. IF_RegNotifyFunc() calls it.
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void IF_NotifyFuncRegTbl_Init(void);

/**
 * Removes every entry of the notification list. The list stays built.
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void IF_NotifyFuncRegTbl_Deinit(void);

/**
 * Registers a notification callback.
 *
 * @param[in] ulKey     key, chosen by the module, by which the entry is unregistered
 * @param[in] callback  callback; null is refused, without a log line
 *
 * @retval 0  the entry was added
 * @retval 1  callback is null, or no memory
 *
 * @par Log
 * No memory.
 * @par Source
 * No database.
 */
uint32_t IF_RegNotifyFunc(uint32_t ulKey, IF_NOTIFY_FUNC* callback);

/**
 * Unregisters a notification callback: removes the first entry that matches.
 *
 * @param[in] ulKey     key of the entry
 * @param[in] callback  callback of the entry
 *
 * @retval 0  the entry was removed
 * @retval 1  no entry has this key and callback
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t IF_UnRegNotifyFunc(uint32_t ulKey, IF_NOTIFY_FUNC* callback);

#ifdef __cplusplus
}
#endif
