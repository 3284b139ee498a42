// Change notification: registries, publishing, deliveries, the listener's start.
//
// Answers of deliveries are the events that come of them. Each has the rows 91 and 92.
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>
#include <unistd.h>

#include <regex>

#include "calls/calls.h"
#include "support/events.h"
#include "support/subscription.h"
#include "support/writes.h"

namespace calls {

namespace {

using standin::Row;
using namespace support::writes;
using support::ForgetEvents;

constexpr L2IF_SH_EVT_CB_FUNC* ON_LAYER2    = [](auto...) { return 0U; };
constexpr IF_EVT_CB_FUNC*      ON_INTERFACE = [](auto...) { return 0U; };
constexpr IF_NOTIFY_FUNC*      ON_NOTICE    = [](auto...) { return 0U; };
constexpr uint16_t             PRIORITY     = 1;

constexpr L2IF_SH_EVT_CB_S LAYER2_ENTRY    = {};
constexpr IF_EVT_CB_S      INTERFACE_ENTRY = {};

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
Call Finds(uint32_t eventId, uint32_t subId, const std::string& expectations,
           void (*before)() = ForgetEvents)
{
    const auto find = [=] {
        UTIL_LIST_NODE_S* first = nullptr;
        uint64_t          count = UNTOUCHED;
        const uint32_t    ret   = IF_SH_EvtPublishEventGetEventNode(eventId, subId, &first, &count);
        return Texts({ret, static_cast<uint32_t>(count), first != nullptr});
    };
    return {"IF_SH_EvtPublishEventGetEventNode", find, expectations, before, ForgetEvents};
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
int32_t                                    descriptor = -1;
std::string                                answer;

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
Call Delivery(const char* name, std::function<void(ORM_MESSAGE, uint32_t)> function, Writing write,
              RowOf row, const std::string& expectations)
{
    const bool             isNew = write == Writing{Insert};
    std::vector<Row>       old   = {row(91, 1), row(92, 1)};
    const std::vector<Row> now   = {row(91, isNew ? 1 : 0), row(92, isNew ? 1 : 0)};
    if (write == Writing{Replace}) {
        old.pop_back();
    }
    return {name,
            [=] {
                support::WatchPlatform(false);
                onMessage = function;
                answer    = "";
                Write(write, now);
                DbcHandleEvent(descriptor);
                return TakeEvents() + answer;
            },
            expectations,
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

// A function of one message, the first of a delivery. What it answers is noted behind the events.
Call OfMessage(const char* name, std::string (*function)(ORM_MESSAGE), Writing write, RowOf row,
               const std::string& expectations)
{
    const auto first = [=](ORM_MESSAGE message, uint32_t) {
        uint8_t end = 0;
        support::WatchPlatform(false);
        EXPECT_EQ(OrmSubFetchNext(message, &end), 0U);
        support::WatchPlatform(true);
        answer = ' ' + function(message);
    };
    return Delivery(name, first, write, row, expectations);
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

// Without descriptors.
void Tidy(Lines& lines)
{
    static const std::regex fd("(F|f)d=-?[0-9]+");
    for (std::string& line : lines) {
        line = std::regex_replace(line, fd, "$1d=N");
    }
}

// clang-format off
const std::string FETCHES = R"(
    fetch#1   -      | Failed to fetch DB, ret=%\n
    fetch#2   $1     | Failed to fetch DB, ret=%\n
    fetch#3   $1, $2 | Failed to fetch DB, ret=%\n)";

// A row that can't be had, extracted or read, ends the delivery ...
const std::string UPDATED = "$1, $2" + FETCHES + R"(
    reporter  QRB_EVENT_$nameOrmGetOldData
    behind    Failed to get old orm $table data.\n
    any#1     -  | Failed to fetch DB, ret=%\n
    any#3     $1 | Failed to fetch DB, ret=%\n
    reporter  QRB_EVENT_$nameOrmGetNewData
    behind    Failed to get new orm $table data.\n
    any#2     -  | Failed to fetch DB, ret=%\n
    any#4     $1 | Failed to fetch DB, ret=%\n)";
const std::string BASE = "$1, $2" + FETCHES + R"(
    reporter  QRB_EVENT_GetIfBaseFromSession
    behind    get if base data from db sub session fail.\n
    extract#1 -  | OrmSubExtractData fail, ret=%.\n
    extract#2 $1 | OrmSubExtractData fail, ret=%.\n
    field#1   -  | get ifindex from db sub session fail, ret=%.\n
    field#2   -  | get ifname from db sub session fail, ret=%.\n
    field#3   $1 | get ifindex from db sub session fail, ret=%.\n
    field#4   $1 | get ifname from db sub session fail, ret=%.\n)";
// ... or only its own message.
const std::string INSERTED = "$1, $2" + FETCHES + R"(
    reporter  QRB_EVENT_$extraction
    behind    QRB_EVENT_$handler: Failed to get $age orm $table data.\n
    any#1     $2 | Failed to fetch DB, ret=%\n
    any#2     $1 | Failed to fetch DB, ret=%\n)";
// The first row was there, the second is an insertion. Who can't be asked for its old object is one
// too.
const std::string REPLACED = "$1, $2" + FETCHES + R"(
    extract#1 $new, $2
    extract#4 =
    reporter  QRB_EVENT_$nameOrmGetOldData
    behind    Failed to get old orm $table data.\n
    extract#2 -  | Failed to fetch DB, ret=%\n
    row#1     -  | Failed to fetch DB, ret=%\n
    reporter  QRB_EVENT_$nameOrmGetNewData
    behind    Failed to get new orm $table data.\n
    extract#3 -  | Failed to fetch DB, ret=%\n
    row#2     -  | Failed to fetch DB, ret=%\n
    behind    QRB_EVENT_$nameInsert: Failed to get new orm $table data.\n
    any       $1 | Failed to fetch DB, ret=%\n)";

// The steps of a registration, for a call that answers $failed to a failure and $done without one.
const std::string REGISTRATION = R"(
    reporter  DbListenerCreateEpollThread
    pthread_create  = | [DEBUG]: create epoll thread failed,errmsg=Bad file descriptor\n
    reporter  QrbDbListenerRegisterEvent
    behind    $behind
    OrmCreateSessionParam       $failed closed | [DEBUG]: OrmCreateSessionParam fail, ret=%\n
    OrmSessionParamSetConnName  $failed closed
    OrmOpenSubSession           $failed closed
    epoll_create  $refused closed | DbListenerInitEpoll: [DEBUG]: Create DbListenerInitEpoll file descriptor failed, err_msg=Bad file descriptor.\n | DbListenerEpollCtrl: [DEBUG]: epoll_ctrl:g_epollDbListenerFd=N, fd=N type=0, Error:[9:Bad file descriptor]\n
    epoll_ctl     $refused closed | DbListenerEpollCtrl: [DEBUG]: epoll_ctrl:g_epollDbListenerFd=N, fd=N type=0, Error:[9:Bad file descriptor]\n)";
const std::string SUBSCRIPTION = Fill(REGISTRATION, {
    {"$failed", "1"}, {"$refused", "1"}, {"$behind", R"($own: Failed to subscribe to "$table".\n)"}}) + R"(
    copy      1 closed
    OrmSubscribe  1 closed | [DEBUG]: OrmSubscribe fail, ret=%\n)";

Calls Registries()
{
    static const std::string longest(63, 'x');
    static const std::string tooLong(64, 'x');
    const std::string unbuilt = R"( | Failed to execute callback, it is not inited\n)";
    return {
        {CALL(L2IF_SH_EvtCbRegTbl_Init), ""},
        {CALL(L2IF_SH_EvtCbRegTbl_Deinit), ""},
        {CALL(L2IF_SH_EvtCbFuncReg, longest.c_str(), 36U, PRIORITY, ON_LAYER2), R"(0
            copy#1    1 | strcpy_s for pszModuleName failed, ret = %.\n
            any       1 | Failed to make sorted insert, ret=1\n)", {}, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncReg, tooLong.c_str(), 36U, PRIORITY, ON_LAYER2), R"(1 | strcpy_s for pszModuleName failed, ret = 34.\n
            copy      1 | strcpy_s for pszModuleName failed, ret = %.\n)"},
        {CALL(L2IF_SH_EvtCbFuncReg, nullptr, 36U, PRIORITY, ON_LAYER2), R"(1 | strcpy_s for pszModuleName failed, ret = 22.\n
            copy      1 | strcpy_s for pszModuleName failed, ret = %.\n)"},
        {CALL(L2IF_SH_EvtCbFuncReg, "m", 74U, PRIORITY, ON_LAYER2), R"(1 | Failed to reg event id=74\n)"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 74U, PRIORITY, ON_LAYER2), R"(1 | Failed to reg event id=74\n)"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, PRIORITY, nullptr), "0", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "M", 36U, PRIORITY, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, nullptr, 36U, PRIORITY, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 35U, PRIORITY, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, uint16_t{2}, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 36U, PRIORITY, ON_LAYER2), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EventPriorityComparator, &LAYER2_ENTRY, &LAYER2_ENTRY, 0U), "0"},
        {"IF_EvtInit", [] {
             IF_EvtInit();
             return Built(g_qrbIFEventCallbacks);
         }, R"(76 16
            memory#1  0 0
            memory    76 15
            copy      =)", {}, ForgetEvents},
        {CALL(IF_EvtDeInit), "", IF_EvtInit},
        {"IF_CBF_Create_Child", [] {
             IF_CBF_Create_Child(&tree, 2);
             return Built(tree);
         }, R"(2 0
            memory    0 0)", {}, [] { IF_CBF_Free_Child(&tree, 2); }},
        {CALL(IF_CBF_Create_Child, &tree, 0U), R"( | ulCnt is equal 0 \n)"},
        {"IF_CBF_Free_Child", [] {
             IF_CBF_Free_Child(&tree, 3);
             IF_CBF_Free_Child(&tree, 3);
             return Built(tree);
         }, "0 0", [] { IF_CBF_Create_Child(&tree, 2); }},
        {CALL(IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 2U, 9U, 13U), R"(0
            memory#1  1 | Failed to find event node.\n
            memory#8  1 | Failed to reg event id=9, subId=13\n
            memory#18 1 | Failed to add callback to list.\n
            copy#2    1 | Failed to add callback to list.\n
            any       =)", {}, ForgetEvents},
        {CALL(IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 3U, 76U, 2U), R"(1 | Failed to reg event id=76, subId=4294967295\n)", IF_EvtInit, ForgetEvents},
        {CALL(IF_EvtRegCbf, ON_INTERFACE, 0U, 1U, 2U, 4U, 0U), R"(1 | Failed to reg event id=4, subId=0\n)", IF_EvtInit, ForgetEvents},
        {CALL(IF_INTF_RegEvtCb, 9U, IF_EVT_WHOLE, ON_INTERFACE, 0U, 1U), R"(0
            any       1 | IF_EvtRegCbf: Failed to add callback to list.\n)", IF_EvtInit, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 8U), "0", Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 13U), "1", Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, nullptr, 0U, 2U, 9U, 8U), "1", Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 14U), R"(1 | Failed to reg event id=9, subId=14\n)", Registered, ForgetEvents},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 9U, 8U), R"(1 | Failed to find event node.\n)"},
        {CALL(IF_EvtUnRegCbf, ON_INTERFACE, 0U, 2U, 76U, 2U), R"(1 | Failed to reg event id=76, subId=2\n)"},
        {CALL(IF_INTF_UnRegEvtCb, 9U, IF_EVT_WHOLE, ON_INTERFACE, 0U), "0", Registered, ForgetEvents},
        {CALL(IF_EventPriorityComparator, &INTERFACE_ENTRY, &INTERFACE_ENTRY, 0U), "0"},
        {CALL(IF_NotifyFuncRegTbl_Init), ""},
        {CALL(IF_NotifyFuncRegTbl_Deinit), ""},
        {CALL(IF_RegNotifyFunc, 1U, ON_NOTICE), R"(0
            any       1 | Failed to add callback to list.\n)", {}, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 1U, ON_NOTICE), "0", Registered, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 2U, ON_NOTICE), "1", Registered, ForgetEvents},
        {CALL(IF_UnRegNotifyFunc, 1U, nullptr), "1", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 35U, nullptr, 0U, nullptr), "0", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 36U, nullptr, 0U, nullptr), R"(1 | Failed to execute callback, moduleName=m, priority=1\n)", Registered, ForgetEvents},
        {CALL(L2IF_SH_EvtPublishEvent, 74U, nullptr, 0U, nullptr), R"(1 | Failed to publis event id=74\n)"},
        {CALL(L2IF_SH_EvtPublishEvent, 36U, nullptr, 0U, nullptr), "1" + unbuilt, [] { g_isL2IFEvtInited = 0; }, L2IF_SH_EvtCbRegTbl_Init},
        Finds(9, 8, "0 1 1", Registered),
        Finds(9, IF_EVT_WHOLE, "0 1 1", Registered),
        Finds(9, 13, "0 0 0", Registered),
        Finds(9, 14, R"(1 - 0 | Failed to publish event id=9, subId=14\n)", Registered),
        Finds(4, 0, R"(1 - 0 | Failed to publish event id=4, subId=0\n)", Registered),
        Finds(9, 8, "1 - 0" + unbuilt),
        Finds(76, 1, R"(1 - 0 | Failed to publish event id=76, subId=1\n)"),
        {CALL(IF_NotifyAll, 1U, 2U, 3U, 4U), "0", IF_NotifyFuncRegTbl_Init, ForgetEvents},
        {CALL(IF_NotifyAll, 1U, 2U, 3U, 4U), "1" + unbuilt},
    };
}

