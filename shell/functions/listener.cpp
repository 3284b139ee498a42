// Start-up, subscriptions and the listener; change detection, on messages of the shell's own.
#include <atomic>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>

#include "shell/events/event.h"
#include "shell/events/queue.h"
#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/message.h"
#include "shell/functions/results.h"
#include "shell/table.h"
#include "sources/json_set.h"

namespace shell {
namespace {

// A subscription by hand: what arrives is counted.
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

constexpr const char* ifBase = "if_base";
constexpr const char* ifPhy = "if_phy";
constexpr const char* ifRoute = "if_route";
constexpr const char* port = "port";

// A whole delivery, of the type that is asked for.
template <const char* const& table, void (*callback)(ORM_MESSAGE, uint32_t)>
void Deliver(uint32_t ifIndex, uint32_t type)
{
    OnMessage(table, ifIndex, Position::BeforeRow,
              [=](ORM_MESSAGE message) { callback(message, type); });
}

// One of the functions that fill a record from the current row.
template <const char* const& table, typename Record, uint32_t (*extract)(ORM_MESSAGE, Record*)>
uint32_t Extract(uint32_t ifIndex, Json* shown)
{
    Record record{};
    uint32_t ret = 0;
    OnMessage(table, ifIndex, Position::OnRow,
              [&](ORM_MESSAGE message) { ret = extract(message, &record); });
    *shown = FieldsOf(table, &record);
    return ret;
}

uint32_t GetIfBase(uint32_t ifIndex, uint32_t object, Json* shown)
{
    QRB_IF_BASE_S record{};
    uint32_t ret = 0;
    OnMessage(ifBase, ifIndex, Position::OnRow, [&](ORM_MESSAGE message) {
        ret = QRB_EVENT_GetIfBaseFromSession(message, object, &record);
    });
    *shown = FieldsOf(ifBase, &record);
    return ret;
}

void InsertPhy(uint32_t ifIndex, QRB_IF_PHY_NOTICE_S* shown)
{
    QRB_IF_PHY_S record{};
    OnMessage(ifPhy, ifIndex, Position::OnRow,
              [&](ORM_MESSAGE message) { QRB_EVENT_IfPhyInsert(message, &record, shown); });
}

template <void (*publish)(ORM_MESSAGE, QRB_PORT_S*)>
void OnPort(uint32_t ifIndex)
{
    QRB_PORT_S record{};
    OnMessage(port, ifIndex, Position::OnRow,
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

// A port with these VLANs in both of its sets.
QRB_PORT_S PortWith(uint32_t index, const char* vlans)
{
    QRB_PORT_S record{};
    record.if_index = index;
    if (vlans != nullptr && *vlans != '\0') {
        const standin::Field& field = *FieldOrList(KnownTable(port), "vlan_bitmap_1");
        standin::Row row(port);
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

// What the listener's variables hold, as their locks and atomic operations have it.
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

// clang-format off
constexpr Argument subscription {.name = "subscription"};
constexpr Argument connection   {.name = "connection"};
constexpr Argument owner        {.name = "owner"};
constexpr Argument definition   {.name = "definition", .rest = true};
constexpr Argument eventType    {.name = "eventType"};
constexpr Argument before       {.name = "before"};
constexpr Argument after        {.name = "after"};
constexpr Argument row          {.name = "row"};
constexpr Argument object       {.name = "object", .fallback = "1"};
constexpr Argument notice       {.name = "notice"};
constexpr Argument which        {.name = "which", .fallback = "1"};
constexpr Argument set          {.name = "set", .fallback = nullWord};
constexpr Argument handle       {.name = "handle", .form = Form::Hex};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> ListenerFunctions()
{
    using namespace arguments;
    return {
        FUNCTION(BDS_InitStart, okOr1, "", "Brings change notification up. Done at start-up: every further subscription delivers each change once more."),
        FUNCTION(QRB_EVENT_SubToPortTable, okOr1, port, "Subscribes to a table once more."),
        FUNCTION(QRB_EVENT_SubToIfRouteTable, okOr1, ifRoute, "Subscribes to a table once more."),
        FUNCTION(QRB_EVENT_SubToIfPhyTable, okOr1, ifPhy, "Subscribes to a table once more."),
        FUNCTION(QRB_EVENT_SubToIfBaseTable, okOr1, ifBase, "Subscribes to a table once more."),
        Define("QrbDbListenerRegisterEvent", Register, okOrDatabase, "", "Subscribes to what a definition says; each delivery is printed.", subscription, connection, owner, definition),
        FUNCTION(DbListenerEpollCtrl, okOrAllOnes, "", "Has the listener watch a descriptor (operation 0), or not any more.", Number("descriptor"), Number("operation")),
        Define("g_epollDbListenerFd", EpollDescriptor, value, "", "The listener's epoll instance; 0xFFFFFFFF: none."),
        Define("g_epollDbListenerThreadId", ThreadId, value, "", "The listener's thread; 0x0: never started.", handle),
        Define("g_epollDbListenerThreadExit", ExitFlag, value, "", "The listener's exit flag; set to 1, the thread ends within 2 seconds.", set),
        Define("g_regDbListenerInfo", HasControlFunction, oneIsYes, "", "Whether the listener has a control function to hand out."),
        Define("g_isDbListenerSubOpened", SessionIsOpen, oneIsYes, "", "Whether the subscription session is open."),
        Define("g_dbListenerSubSession", Session, value, "", "The subscription session.", handle),

        Define("QRB_EVENT_IfBaseTableCallback", Deliver<ifBase, QRB_EVENT_IfBaseTableCallback>, value, ifBase, "Publishes what a delivery of a type (0 insert, 1 delete) means; here, a message about the interface's row.", ifIndex, eventType),
        Define("QRB_EVENT_GetIfBaseFromSession", GetIfBase, okOr1, ifBase, "Index and name of a message's old (0) or new (1) row.", ifIndex, object, row),
        Define("QRB_EVENT_IfPhyTableCallback", Deliver<ifPhy, QRB_EVENT_IfPhyTableCallback>, value, ifPhy, "Publishes what a delivery of a type (0 insert, 2 update, 3 replace) means; here, a message about the interface's row.", ifIndex, eventType),
        Define("QRB_EVENT_IfPhyOrmGetOldData", Extract<ifPhy, QRB_IF_PHY_S, QRB_EVENT_IfPhyOrmGetOldData>, okOr1, ifPhy, "A message's old row.", ifIndex, row),
        Define("QRB_EVENT_IfPhyOrmGetNewData", Extract<ifPhy, QRB_IF_PHY_S, QRB_EVENT_IfPhyOrmGetNewData>, okOr1, ifPhy, "A message's new row.", ifIndex, row),
        Define("QRB_EVENT_IfPhyInsert", InsertPhy, value, ifPhy, "Publishes an insertion; here, of the interface's row.", ifIndex, notice),
        Define("QRB_EVENT_IfPhyUpdate", UpdatePhy, value, "", "Publishes a change of phy_state.", ifIndex, before, after, notice),
        Define("QRB_EVENT_IfRouteTableCallback", Deliver<ifRoute, QRB_EVENT_IfRouteTableCallback>, value, ifRoute, "Publishes what a delivery of a type (2 update, 3 replace) means; here, a message about the interface's row.", ifIndex, eventType),
        Define("QRB_EVENT_IfRouteOrmGetOldData", Extract<ifRoute, QRB_IF_ROUTE_S, QRB_EVENT_IfRouteOrmGetOldData>, okOr1, ifRoute, "A message's old row.", ifIndex, row),
        Define("QRB_EVENT_IfRouteOrmGetNewData", Extract<ifRoute, QRB_IF_ROUTE_S, QRB_EVENT_IfRouteOrmGetNewData>, okOr1, ifRoute, "A message's new row.", ifIndex, row),
        Define("QRB_EVENT_IfRouteUpdate", UpdateRoute, value, "", "Publishes a change of route_state.", ifIndex, before, after),
        Define("QRB_EVENT_PortTableCallback", Deliver<port, QRB_EVENT_PortTableCallback>, value, port, "Publishes what a delivery of a type (0 insert, 1 delete, 2 update, 3 replace) means; here, a message about the port's row.", ifIndex, eventType),
        Define("QRB_EVENT_PortOrmGetOldData", Extract<port, QRB_PORT_S, QRB_EVENT_PortOrmGetOldData>, okOr1, port, "A message's old row.", ifIndex, row),
        Define("QRB_EVENT_PortOrmGetNewData", Extract<port, QRB_PORT_S, QRB_EVENT_PortOrmGetNewData>, okOr1, port, "A message's new row.", ifIndex, row),
        Define("QRB_EVENT_PortInsert", OnPort<QRB_EVENT_PortInsert>, value, port, "Publishes an insertion; here, of the port's row.", ifIndex),
        Define("QRB_EVENT_PortDelete", OnPort<QRB_EVENT_PortDelete>, value, port, "Publishes a deletion; here, of the port's row.", ifIndex),
        Define("QRB_EVENT_PortUpdateSwitchPortUse", UpdateSwitchPort, value, "", "Publishes a change of switch_port.", ifIndex, before, after),
        Define("QRB_EVENT_PortCheckIsVlanBitMapChange", CompareVlans, zeroIsYes, "", "Whether a VLAN set changed, which is published. Sets as 10,20-29 or \"\"; - stands for no row; which: 1 vlan_bitmap_1, 0 vlan_bitmap_2.", ifIndex, before, after, which),
        Define("QRB_EVENT_PrintIfLink", Hook<QRB_EVENT_PrintIfLink>, value, "", "A hook that does nothing."),
        Define("QRB_EVENT_PrintIfPhy", Hook<QRB_EVENT_PrintIfPhy>, value, "", "A hook that does nothing."),
        Define("QRB_EVENT_PrintIfRoute", Hook<QRB_EVENT_PrintIfRoute>, value, "", "A hook that does nothing."),
        Define("QRB_EVENT_PrintPort", Hook<QRB_EVENT_PrintPort>, value, "", "A hook that does nothing."),
    };
}
// clang-format on

}  // namespace shell
