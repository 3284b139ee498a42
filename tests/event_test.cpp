// Change notification: registries, publishing, deliveries, the listener's start.
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>

#include "support/example_calls.h"
#include "support/recorded_changes.h"
#include "support/recorded_events.h"
#include "support/test_rows.h"

namespace calls {

namespace {

using standin::Row;
using support::Base, support::PhyState, support::Port, support::RouteState;
using namespace support::writes;
using support::ForgetEvents;

constexpr L2IF_SH_EVT_CB_FUNC* ON_LAYER2 = [](auto...) { return 0U; };
constexpr IF_EVT_CB_FUNC* ON_INTERFACE = [](auto...) { return 0U; };
constexpr IF_NOTIFY_FUNC* ON_NOTICE = [](auto...) { return 0U; };
constexpr uint16_t PRIORITY = 1;

constexpr L2IF_SH_EVT_CB_S LAYER2_ENTRY = {};
constexpr IF_EVT_CB_S INTERFACE_ENTRY = {};

IF_EVT_NODE_S tree;

std::string Built(const IF_EVT_NODE_S& root)
{
    uint32_t events = 0;
    for (uint32_t i = 0; i < root.childCount; i++) {
        events += root.children[i].childCount != 0 ? 1U : 0U;
    }
    return std::to_string(root.childCount) + ' ' + std::to_string(events);
}

void Registered()
{
    EXPECT_EQ(L2IF_SH_EvtCbFuncReg("m", 36, PRIORITY, nullptr), 0U);
    EXPECT_EQ(IF_INTF_RegEvtCb(9, 8, ON_INTERFACE, 0, 1), 0U);
    EXPECT_EQ(IF_INTF_RegEvtCb(9, IF_EVT_WHOLE, ON_INTERFACE, 0, 1), 0U);
    EXPECT_EQ(IF_RegNotifyFunc(1, ON_NOTICE), 0U);
}

// Returns the number of callbacks, and whether there is a first one.
std::string Found(uint32_t eventId, uint32_t subId)
{
    UTIL_LIST_NODE_S* first = nullptr;
    uint64_t count = UNTOUCHED;
    const uint32_t ret = IF_SH_EvtPublishEventGetEventNode(eventId, subId, &first, &count);
    return Texts({ret, static_cast<uint32_t>(count), first != nullptr});
}
#define FINDS(eventId, subId, expected, before)                                  \
    {                                                                            \
        "IF_SH_EvtPublishEventGetEventNode", "(" #eventId ", " #subId ")",       \
            [] { return Found(eventId, subId); }, expected, before, ForgetEvents \
    }

std::string TakeEvents()
{
    std::string text;
    for (const std::string& event : support::TakeEvents()) {
        text += (text.empty() ? "" : ", ") + event;
    }
    return text.empty() ? "-" : text;
}

// A subscription whose messages are passed to onMessage.
std::function<void(ORM_MESSAGE, uint32_t)> onMessage;
int32_t descriptor = -1;
std::string result;

void HandOver(ORM_MESSAGE message, uint32_t eventType)
{
    support::WatchPlatform(true);
    onMessage(message, eventType);
    support::WatchPlatform(false);
}

void Subscribe(const std::string& table)
{
    const auto keep = [](uint32_t opened, uint32_t /*operation*/) {
        descriptor = static_cast<int32_t>(opened);
        return 0;
    };
    session = support::OpenSubscriptions(keep);
    EXPECT_EQ(support::SubscribeTo(session, table, HandOver), 0U);
}

// The rows of a table, in two states.
using RowOf = Row (*)(uint64_t index, uint64_t state);

constexpr RowOf Named = [](uint64_t index, uint64_t /*state*/) { return Base(index); };

Row Member(uint64_t index, uint64_t state)
{
    const auto id = static_cast<uint32_t>(state);
    return Port(index, 1, state).AddToSet("vlan_bitmap_2", id, id);
}

// One delivery: existing rows change from state 1 to 0; new rows have state 1.
Call Delivery(const char* name, std::function<void(ORM_MESSAGE, uint32_t)> function, Writing write,
              RowOf row, const char* expected)
{
    const bool isNew = write == Writing{Insert};
    std::vector<Row> old = {row(91, 1), row(92, 1)};
    const std::vector<Row> now = {row(91, isNew ? 1 : 0), row(92, isNew ? 1 : 0)};
    if (write == Writing{Replace}) {
        old.pop_back();
    }
    return {name,
            "",
            [=] {
                support::WatchPlatform(false);
                onMessage = function;
                result = "";
                Write(write, now);
                DbcHandleEvent(descriptor);
                return TakeEvents() + result;
            },
            expected,
            [=] {
                if (!isNew) {
                    Write(Insert, old);
                }
                support::RecordEvents();
                Subscribe(std::string(now[0].Description().name));
            },
            [=] {
                Closed();
                ForgetEvents();
                if (write != Writing{Delete}) {
                    Write(Delete, now);
                }
            }};
}
#define DELIVERY(function, write, row, expected) \
    Delivery(#function ", " #write, function, write, row, expected)

// Calls a function with the first message of a delivery. Its result follows the events.
Call OfMessage(const char* name, std::string (*function)(ORM_MESSAGE), Writing write, RowOf row,
               const char* expected)
{
    const auto first = [=](ORM_MESSAGE message, uint32_t) {
        uint8_t end = 0;
        support::WatchPlatform(false);
        EXPECT_EQ(OrmSubFetchNext(message, &end), 0U);
        support::WatchPlatform(true);
        result = ' ' + function(message);
    };
    return Delivery(name, first, write, row, expected);
}

// The result of a call that starts the listener, and whether the session is open.
template <uint32_t (*start)()>
std::string Started()
{
    const uint32_t ret = start();
    support::WatchPlatform(false);
    const std::string state = g_isDbListenerSubOpened != 0 ? " open" : " closed";
    support::StopListener();
    return Text(ret) + state;
}

uint32_t Register()
{
    return QrbDbListenerRegisterEvent(
        "name", "connection", R"({"label_name":"if_link","events":[{"type":"insert"}]})",
        [](auto...) {}, nullptr, "owner");
}

void LeftUnlocked()
{
    ForgetEvents();
    for (pthread_mutex_t* lock : {&g_dbListenerRegLock, &g_epollDbListenerCondLock}) {
        EXPECT_EQ(pthread_mutex_trylock(lock), 0);
        pthread_mutex_unlock(lock);
    }
}

// clang-format off
Calls Registries()
{
    static const std::string longest(63, 'x');
    static const std::string tooLong(64, 'x');
    return {
        {CALL(L2IF_SH_EvtCbRegTbl_Init), "done"},
        {CALL(L2IF_SH_EvtCbRegTbl_Deinit), "done"},
        {CALL(L2IF_SH_EvtCbFuncReg, longest.c_str(), 36U, PRIORITY, ON_LAYER2), "0", {}, ForgetEvents},
        {CALL_AS(", name too long", L2IF_SH_EvtCbFuncReg, tooLong.c_str(), 36U, PRIORITY, ON_LAYER2), R"(1 | strcpy_s for pszModuleName failed, ret = 34.\n)"},
        {CALL_AS(", no name", L2IF_SH_EvtCbFuncReg, nullptr, 36U, PRIORITY, ON_LAYER2), R"(1 | strcpy_s for pszModuleName failed, ret = 22.\n)"},
        {CALL_AS(", no such event", L2IF_SH_EvtCbFuncReg, "m", 74U, PRIORITY, ON_LAYER2), R"(1 | Failed to reg event id=74\n)"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 74U, PRIORITY, ON_LAYER2), R"(1 | Failed to reg event id=74\n)"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, PRIORITY, nullptr), "0", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "M", 36U, PRIORITY, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, nullptr, 36U, PRIORITY, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 35U, PRIORITY, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, uint16_t{2}, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, PRIORITY, ON_LAYER2), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EventPriorityComparator, &LAYER2_ENTRY, &LAYER2_ENTRY, 0U), "0"},
        {"IF_EvtInit", "", [] {
             IF_EvtInit();
             return Built(g_qrbIFEventCallbacks);
         }, "76 16", {}, ForgetEvents},
        {CALL(IF_EvtDeInit), "done", IF_EvtInit},
        {"IF_CBF_Create_Child", "", [] {
             IF_CBF_Create_Child(&tree, 2);
             return Built(tree);
         }, "2 0", {}, [] { IF_CBF_Free_Child(&tree, 2); }},
        {CALL(IF_CBF_Create_Child, &tree, 0U), R"(done | ulCnt is equal 0 \n)"},
        {"IF_CBF_Free_Child", "", [] {
             IF_CBF_Free_Child(&tree, 3);
             IF_CBF_Free_Child(&tree, 3);
             return Built(tree);
         }, "0 0", [] { IF_CBF_Create_Child(&tree, 2); }},
        {CALL(IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 2U, 9U, 13U), "0", {}, ForgetEvents},
        {CALL_AS(", no such event", IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 3U, 76U, 2U), R"(1 | Failed to reg event id=76, subId=4294967295\n)", IF_EvtInit, ForgetEvents},
        {CALL_AS(", no such sub-event", IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 2U, 4U, 0U), R"(1 | Failed to reg event id=4, subId=0\n)", IF_EvtInit, ForgetEvents},
        {CALL(IF_INTF_RegEvtCb, 9U, IF_EVT_WHOLE, ON_INTERFACE, 0U, 1U), "0", IF_EvtInit, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 8U), "0", Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 13U), "1", Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, nullptr, 0U, 2U, 9U, 8U), "1", Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 14U), R"(1 | Failed to reg event id=9, subId=14\n)", Registered, ForgetEvents},
        {CALL_AS(", not initialized", IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 8U), R"(1 | Failed to find event node.\n)"},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 76U, 2U), R"(1 | Failed to reg event id=76, subId=2\n)"},
        {CALL(IF_INTF_UnRegEvtCb, 9U, IF_EVT_WHOLE, ON_INTERFACE, 0U), "0", Registered, ForgetEvents},
        {CALL(IF_EventPriorityComparator, &INTERFACE_ENTRY, &INTERFACE_ENTRY, 0U), "0"},
        {CALL(IF_NotifyFuncRegTbl_Init), "done"},
        {CALL(IF_NotifyFuncRegTbl_Deinit), "done"},
        {CALL(IF_RegNotifyFunc, 1U, ON_NOTICE), "0", {}, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 1U, ON_NOTICE), "0", Registered, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 2U, ON_NOTICE), "1", Registered, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 1U, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 35U, nullptr, 0U, nullptr), "0", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 36U, nullptr, 0U, nullptr), R"(1 | Failed to execute callback, moduleName=m, priority=1\n)", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 74U, nullptr, 0U, nullptr), R"(1 | Failed to publis event id=74\n)"},
        {CALL_AS(", not initialized", L2IF_SH_EvtPublishEvent, 36U, nullptr, 0U, nullptr), R"(1 | Failed to execute callback, it is not inited\n)", [] { g_isL2IFEvtInited = 0; }, L2IF_SH_EvtCbRegTbl_Init},
        FINDS(9, 8, "0 1 1", Registered),
        FINDS(9, IF_EVT_WHOLE, "0 1 1", Registered),
        FINDS(9, 13, "0 0 0", Registered),
        FINDS(9, 14, R"(1 - 0 | Failed to publish event id=9, subId=14\n)", Registered),
        FINDS(4, 0, R"(1 - 0 | Failed to publish event id=4, subId=0\n)", Registered),
        FINDS(76, 1, R"(1 - 0 | Failed to publish event id=76, subId=1\n)", ForgetEvents),
        FINDS(9, 8, R"(1 - 0 | Failed to execute callback, it is not inited\n)", ForgetEvents),
        {CALL(IF_NotifyAll, 1U, 2U, 3U, 4U), "0", IF_NotifyFuncRegTbl_Init, ForgetEvents},
        {CALL_AS(", not initialized", IF_NotifyAll, 1U, 2U, 3U, 4U), R"(1 | Failed to execute callback, it is not inited\n)"},
    };
}