Calls Deliveries()
{
    const Values phy   = {{"$name", "IfPhy"}, {"$table", "phy"}};
    const Values route = {{"$name", "IfRoute"}, {"$table", "if_route"}};
    const Values port  = {{"$name", "Port"}, {"$table", "port"}};
    const auto   both  = [](std::string text, const Values& table, const std::string& events) {
        text = Fill(std::move(text), {{"$1", Fill(events, {{"$if", "if 91"}})}, {"$2", Fill(events, {{"$if", "if 92"}})}});
        return Fill(text, table);
    };
    const auto base = [&](const char* events) { return both(BASE, {}, events); };
    const auto inserted = [&](const char* handler, const char* extraction, const char* age, const char* table, const char* events) {
        return both(INSERTED, {{"$handler", handler}, {"$extraction", extraction}, {"$age", age}, {"$table", table}}, events);
    };
    const auto replaced = [&](const Values& table, const char* update, const char* insertion) {
        return Fill(Fill(REPLACED, {{"$1", update}, {"$2", Fill(insertion, {{"91", "92"}})}, {"$new", insertion}}), table);
    };
    return {
        Delivery("QRB_EVENT_IfBaseTableCallback", QRB_EVENT_IfBaseTableCallback, Insert, Named, base("notify 0 $if")),
        Delivery("QRB_EVENT_IfBaseTableCallback", QRB_EVENT_IfBaseTableCallback, Delete, Named, base("notify 1 $if")),
        Delivery("QRB_EVENT_IfPhyTableCallback", QRB_EVENT_IfPhyTableCallback, Insert, Phy,
            inserted("IfPhyInsert", "IfPhyOrmGetNewData", "new", "phy", "9/8 flag 0 $if, notify 3 $if")),
        Delivery("QRB_EVENT_IfPhyTableCallback", QRB_EVENT_IfPhyTableCallback, Update, Phy,
            both(UPDATED, phy, "9/2 flag 1 $if, notify 4 $if")),
        Delivery("QRB_EVENT_IfPhyTableCallback", QRB_EVENT_IfPhyTableCallback, Replace, Phy,
            replaced(phy, "9/2 flag 1 if 91, notify 4 if 91", "notify 4 if 91")),
        Delivery("QRB_EVENT_IfPhyTableCallback", QRB_EVENT_IfPhyTableCallback, Delete, Phy,
            R"(- | Incorrect type of event type, type=1\n)"),
        Delivery("QRB_EVENT_IfRouteTableCallback", QRB_EVENT_IfRouteTableCallback, Update, Route,
            both(UPDATED, route, "9/3 flag 1 $if with 1, 0")),
        Delivery("QRB_EVENT_PortTableCallback", QRB_EVENT_PortTableCallback, Insert, Member,
            inserted("PortInsert", "PortOrmGetNewData", "new", "port", "36 $if pvid 1")),
        Delivery("QRB_EVENT_PortTableCallback", QRB_EVENT_PortTableCallback, Delete, Member,
            inserted("PortDelete", "PortOrmGetOldData", "old", "port", "37 $if pvid 1")),
        Delivery("QRB_EVENT_PortTableCallback", QRB_EVENT_PortTableCallback, Update, Member,
            both(UPDATED, port, "14 $if use 0, 11 $if pvid 1 bitmap 0")),
        Delivery("QRB_EVENT_PortTableCallback", QRB_EVENT_PortTableCallback, Replace, Member,
            replaced(port, "14 if 91 use 0, 11 if 91 pvid 1 bitmap 0", "36 if 91 pvid 1")),
    };
}

