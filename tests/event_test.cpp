// Change notification: registries, publishing, deliveries, the listener's start.
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>

#include "support/example_calls.h"
#include "support/recorded_events.h"
#include "support/test_subscription.h"
#include "support/test_writes.h"

namespace calls {

namespace {

using standin::Row;
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

// Answers the number of callbacks, and whether there is a first.
std::string Found(uint32_t eventId, uint32_t subId)
{
    UTIL_LIST_NODE_S* first = nullptr;
    uint64_t count = UNTOUCHED;
    const uint32_t ret = IF_SH_EvtPublishEventGetEventNode(eventId, subId, &first, &count);
    return Texts({ret, static_cast<uint32_t>(count), first != nullptr});
}
#define FINDS(when, eventId, subId, before)                                 \
    {                                                                       \
        "IF_SH_EvtPublishEventGetEventNode(" #eventId ", " #subId ")" when, \
            [] { return Found(eventId, subId); }, before, ForgetEvents      \
    }

std::string TakeEvents()
{
    std::string text;
    for (const std::string& event : support::TakeEvents()) {
        text += (text.empty() ? "" : ", ") + event;
    }
    return text.empty() ? "-" : text;
}

// A subscription of the test's own, which hands its messages to onMessage.
std::function<void(ORM_MESSAGE, uint32_t)> onMessage;
int32_t descriptor = -1;
std::string answer;

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

// One delivery: rows that were there in state 1 are written in state 0, and new ones in state 1.
Call Delivery(const char* title, std::function<void(ORM_MESSAGE, uint32_t)> function, Writing write,
              RowOf row)
{
    const bool isNew = write == Writing{Insert};
    std::vector<Row> old = {row(91, 1), row(92, 1)};
    const std::vector<Row> now = {row(91, isNew ? 1 : 0), row(92, isNew ? 1 : 0)};
    if (write == Writing{Replace}) {
        old.pop_back();
    }
    return {title,
            [=] {
                support::WatchPlatform(false);
                onMessage = function;
                answer = "";
                Write(write, now);
                DbcHandleEvent(descriptor);
                return TakeEvents() + answer;
            },
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
#define DELIVERY(function, write, row) Delivery(#function ", " #write, function, write, row)

// A function of one message, the first of a delivery. What it answers is noted behind the events.
Call OfMessage(const char* name, std::string (*function)(ORM_MESSAGE), Writing write, RowOf row)
{
    const auto first = [=](ORM_MESSAGE message, uint32_t) {
        uint8_t end = 0;
        support::WatchPlatform(false);
        EXPECT_EQ(OrmSubFetchNext(message, &end), 0U);
        support::WatchPlatform(true);
        answer = ' ' + function(message);
    };
    return Delivery(name, first, write, row);
}

// What a call that starts the listener answers, and whether the session is open.
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
        {CALL(L2IF_SH_EvtCbRegTbl_Init)},
        {CALL(L2IF_SH_EvtCbRegTbl_Deinit)},
        {CALL(L2IF_SH_EvtCbFuncReg, longest.c_str(), 36U, PRIORITY, ON_LAYER2), {}, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncReg, tooLong.c_str(), 36U, PRIORITY, ON_LAYER2)},
        {CALL(L2IF_SH_EvtCbFuncReg, nullptr, 36U, PRIORITY, ON_LAYER2)},
        {CALL(L2IF_SH_EvtCbFuncReg, "m", 74U, PRIORITY, ON_LAYER2)},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 74U, PRIORITY, ON_LAYER2)},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, PRIORITY, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "M", 36U, PRIORITY, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, nullptr, 36U, PRIORITY, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 35U, PRIORITY, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, uint16_t{2}, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, PRIORITY, ON_LAYER2), Registered, ForgetEvents},
        {CALL(L2IF_SH_EventPriorityComparator, &LAYER2_ENTRY, &LAYER2_ENTRY, 0U)},
        {"IF_EvtInit", [] {
             IF_EvtInit();
             return Built(g_qrbIFEventCallbacks);
         }, {}, ForgetEvents},
        {CALL(IF_EvtDeInit), IF_EvtInit},
        {"IF_CBF_Create_Child", [] {
             IF_CBF_Create_Child(&tree, 2);
             return Built(tree);
         }, {}, [] { IF_CBF_Free_Child(&tree, 2); }},
        {CALL(IF_CBF_Create_Child, &tree, 0U)},
        {"IF_CBF_Free_Child", [] {
             IF_CBF_Free_Child(&tree, 3);
             IF_CBF_Free_Child(&tree, 3);
             return Built(tree);
         }, [] { IF_CBF_Create_Child(&tree, 2); }},
        {CALL(IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 2U, 9U, 13U), {}, ForgetEvents},
        {CALL(IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 3U, 76U, 2U), IF_EvtInit, ForgetEvents},
        {CALL(IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 2U, 4U, 0U), IF_EvtInit, ForgetEvents},
        {CALL(IF_INTF_RegEvtCb, 9U, IF_EVT_WHOLE, ON_INTERFACE, 0U, 1U), IF_EvtInit, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 8U), Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 13U), Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, nullptr, 0U, 2U, 9U, 8U), Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 14U), Registered, ForgetEvents},
        {CALL_WHEN(", nothing built", IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 8U)},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 76U, 2U)},
        {CALL(IF_INTF_UnRegEvtCb, 9U, IF_EVT_WHOLE, ON_INTERFACE, 0U), Registered, ForgetEvents},
        {CALL(IF_EventPriorityComparator, &INTERFACE_ENTRY, &INTERFACE_ENTRY, 0U)},
        {CALL(IF_NotifyFuncRegTbl_Init)},
        {CALL(IF_NotifyFuncRegTbl_Deinit)},
        {CALL(IF_RegNotifyFunc, 1U, ON_NOTICE), {}, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 1U, ON_NOTICE), Registered, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 2U, ON_NOTICE), Registered, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 1U, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 35U, nullptr, 0U, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 36U, nullptr, 0U, nullptr), Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 74U, nullptr, 0U, nullptr)},
        {CALL_WHEN(", nothing built", L2IF_SH_EvtPublishEvent, 36U, nullptr, 0U, nullptr), [] { g_isL2IFEvtInited = 0; }, L2IF_SH_EvtCbRegTbl_Init},
        FINDS("", 9, 8, Registered),
        FINDS("", 9, IF_EVT_WHOLE, Registered),
        FINDS("", 9, 13, Registered),
        FINDS("", 9, 14, Registered),
        FINDS("", 4, 0, Registered),
        FINDS("", 76, 1, ForgetEvents),
        FINDS(", nothing built", 9, 8, ForgetEvents),
        {CALL(IF_NotifyAll, 1U, 2U, 3U, 4U), IF_NotifyFuncRegTbl_Init, ForgetEvents},
        {CALL_WHEN(", nothing built", IF_NotifyAll, 1U, 2U, 3U, 4U)},
    };
}

