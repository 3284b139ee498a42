// Start-up, subscriptions and the listener, and change detection on messages built by the shell.
#include <atomic>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>

#include "shell/events/event_json.h"
#include "shell/events/event_queue.h"
#include "shell/functions/change_message.h"
#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"
#include "shell/table_lookup.h"
#include "sources/json/json_set.h"

namespace shell {
namespace {

// A manual subscription that counts its deliveries.
void OnDelivery(ORM_MESSAGE message, uint32_t type)
{
    uint32_t rows = 0;
    for (uint8_t end = 0; OrmSubFetchNext(message, &end) == 0 && end == 0;) {
        ++rows;
    }
    Events().Push(DeliveryEvent(type, rows));
}

uint32_t Register(const char* name, const char* connectionName, const char* ownerName,
                  const char* text)
{
    return QrbDbListenerRegisterEvent(name, connectionName, text, OnDelivery, nullptr, ownerName);
}

constexpr const char* IF_BASE = "if_base";
constexpr const char* IF_PHY = "if_phy";
constexpr const char* IF_ROUTE = "if_route";
constexpr const char* PORT = "port";

// A complete delivery of the requested type.
template <const char* const& table, void (*callback)(ORM_MESSAGE, uint32_t)>
void Deliver(uint32_t ifIndex, uint32_t type)
{
    OnMessage(table, ifIndex, MessagePosition::BeforeRow,
              [=](ORM_MESSAGE message) { callback(message, type); });
}

// One of the functions that fill a record from the current row.
template <const char* const& table, typename Record, uint32_t (*extract)(ORM_MESSAGE, Record*)>
uint32_t Extract(uint32_t ifIndex, Json* shown)
{
    Record record{};
    uint32_t ret = 0;
    OnMessage(table, ifIndex, MessagePosition::OnRow,
              [&](ORM_MESSAGE message) { ret = extract(message, &record); });
    *shown = FieldsOf(table, &record);
    return ret;
}

uint32_t GetIfBase(uint32_t ifIndex, uint32_t object, Json* shown)
{
    QRB_IF_BASE_S record{};
    uint32_t ret = 0;
    OnMessage(IF_BASE, ifIndex, MessagePosition::OnRow, [&](ORM_MESSAGE message) {
        ret = QRB_EVENT_GetIfBaseFromSession(message, object, &record);
    });
    *shown = FieldsOf(IF_BASE, &record);
    return ret;
}

void InsertPhy(uint32_t ifIndex, QRB_IF_PHY_NOTICE_S* shown)
{
    QRB_IF_PHY_S record{};
    OnMessage(IF_PHY, ifIndex, MessagePosition::OnRow,
              [&](ORM_MESSAGE message) { QRB_EVENT_IfPhyInsert(message, &record, shown); });
}

template <void (*publish)(ORM_MESSAGE, QRB_PORT_S*)>
void OnPort(uint32_t ifIndex)
{
    QRB_PORT_S record{};
    OnMessage(PORT, ifIndex, MessagePosition::OnRow,
              [&](ORM_MESSAGE message) { publish(message, &record); });
}

void UpdatePhy(uint32_t index, uint8_t was, uint8_t is, QRB_IF_PHY_NOTICE_S* shown)
{
    QRB_IF_PHY_S oldRow{};
    oldRow.if_index = index;
    QRB_IF_PHY_S newRow = oldRow;
    oldRow.phy_state = was;
    newRow.phy_state = is;
    QRB_EVENT_IfPhyUpdate(&oldRow, &newRow, shown);
}

void UpdateRoute(uint32_t index, uint8_t was, uint8_t is)
{
    QRB_IF_ROUTE_S oldRow{};
    oldRow.if_index = index;
    QRB_IF_ROUTE_S newRow = oldRow;
    oldRow.route_state = was;
    newRow.route_state = is;
    QRB_EVENT_IfRouteUpdate(&oldRow, &newRow);
}

void UpdateSwitchPort(uint32_t index, uint8_t was, uint8_t is)
{
    QRB_PORT_S oldRow{};
    oldRow.if_index = index;
    QRB_PORT_S newRow = oldRow;
    oldRow.switch_port = was;
    newRow.switch_port = is;
    QRB_EVENT_PortUpdateSwitchPortUse(&oldRow, &newRow);
}

// A port row with these VLANs in both sets.
QRB_PORT_S PortWith(uint32_t index, const char* vlans)
{
    QRB_PORT_S record{};
    record.if_index = index;
    if (vlans != nullptr && *vlans != '\0') {
        const standin::Field& field = *FieldOrList(KnownTable(PORT), "vlan_bitmap_1");
        standin::Row row(PORT);
        sources::AddSet(row, field, vlans);
        std::ranges::copy(row.Bytes(field), record.vlan_bitmap_1);
        std::ranges::copy(row.Bytes(field), record.vlan_bitmap_2);
    }
    return record;
}

uint32_t CompareVlans(uint32_t index, const char* was, const char* is, uint8_t whichSet)
{
    const QRB_PORT_S oldRow = PortWith(index, was);
    const QRB_PORT_S newRow = PortWith(index, is);
    return QRB_EVENT_PortCheckIsVlanBitMapChange(is != nullptr ? &newRow : nullptr,
                                                 was != nullptr ? &oldRow : nullptr,
                                                 QRB_VLAN_SET_SIZE, whichSet);
}

template <auto hook>
void Hook()
{
    hook(nullptr);
}

// Reads the listener's variables under their locks or by atomic operations.
uint32_t ReadLocked(pthread_mutex_t& lock, const auto& variable)
{
    pthread_mutex_lock(&lock);
    const auto held = static_cast<uint32_t>(variable);
    pthread_mutex_unlock(&lock);
    return held;
}

uint32_t EpollDescriptor()
{
    return ReadLocked(g_epollDbListenerCondLock, g_epollDbListenerFd);
}

uint32_t SessionIsOpen()
{
    return ReadLocked(g_dbListenerRegLock, g_isDbListenerSubOpened);
}

uint32_t ExitFlag(const char* set)
{
    std::atomic_ref flag(g_epollDbListenerThreadExit);
    if (set != nullptr) {
        flag.store(static_cast<uint8_t>(NumberFromWord({.name = "set"}, set, UINT8_MAX)));
    }
    return flag.load();
}

uint32_t HasControlFunction()
{
    return g_regDbListenerInfo != nullptr ? 1 : 0;
}

void ThreadId(uintptr_t* handle)
{
    *handle = g_epollDbListenerThreadId;
}

void Session(uintptr_t* handle)
{
    *handle = g_dbListenerSubSession;
}

constexpr Argument SUBSCRIPTION{.name = "subscription"};
constexpr Argument CONNECTION{.name = "connection"};
constexpr Argument OWNER{.name = "owner"};
constexpr Argument DEFINITION{.name = "definition", .rest = true};
constexpr Argument EVENT_TYPE{.name = "eventType"};
constexpr Argument BEFORE{.name = "before"};
constexpr Argument AFTER{.name = "after"};
constexpr Argument ROW{.name = "row"};
constexpr Argument OBJECT{.name = "object", .fallback = "1"};
constexpr Argument NOTICE{.name = "notice"};
constexpr Argument WHICH{.name = "which", .fallback = "1"};
constexpr Argument SET{.name = "set", .fallback = NULL_WORD};
constexpr Argument HANDLE{.name = "handle", .form = Form::Hex};

}  // namespace

// clang-format off
std::vector<Function> ListenerFunctions()
{
    using namespace arguments;
    return {
        FUNCTION(BDS_InitStart, OK_OR1, "", "Starts change notification. Done at start-up; a further call does nothing while the subscriptions exist."),
        FUNCTION(QRB_EVENT_SubToPortTable, OK_OR1, PORT, "Adds another subscription to a table."),
        FUNCTION(QRB_EVENT_SubToIfRouteTable, OK_OR1, IF_ROUTE, "Adds another subscription to a table."),
        FUNCTION(QRB_EVENT_SubToIfPhyTable, OK_OR1, IF_PHY, "Adds another subscription to a table."),
        FUNCTION(QRB_EVENT_SubToIfBaseTable, OK_OR1, IF_BASE, "Adds another subscription to a table."),
        Define("QrbDbListenerRegisterEvent", Register, OK_OR_DATABASE, "", "Adds a subscription with a JSON definition; each delivery is printed.", SUBSCRIPTION, CONNECTION, OWNER, DEFINITION),
        FUNCTION(DbListenerEpollCtrl, OK_OR_ALL_ONES, "", "Adds a descriptor to the listener's epoll set (operation 0) or removes it.", Number("descriptor"), Number("operation")),
        Define("g_epollDbListenerFd", EpollDescriptor, VALUE, "", "The listener's epoll instance; 0xFFFFFFFF: none."),
        Define("g_epollDbListenerThreadId", ThreadId, VALUE, "", "The listener's thread; 0x0: never started.", HANDLE),
        Define("g_epollDbListenerThreadExit", ExitFlag, VALUE, "", "The listener's exit flag; set to 1, the thread ends within 2 seconds.", SET),
        Define("g_regDbListenerInfo", HasControlFunction, ONE_IS_YES, "", "Whether the listener's control function is set."),
        Define("g_isDbListenerSubOpened", SessionIsOpen, ONE_IS_YES, "", "Whether the subscription session is open."),
        Define("g_dbListenerSubSession", Session, VALUE, "", "The subscription session.", HANDLE),

        Define("QRB_EVENT_IfBaseTableCallback", Deliver<IF_BASE, QRB_EVENT_IfBaseTableCallback>, VALUE, IF_BASE, "Publishes the events of a delivery of a type (0 insert, 1 delete); the shell passes a message with the interface's row.", IF_INDEX, EVENT_TYPE),
        Define("QRB_EVENT_GetIfBaseFromSession", GetIfBase, OK_OR1, IF_BASE, "Index and name of a message's old (0) or new (1) row.", IF_INDEX, OBJECT, ROW),
        Define("QRB_EVENT_IfPhyTableCallback", Deliver<IF_PHY, QRB_EVENT_IfPhyTableCallback>, VALUE, IF_PHY, "Publishes the events of a delivery of a type (0 insert, 2 update, 3 replace); the shell passes a message with the interface's row.", IF_INDEX, EVENT_TYPE),
        Define("QRB_EVENT_IfPhyOrmGetOldData", Extract<IF_PHY, QRB_IF_PHY_S, QRB_EVENT_IfPhyOrmGetOldData>, OK_OR1, IF_PHY, "A message's old row.", IF_INDEX, ROW),
        Define("QRB_EVENT_IfPhyOrmGetNewData", Extract<IF_PHY, QRB_IF_PHY_S, QRB_EVENT_IfPhyOrmGetNewData>, OK_OR1, IF_PHY, "A message's new row.", IF_INDEX, ROW),
        Define("QRB_EVENT_IfPhyInsert", InsertPhy, VALUE, IF_PHY, "Publishes the insertion of a row; the shell passes the interface's row.", IF_INDEX, NOTICE),
        Define("QRB_EVENT_IfPhyUpdate", UpdatePhy, VALUE, "", "Publishes a change of phy_state.", IF_INDEX, BEFORE, AFTER, NOTICE),
        Define("QRB_EVENT_IfRouteTableCallback", Deliver<IF_ROUTE, QRB_EVENT_IfRouteTableCallback>, VALUE, IF_ROUTE, "Publishes the events of a delivery of a type (2 update, 3 replace); the shell passes a message with the interface's row.", IF_INDEX, EVENT_TYPE),
        Define("QRB_EVENT_IfRouteOrmGetOldData", Extract<IF_ROUTE, QRB_IF_ROUTE_S, QRB_EVENT_IfRouteOrmGetOldData>, OK_OR1, IF_ROUTE, "A message's old row.", IF_INDEX, ROW),
        Define("QRB_EVENT_IfRouteOrmGetNewData", Extract<IF_ROUTE, QRB_IF_ROUTE_S, QRB_EVENT_IfRouteOrmGetNewData>, OK_OR1, IF_ROUTE, "A message's new row.", IF_INDEX, ROW),
        Define("QRB_EVENT_IfRouteUpdate", UpdateRoute, VALUE, "", "Publishes a change of route_state.", IF_INDEX, BEFORE, AFTER),
        Define("QRB_EVENT_PortTableCallback", Deliver<PORT, QRB_EVENT_PortTableCallback>, VALUE, PORT, "Publishes the events of a delivery of a type (0 insert, 1 delete, 2 update, 3 replace); the shell passes a message with the port's row.", IF_INDEX, EVENT_TYPE),
        Define("QRB_EVENT_PortOrmGetOldData", Extract<PORT, QRB_PORT_S, QRB_EVENT_PortOrmGetOldData>, OK_OR1, PORT, "A message's old row.", IF_INDEX, ROW),
        Define("QRB_EVENT_PortOrmGetNewData", Extract<PORT, QRB_PORT_S, QRB_EVENT_PortOrmGetNewData>, OK_OR1, PORT, "A message's new row.", IF_INDEX, ROW),
        Define("QRB_EVENT_PortInsert", OnPort<QRB_EVENT_PortInsert>, VALUE, PORT, "Publishes the insertion of a row; the shell passes the port's row.", IF_INDEX),
        Define("QRB_EVENT_PortDelete", OnPort<QRB_EVENT_PortDelete>, VALUE, PORT, "Publishes the deletion of a row; the shell passes the port's row.", IF_INDEX),
        Define("QRB_EVENT_PortUpdateSwitchPortUse", UpdateSwitchPort, VALUE, "", "Publishes a change of switch_port.", IF_INDEX, BEFORE, AFTER),
        Define("QRB_EVENT_PortCheckIsVlanBitMapChange", CompareVlans, ZERO_IS_YES, "", "Whether a VLAN set changed; publishes the change. Sets as 10,20-29 or \"\"; - means no row; which: 1 vlan_bitmap_1, 0 vlan_bitmap_2.", IF_INDEX, BEFORE, AFTER, WHICH),
        Define("QRB_EVENT_PrintIfLink", Hook<QRB_EVENT_PrintIfLink>, VALUE, "", "A hook that does nothing."),
        Define("QRB_EVENT_PrintIfPhy", Hook<QRB_EVENT_PrintIfPhy>, VALUE, "", "A hook that does nothing."),
        Define("QRB_EVENT_PrintIfRoute", Hook<QRB_EVENT_PrintIfRoute>, VALUE, "", "A hook that does nothing."),
        Define("QRB_EVENT_PrintPort", Hook<QRB_EVENT_PrintPort>, VALUE, "", "A hook that does nothing."),
    };
}
// clang-format on

}  // namespace shell