Calls Deliveries()
{
    return {
        DELIVERY(QRB_EVENT_IfBaseTableCallback, Insert, Named, "notify 0 if 91, notify 0 if 92"),
        DELIVERY(QRB_EVENT_IfBaseTableCallback, Delete, Named, "notify 1 if 91, notify 1 if 92"),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Insert, PhyState, "9/8 flag 0 if 91, notify 3 if 91, 9/8 flag 0 if 92, notify 3 if 92"),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Update, PhyState, "9/2 flag 1 if 91, notify 4 if 91, 9/2 flag 1 if 92, notify 4 if 92"),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Replace, PhyState, "9/2 flag 1 if 91, notify 4 if 91, notify 4 if 92"),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Delete, PhyState, R"(- | Incorrect type of event type, type=1\n)"),
        DELIVERY(QRB_EVENT_IfRouteTableCallback, Update, RouteState, "9/3 flag 1 if 91 with 1, 0, 9/3 flag 1 if 92 with 1, 0"),
        DELIVERY(QRB_EVENT_PortTableCallback, Insert, Member, "36 if 91 pvid 1, 36 if 92 pvid 1"),
        DELIVERY(QRB_EVENT_PortTableCallback, Delete, Member, "37 if 91 pvid 1, 37 if 92 pvid 1"),
        DELIVERY(QRB_EVENT_PortTableCallback, Update, Member, "14 if 91 use 0, 11 if 91 pvid 1 bitmap 0, 14 if 92 use 0, 11 if 92 pvid 1 bitmap 0"),
        DELIVERY(QRB_EVENT_PortTableCallback, Replace, Member, "14 if 91 use 0, 11 if 91 pvid 1 bitmap 0, 36 if 92 pvid 1"),
    };
}

