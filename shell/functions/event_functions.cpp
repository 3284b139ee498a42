// Callback registration and event publishing. The registered callbacks are the shell's: they print
// the events that they receive.
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/event_registry.h>

#include "shell/events/callback_pool.h"
#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

std::string TextOf(const char* text)
{
    return text != nullptr ? text : "";
}

// Registers a callback of a pool. If that fails, the callback returns to the pool.
template <typename Callback, typename Register>
uint32_t WithNew(CallbackPool<Callback>& pool, const Registration& registration,
                 const Register& registerIt)
{
    Callback* const callback = pool.Take(registration);
    const uint32_t ret = registerIt(callback);
    if (ret != 0) {
        pool.GiveBack(callback);
    }
    return ret;
}

// Unregisters a callback. If that succeeds, the callback returns to the pool.
template <typename Callback, typename Unregister>
uint32_t WithOld(CallbackPool<Callback>& pool, const Registration& registration,
                 const Unregister& unregister)
{
    Callback* const callback = pool.Find(registration);
    const uint32_t ret = unregister(callback);
    if (ret == 0) {
        pool.GiveBack(callback);
    }
    return ret;
}

uint32_t RegisterLayer2(const char* name, uint32_t id, uint16_t order)
{
    return WithNew(Layer2Callbacks(), {id, IF_EVT_WHOLE, order, TextOf(name)},
                   [&](auto* callback) { return L2IF_SH_EvtCbFuncReg(name, id, order, callback); });
}

uint32_t UnregisterLayer2(const char* name, uint32_t id, uint16_t order)
{
    return WithOld(Layer2Callbacks(), {id, IF_EVT_WHOLE, order, TextOf(name)}, [&](auto* callback) {
        return L2IF_SH_EvtCbFuncUnReg(name, id, order, callback);
    });
}

void EmptyLayer2()
{
    L2IF_SH_EvtCbRegTbl_Deinit();
    Layer2Callbacks().GiveBackAll();
}

// The variants with variable arguments pass a sub-event id, which is read only if the count
// includes it.
uint32_t RegisterVariable(uint32_t order, uint32_t ids, uint32_t id, uint32_t subId)
{
    const bool hasSub = ids == IF_EVT_WITH_SUB_EVENT;
    return WithNew(
        InterfaceCallbacks(), {id, hasSub ? subId : IF_EVT_WHOLE, order},
        [&](auto* callback) { return IF_EvtRegCbf(callback, 0, order, ids, id, subId); });
}

uint32_t UnregisterVariable(uint32_t ids, uint32_t id, uint32_t subId)
{
    const bool hasSub = ids == IF_EVT_WITH_SUB_EVENT;
    return WithOld(InterfaceCallbacks(), {id, hasSub ? subId : IF_EVT_WHOLE},
                   [&](auto* callback) { return IF_EvtUnRegCbf(callback, 0, ids, id, subId); });
}

uint32_t RegisterInterface(uint32_t id, uint32_t subId, uint32_t order)
{
    return WithNew(InterfaceCallbacks(), {id, subId, order},
                   [&](auto* callback) { return IF_INTF_RegEvtCb(id, subId, callback, 0, order); });
}

uint32_t UnregisterInterface(uint32_t id, uint32_t subId)
{
    return WithOld(InterfaceCallbacks(), {id, subId},
                   [&](auto* callback) { return IF_INTF_UnRegEvtCb(id, subId, callback, 0); });
}

void EmptyInterface()
{
    IF_EvtDeInit();
    InterfaceCallbacks().GiveBackAll();
}

uint32_t RegisterNotification(uint32_t ownKey)
{
    return WithNew(NotificationCallbacks(), {ownKey},
                   [&](auto* callback) { return IF_RegNotifyFunc(ownKey, callback); });
}

uint32_t UnregisterNotification(uint32_t ownKey)
{
    return WithOld(NotificationCallbacks(), {ownKey},
                   [&](auto* callback) { return IF_UnRegNotifyFunc(ownKey, callback); });
}

void EmptyNotifications()
{
    IF_NotifyFuncRegTbl_Deinit();
    NotificationCallbacks().GiveBackAll();
}

template <typename Entry, auto compare>
bool ComparePriorities(uint32_t a, uint32_t b)
{
    Entry first{};
    Entry second{};
    first.priority = a;
    second.priority = b;
    return compare(&first, &second, 0);
}

// Operates on a node owned by the shell.
void CreateChildren(uint32_t number, uint32_t* children)
{
    IF_EVT_NODE_S node{};
    IF_CBF_Create_Child(&node, number);
    *children = node.childCount;
    if (node.children != nullptr) {
        IF_CBF_Free_Child(&node, node.childCount);
    }
}