Calls OfMessages()
{
    return {
        OfMessage("QRB_EVENT_GetIfBaseFromSession", [](ORM_MESSAGE message) {
            QRB_IF_BASE_S  row = {};
            const uint32_t ret = QRB_EVENT_GetIfBaseFromSession(message, ORM_OBJECT_NEW, &row);
            return Texts({ret, row.if_index}) + ' ' + Text(row.if_name);
        }, Insert, Named, R"(- 0 91 91
            extract   - 1 0 ""  | OrmSubExtractData fail, ret=%.\n
            field#1   - 1 0 ""  | get ifindex from db sub session fail, ret=%.\n
            field#2   - 1 91 "" | get ifname from db sub session fail, ret=%.\n)"),
        OfMessage("QRB_EVENT_IfPhyInsert", [](ORM_MESSAGE message) {
            QRB_IF_PHY_S        row    = {};
            QRB_IF_PHY_NOTICE_S notice = {UNTOUCHED, UNTOUCHED};
            QRB_EVENT_IfPhyInsert(message, &row, &notice);
            return Texts({notice.ifIndex, notice.phyState});
        }, Insert, Phy, R"(9/8 flag 0 if 91, notify 3 if 91 91 1
            any       - - -  | QRB_EVENT_IfPhyOrmGetNewData: Failed to fetch DB, ret=%\n | Failed to get new orm phy data.\n)"),
    };
}

Calls Starts()
{
    const auto refused = [](const char* type, const char* error) {
        return Fill(R"( | [DEBUG]: epoll_ctrl:g_epollDbListenerFd=N, fd=N type=$type, Error:[$error]\n)", {{"$type", type}, {"$error", error}});
    };
#define SUBSCRIBES(function, table)                                                                  \
    {#function, Started<function>, "0 open" + Fill(SUBSCRIPTION, {{"$own", #function}, {"$table", table}}), {}, LeftUnlocked, Tidy}
    return {
        {"QrbDbListenerRegisterEvent", Started<Register>, "0 open" + Fill(REGISTRATION, {
            {"$failed", "%"}, {"$refused", "2013"}, {"$behind", "-"}}) + R"(
            OrmSubscribe  % closed | [DEBUG]: OrmSubscribe fail, ret=%\n)", {}, LeftUnlocked, Tidy},
        SUBSCRIBES(QRB_EVENT_SubToPortTable, "port"),
        SUBSCRIBES(QRB_EVENT_SubToIfRouteTable, "if_route"),
        SUBSCRIBES(QRB_EVENT_SubToIfPhyTable, "if_phy"),
        SUBSCRIBES(QRB_EVENT_SubToIfBaseTable, "if_base"),
        // The registries are built as far as there is memory, and the tree is cleared first.
        {"BDS_InitStart", Started<BDS_InitStart>, R"(0 open
            memory    =
            copy#1    =
            OrmInit   1 closed | QRB_DB_InitOrm: [Error]: Orm init failed, ret=%\n
            reporter  QrbDbListenerRegisterEvent
            behind    QRB_EVENT_SubToIfRouteTable: Failed to subscribe to "if_route".\n
            copy#3    1 open
            OrmSubscribe#2  1 closed | [DEBUG]: OrmSubscribe fail, ret=%\n
            behind    QRB_EVENT_SubToIfPhyTable: Failed to subscribe to "if_phy".\n
            copy#4    1 open
            OrmSubscribe#3  1 closed | [DEBUG]: OrmSubscribe fail, ret=%\n
            behind    QRB_EVENT_SubToIfBaseTable: Failed to subscribe to "if_base".\n
            copy#5    1 open
            OrmSubscribe#4  1 closed | [DEBUG]: OrmSubscribe fail, ret=%\n
            behind    -)" + Fill(SUBSCRIPTION, {{"$own", "QRB_EVENT_SubToPortTable"}, {"$table", "port"}}),
            [] { g_isL2IFEvtInited = 0; },
            [] {
                EXPECT_EQ(g_isL2IFEvtInited, 1);
                LeftUnlocked();
            }, Tidy},
        // Added, removed, and not there any more.
        {"DbListenerEpollCtrl", [] {
             const auto control = [](uint32_t operation) {
                 return static_cast<uint32_t>(DbListenerEpollCtrl(static_cast<uint32_t>(descriptor), operation));
             };
             return Texts({control(0), control(1), control(7)});
         }, "0 0 NONE" + refused("7", "2:No such file or directory") + R"(
            epoll_ctl#1 NONE NONE NONE)" + refused("0", "9:Bad file descriptor") + refused("1", "2:No such file or directory") + refused("7", "2:No such file or directory") + R"(
            epoll_ctl#2 0 NONE 0)" + refused("1", "9:Bad file descriptor") + R"(
            epoll_ctl#3 0 0 NONE)" + refused("7", "9:Bad file descriptor"),
         [] {
             g_epollDbListenerFd = epoll_create1(EPOLL_CLOEXEC);
             descriptor          = eventfd(0, EFD_CLOEXEC);
         },
         [] {
             close(descriptor);
             close(std::exchange(g_epollDbListenerFd, -1));
         }, Tidy},
    };
}
// clang-format on

}  // namespace

Calls EventCalls()
{
    Calls all;
    for (const auto family : {Registries, Deliveries, OfMessages, Starts}) {
        const Calls calls = family();
        all.insert(all.end(), calls.begin(), calls.end());
    }
    return all;
}

}  // namespace calls