Calls OfMessages()
{
    return {
        OfMessage("QRB_EVENT_GetIfBaseFromSession", [](ORM_MESSAGE message) {
            QRB_IF_BASE_S  row = {};
            const uint32_t ret = QRB_EVENT_GetIfBaseFromSession(message, ORM_OBJECT_NEW, &row);
            return Texts({ret, row.if_index}) + ' ' + Text(row.if_name);
        }, Insert, Named, "- 0 91 91"),
        OfMessage("QRB_EVENT_IfPhyInsert", [](ORM_MESSAGE message) {
            QRB_IF_PHY_S        row    = {};
            QRB_IF_PHY_NOTICE_S notice = {UNTOUCHED, UNTOUCHED};
            QRB_EVENT_IfPhyInsert(message, &row, &notice);
            return Texts({notice.ifIndex, notice.phyState});
        }, Insert, PhyState, "9/8 flag 0 if 91, notify 3 if 91 91 1"),
    };
}

Calls Starts()
{
#define STARTS(function) {#function, "", Started<function>, "0 open", {}, LeftUnlocked}
    return {
        {"QrbDbListenerRegisterEvent", "", Started<Register>, "0 open", {}, LeftUnlocked},
        STARTS(QRB_EVENT_SubToPortTable),
        STARTS(QRB_EVENT_SubToIfRouteTable),
        STARTS(QRB_EVENT_SubToIfPhyTable),
        STARTS(QRB_EVENT_SubToIfBaseTable),
        {"BDS_InitStart", "", Started<BDS_InitStart>, "0 open",
            [] { g_isL2IFEvtInited = 0; },
            [] {
                EXPECT_EQ(g_isL2IFEvtInited, 1);
                LeftUnlocked();
            }},
        {"DbListenerEpollCtrl", "", [] {
             const auto control = [](uint32_t operation) {
                 return static_cast<uint32_t>(DbListenerEpollCtrl(static_cast<uint32_t>(descriptor), operation));
             };
             return Texts({control(0), control(1), control(7)});
         },
         R"(0 0 NONE | [DEBUG]: epoll_ctrl:g_epollDbListenerFd=N, fd=N type=7, Error:[2:No such file or directory]\n)",
         [] {
             g_epollDbListenerFd = epoll_create1(EPOLL_CLOEXEC);
             descriptor          = eventfd(0, EFD_CLOEXEC);
         },
         [] {
             close(descriptor);
             close(std::exchange(g_epollDbListenerFd, -1));
         }},
    };
}
// clang-format on

}  // namespace

Calls EventCalls()
{
    return Joined({Registries, Deliveries, OfMessages, Starts});
}

}  // namespace calls