// Passes data of the type that the library's own events carry.
uint32_t PublishLayer2(uint32_t id, uint32_t port, uint32_t number)
{
    QRB_PORT_S row{};
    OrmgPortReadInner(&port, sizeof(port), &row, sizeof(row));
    row.if_index = port;
    switch (id) {
        case L2IF_EVT_VLAN_ADD_PORT:
        case L2IF_EVT_VLAN_DEL_PORT: {
            QRB_VLAN_CHANGE_S change{QRB_VLAN_BITMAP_1, 1, port, {}};
            return L2IF_SH_EvtPublishEvent(id, &row, number, &change);
        }
        case L2IF_EVT_SWITCH_PORT_ON:
        case L2IF_EVT_SWITCH_PORT_OFF: {
            uint8_t used = id == L2IF_EVT_SWITCH_PORT_ON ? 1 : 0;
            return L2IF_SH_EvtPublishEvent(id, &port, number, &used);
        }
        case L2IF_EVT_PORT_ADD:
        case L2IF_EVT_PORT_DEL:
            return L2IF_SH_EvtPublishEvent(id, &row, number, row.vlan_bitmap_2);
        default:
            return L2IF_SH_EvtPublishEvent(id, nullptr, number, nullptr);
    }
}

uint32_t GetEventNode(uint32_t id, uint32_t subId, uint64_t* callbacks)
{
    UTIL_LIST_NODE_S* first = nullptr;
    return IF_SH_EvtPublishEventGetEventNode(id, subId, &first, callbacks);
}

template <typename Entry, typename Show>
void ShowEntries(const UTIL_LIST_S& list, Json& shown, const Show& show)
{
    for (UTIL_LIST_NODE_S* node = list.head; node != nullptr; node = node->next) {
        shown.push_back(show(*static_cast<const Entry*>(UTIL_LIST_Data(node))));
    }
}

void Layer2Entries(Json* shown)
{
    for (uint32_t id = 0; id < L2IF_EVT_COUNT && g_isL2IFEvtInited != 0; ++id) {
        ShowEntries<L2IF_SH_EVT_CB_S>(g_qrbL2IFEventCallbacks[id], *shown, [&](const auto& entry) {
            return Json{{"event", id}, {"module", entry.moduleName}, {"priority", entry.priority}};
        });
    }
}

void AddNode(uint32_t id, const IF_EVT_NODE_S& node, Json& shown)
{
    ShowEntries<IF_EVT_CB_S>(node.list, shown, [&](const auto& entry) {
        return Json{{"event", id}, {"sub", entry.subId}, {"priority", entry.priority}};
    });
    for (uint32_t subId = 0; subId < node.childCount; ++subId) {
        AddNode(id, node.children[subId], shown);
    }
}

void InterfaceEntries(Json* shown)
{
    for (uint32_t id = 0; id < g_qrbIFEventCallbacks.childCount; ++id) {
        AddNode(id, g_qrbIFEventCallbacks.children[id], *shown);
    }
}

void NotificationEntries(Json* shown)
{
    ShowEntries<IF_NOTIFY_FUNC_S>(g_pstIfNotifyFunc, *shown, [](const auto& entry) {
        return Json{{"key", entry.ulKey}};
    });
}

template <const uint8_t* flag>
uint32_t Flag()
{
    return *flag;
}

constexpr Argument MODULE{.name = "module"};
constexpr Argument LAYER2_EVENT{.name = "event", .names = LAYER2_EVENTS};
constexpr Argument EVENT{.name = "event", .names = INTERFACE_EVENTS};
constexpr Argument SUB{.name = "sub", .names = STATE_SUB_EVENTS, .fallback = "0xFFFFFFFF"};
constexpr Argument COMMAND{.name = "command", .names = NOTIFICATIONS};
constexpr Argument PRIORITY{.name = "priority", .highest = UINT16_MAX, .fallback = "0"};
constexpr Argument ID_COUNT{.name = "idCount"};
constexpr Argument KEY{.name = "key", .fallback = "0"};
constexpr Argument EXISTING{.name = "existing"};
constexpr Argument ADDED{.name = "added"};
constexpr Argument ENTRIES{.name = "entries"};

}  // namespace