Calls Deliveries()
{
    return {
        DELIVERY(QRB_EVENT_IfBaseTableCallback, Insert, Named),
        DELIVERY(QRB_EVENT_IfBaseTableCallback, Delete, Named),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Insert, Phy),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Update, Phy),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Replace, Phy),
        DELIVERY(QRB_EVENT_IfPhyTableCallback, Delete, Phy),
        DELIVERY(QRB_EVENT_IfRouteTableCallback, Update, Route),
        DELIVERY(QRB_EVENT_PortTableCallback, Insert, Member),
        DELIVERY(QRB_EVENT_PortTableCallback, Delete, Member),
        DELIVERY(QRB_EVENT_PortTableCallback, Update, Member),
        DELIVERY(QRB_EVENT_PortTableCallback, Replace, Member),
    };
}

Calls OfMessages()
{
    return {
        OfMessage("QRB_EVENT_GetIfBaseFromSession", [](ORM_MESSAGE message) {
            QRB_IF_BASE_S  row = {};
            const uint32_t ret = QRB_EVENT_GetIfBaseFromSession(message, ORM_OBJECT_NEW, &row);
            return Texts({ret, row.if_index}) + ' ' + Text(row.if_name);
        }, Insert, Named),
        OfMessage("QRB_EVENT_IfPhyInsert", [](ORM_MESSAGE message) {
            QRB_IF_PHY_S        row    = {};
            QRB_IF_PHY_NOTICE_S notice = {UNTOUCHED, UNTOUCHED};
            QRB_EVENT_IfPhyInsert(message, &row, &notice);
            return Texts({notice.ifIndex, notice.phyState});
        }, Insert, Phy),
    };
}

Calls Starts()
{
#define STARTS(function) {#function, Started<function>, {}, LeftUnlocked}
    return {
        {"QrbDbListenerRegisterEvent", Started<Register>, {}, LeftUnlocked},
        STARTS(QRB_EVENT_SubToPortTable),
        STARTS(QRB_EVENT_SubToIfRouteTable),
        STARTS(QRB_EVENT_SubToIfPhyTable),
        STARTS(QRB_EVENT_SubToIfBaseTable),
        {"BDS_InitStart", Started<BDS_InitStart>,
            [] { g_isL2IFEvtInited = 0; },
            [] {
                EXPECT_EQ(g_isL2IFEvtInited, 1);
                LeftUnlocked();
            }},
        {"DbListenerEpollCtrl", [] {
             const auto control = [](uint32_t operation) {
                 return static_cast<uint32_t>(DbListenerEpollCtrl(static_cast<uint32_t>(descriptor), operation));
             };
             return Texts({control(0), control(1), control(7)});
         },
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