// clang-format off
std::vector<Function> EventFunctions()
{
    using namespace arguments;
    return {
        Define("L2IF_SH_EvtCbFuncReg", RegisterLayer2, OK_OR1, "", "Registers a printing callback for a layer-2 event (0 to 73).", MODULE, LAYER2_EVENT, PRIORITY),
        Define("L2IF_SH_EvtCbFuncUnReg", UnregisterLayer2, OK_OR1, "", "Unregisters the newest printing callback with this name, event and priority.", MODULE, LAYER2_EVENT, PRIORITY),
        FUNCTION(L2IF_SH_EvtCbRegTbl_Init, VALUE, "", "Builds the table of layer-2 callbacks. Done at start-up."),
        Define("L2IF_SH_EvtCbRegTbl_Deinit", EmptyLayer2, VALUE, "", "Unregisters every layer-2 callback."),
        Define("L2IF_SH_EventPriorityComparator", ComparePriorities<L2IF_SH_EVT_CB_S, L2IF_SH_EventPriorityComparator>, ONE_IS_YES, "", "Whether an existing priority comes before an added one.", EXISTING, ADDED),

        Define("IF_INTF_RegEvtCb", RegisterInterface, OK_OR1, "", "Registers a printing callback for an interface event (0 to 75) or one of its sub-events.", EVENT, SUB, PRIORITY),
        Define("IF_INTF_UnRegEvtCb", UnregisterInterface, OK_OR1, "", "Unregisters the newest printing callback for an interface event.", EVENT, SUB),
        Define("IF_EvtRegCbf", RegisterVariable, OK_OR1, "", "The same registration with a count of ids: 2 if a sub-event follows, else 1.", Required(PRIORITY), ID_COUNT, EVENT, SUB),
        Define("IF_EvtUnRegCbf", UnregisterVariable, OK_OR1, "", "The same unregistration with a count of ids.", ID_COUNT, EVENT, SUB),
        FUNCTION(IF_EvtInit, VALUE, "", "Builds the tree of interface callbacks. Done at start-up."),
        Define("IF_EvtDeInit", EmptyInterface, VALUE, "", "Frees the tree of interface callbacks."),
        Define("IF_CBF_Create_Child", CreateChildren, VALUE, "", "Creates children of a node of the tree. The shell passes a temporary node.", Number("count"), Number("childCount")),
        Define("IF_CBF_Free_Child", CreateChildren, VALUE, "", "Frees the children of a node. The shell passes a temporary node.", Number("count"), Number("childCount")),
        Define("IF_EventPriorityComparator", ComparePriorities<IF_EVT_CB_S, IF_EventPriorityComparator>, ONE_IS_YES, "", "Whether an existing priority comes before an added one.", EXISTING, ADDED),

        Define("IF_RegNotifyFunc", RegisterNotification, OK_OR1, "", "Registers a printing callback for interface notifications.", KEY),
        Define("IF_UnRegNotifyFunc", UnregisterNotification, OK_OR1, "", "Unregisters the newest printing callback with a key.", KEY),
        FUNCTION(IF_NotifyFuncRegTbl_Init, VALUE, "", "Builds the list of notification callbacks."),
        Define("IF_NotifyFuncRegTbl_Deinit", EmptyNotifications, VALUE, "", "Unregisters every notification callback."),

        Define("L2IF_SH_EvtPublishEvent", PublishLayer2, OK_OR1, "port", "Publishes a layer-2 event about a port, with the same data as the library.", LAYER2_EVENT, IF_INDEX, Optional("value", "0")),
        Define("IF_SH_EvtPublishEventGetEventNode", GetEventNode, OK_OR1, "", "The number of callbacks of an interface event; publish calls them.", EVENT, SUB, COUNT),
        FUNCTION(IF_NotifyAll, OK_OR1, "", "Publishes an interface notification: command 0 created, 1 deleted, 3 up, 4 down.", IF_INDEX, COMMAND, Optional("value1", "0"), Optional("value2", "0")),

        Define("g_qrbL2IFEventCallbacks", Layer2Entries, VALUE, "", "The layer-2 callbacks, in the order of calls.", ENTRIES),
        Define("g_qrbIFEventCallbacks", InterfaceEntries, VALUE, "", "The interface callbacks, in the order of calls.", ENTRIES),
        Define("g_pstIfNotifyFunc", NotificationEntries, VALUE, "", "The notification callbacks, in the order of calls.", ENTRIES),
        Define("g_isL2IFEvtInited", Flag<&g_isL2IFEvtInited>, ONE_IS_YES, "", "Whether the table of layer-2 callbacks is built."),
        Define("g_isIFEvtInited", Flag<&g_isIFEvtInited>, ONE_IS_YES, "", "Whether the tree of interface callbacks is built."),
        Define("g_isIFNotifyInited", Flag<&g_isIFNotifyInited>, ONE_IS_YES, "", "Whether the list of notification callbacks is built."),
        Define("g_qrbEventHandlerTraits", ElementSize<&g_qrbEventHandlerTraits>, VALUE, "", "The element traits of the lists of layer-2 callbacks.", Number("elemSize")),
        Define("g_qrbBilevelEventHandlerTraits", ElementSize<&g_qrbBilevelEventHandlerTraits>, VALUE, "", "The element traits of the lists of interface callbacks.", Number("elemSize")),
        Define("g_pstIfNotifyFuncHandlerTraits", ElementSize<&g_pstIfNotifyFuncHandlerTraits>, VALUE, "", "The element traits of the list of notification callbacks.", Number("elemSize")),
    };
}
// clang-format on

}  // namespace shell
