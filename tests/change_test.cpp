// The road of a change: a row is written, and the modules are told, in order, on the listener
// thread.
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/subscription.h>

#include <algorithm>
#include <optional>
#include <random>

#include "support/events.h"
#include "support/network.h"
#include "support/platform.h"
#include "support/writes.h"

namespace {

using standin::Row;
using support::AwaitEvents;
using support::Events;
using namespace support::writes;

using Messages = std::vector<std::string>;

// VLANs 47 and 46 are the lowest bits of one byte, 47 the lower; 8 lies in a byte before.
struct Vlans {
    std::vector<uint32_t> first;
    std::vector<uint32_t> second;
};

Row Member(uint64_t pvid, const Vlans& vlans)
{
    Row row = Port(7, pvid, 0);
    for (const uint32_t id : vlans.first) {
        row.AddToSet("vlan_bitmap_1", id, id);
    }
    for (const uint32_t id : vlans.second) {
        row.AddToSet("vlan_bitmap_2", id, id);
    }
    return row;
}

class Change : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        support::RecordEvents();
        ASSERT_EQ(BDS_InitStart(), 0U);
    }
    void TearDown() override
    {
        support::StopListener();
        support::ForgetEvents();
        PlatformTest::TearDown();
    }
};

struct Case {
    std::optional<Row> before;
    Writing            write;
    Row                row;
    Events             events;
    Messages           complaints = {};
};

const Messages dropped = {"QRB_EVENT_IfPhyTableCallback: Incorrect type of event type, type=1\n"};
const Messages noOldRoute = {
    "QRB_EVENT_IfRouteOrmGetOldData: Failed to fetch DB, ret=1001000\n",
    "QRB_EVENT_IfRouteTableCallback: Failed to get old orm if_route data.\n"};

const std::optional<Row> none;

// clang-format off
const Case cases[] = {
    {none, Insert, Base(7), {"notify 0 if 7"}},
    {Base(7), Delete, Base(7), {"notify 1 if 7"}},
    {Base(7), Update, Base(7).Set("mtu", 9000), {}},
    {none, Replace, Base(7), {}},
    {none, Insert, Row("if_link").Set("if_index", 7).Set("link_state", 1), {}},

    {none, Insert, Phy(7, 1), {"9/8 flag 0 if 7", "notify 3 if 7"}},
    {none, Insert, Phy(7, 0), {"notify 4 if 7"}},
    {none, Insert, Phy(7, 2), {}},
    {none, Replace, Phy(7, 1), {"9/8 flag 0 if 7", "notify 3 if 7"}},
    {Phy(7, 0), Update, Phy(7, 1), {"9/2 flag 0 if 7", "9/8 flag 0 if 7", "notify 3 if 7"}},
    {Phy(7, 1), Replace, Phy(7, 0), {"9/2 flag 1 if 7", "notify 4 if 7"}},
    {Phy(7, 1), Update, Phy(7, 1).Set("speed", 10), {}},
    {Phy(7, 0), Update, Phy(7, 2), {}},
    {Phy(7, 2), Update, Phy(7, 1), {}},
    {Phy(7, 1), Delete, Phy(7, 1), {}, dropped},

    {none, Insert, Route(7, 1), {}},
    {Route(7, 1), Delete, Route(7, 1), {}},
    {none, Replace, Route(7, 1), {}, noOldRoute},
    {Route(7, 0), Update, Route(7, 1), {"9/3 flag 0 if 7 with 1, 0"}},
    {Route(7, 1), Replace, Route(7, 0), {"9/3 flag 1 if 7 with 1, 0"}},
    {Route(7, 1), Update, Route(7, 2), {}},

    {none, Insert, Port(7, 1, 0), {"36 if 7 pvid 1"}},
    {none, Replace, Port(7, 1, 1), {"36 if 7 pvid 1"}},
    {Port(7, 1, 0), Delete, Port(7, 9, 0), {"37 if 7 pvid 1"}},
    {Port(7, 1, 0), Update, Port(7, 2, 0), {}},
    {Port(7, 1, 0), Update, Port(7, 2, 1), {"13 if 7 use 1"}},
    {Port(7, 1, 1), Replace, Port(7, 2, 0), {"14 if 7 use 0"}},
    {Port(7, 1, 2), Update, Port(7, 2, 1), {}},
    {Member(1, {{}, {47}}), Update, Member(2, {{}, {46, 47}}), {"11 if 7 pvid 2 bitmap 0"}},
    {Member(1, {{}, {46, 47}}), Replace, Member(2, {{}, {47}}), {"12 if 7 pvid 1 bitmap 0"}},
    {Member(1, {{}, {47}}), Update, Member(2, {{}, {46}}), {"11 if 7 pvid 2 bitmap 0"}},
    {Member(1, {{47}, {}}), Update, Member(2, {{46, 47}, {}}), {"11 if 7 pvid 2 bitmap 1"}},
    {Member(1, {{0}, {}}), Update, Member(2, {{4095}, {}}), {"12 if 7 pvid 1 bitmap 1"}},
    {Member(1, {{47}, {}}), Update, Member(2, {{}, {8}}), {"11 if 7 pvid 2 bitmap 0"}},
    {Member(1, {{}, {8}}), Update, Member(2, {{}, {47}}).Set("switch_port", 1), {"13 if 7 use 1", "12 if 7 pvid 1 bitmap 0"}},
};
// clang-format on

// The events are those of which the database hands the old object first, or the new one.
std::string Definition(const std::string& table, const Messages& events)
{
    std::string listed;
    for (const std::string& event : events) {
        const bool oldFirst = event[0] == '-';
        listed += (listed.empty() ? R"({"type":")" : R"(,{"type":")") + event.substr(1) +
                  (oldFirst ? R"(", "msgTypes": ["old object", "new object"]})"
                            : R"(", "msgTypes": ["new object", "old object"]})");
    }
    const std::string name = "qrb_json_sub_" + table;
    return R"({"name":")" + name + R"(","label_name":")" + table + R"(","comment":")" + name +
           R"(","type":"before_commit","events": [)" + listed +
           R"( ], "is_path":false, "persist":false })";
}

TEST_F(Change, IsSubscribedToByTheseTexts)
{
    const Messages all = {"+insert", "-replace", "-delete", "+update"};
    EXPECT_EQ(
        support::PlatformTexts(),
        (Messages{
            "channel:", "osc", "port", "qrb_orm_sub_port", Definition("port", all), "qrb_port",
            "qrb_orm_sub_if_route_table", Definition("if_route", {"-replace", "+update"}),
            "qrb_if_route", "qrb_orm_sub_if_phy", Definition("if_phy", all), "qrb_if_phy",
            "qrb_orm_sub_if_base", Definition("if_base", {"-insert", "+delete"}), "qrb_if_base"}));
}

TEST_F(Change, BecomesTheEventsOfItsTable)
{
    for (const Case& one : cases) {
        SCOPED_TRACE(&one - cases);
        standin::Reset();
        if (one.before) {
            Write(Insert, {*one.before});
        }
        AwaitEvents();
        support::TakeMessages();
        Write(one.write, {one.row});
        EXPECT_EQ(AwaitEvents(), one.events);
        EXPECT_EQ(support::TakeComplaints(), one.complaints);
    }
}

TEST_F(Change, RowsOfOneDeliveryAnswerForThemselves)
{
    Write(Insert, {Phy(2, 1)});
    AwaitEvents();
    Write(Replace, {Phy(1, 0), Phy(2, 0), Phy(3, 1), Port(1, 1, 1), Port(1, 2, 0)});
    EXPECT_EQ(AwaitEvents(),
              (Events{"notify 4 if 1", "9/2 flag 1 if 2", "notify 4 if 2", "9/8 flag 0 if 3",
                      "notify 3 if 3", "36 if 1 pvid 1", "14 if 1 use 0"}));
}

// Entries that have no callback stand ahead of all others.
TEST_F(Change, AFailedPublicationIsReportedAndTheRestGoesOn)
{
    for (const uint32_t event : {11U, 12U, 13U, 14U, 36U, 37U}) {
        L2IF_SH_EvtCbFuncReg("null", event, 9, nullptr);
    }
    IF_INTF_RegEvtCb(9, 2, nullptr, 0, 9);
    Write(Insert, {Port(7, 1, 0), Phy(7, 0)});
    Write(Update, {Member(1, {{}, {1}}).Set("switch_port", 1), Phy(7, 1)});
    Write(Update, {Port(7, 1, 0)});
    Write(Delete, {Port(7, 1, 0)});
    EXPECT_EQ(AwaitEvents(), (Events{"notify 4 if 7", "9/8 flag 0 if 7", "notify 3 if 7"}));
    auto messages = support::TakeComplaints();
    std::erase_if(messages,
                  [](auto& message) { return message.find("moduleName") != std::string::npos; });
    EXPECT_EQ(messages,
              (Messages{"QRB_EVENT_PortInsert: Failed to publish event=36, ifIndex=7",
                        "QRB_EVENT_PortUpdateSwitchPortUse: Failed to publish event, ifIndex=7",
                        "QRB_EVENT_PortCheckIsVlanBitMapChange: Failed to publish event \"vlan add "
                        "port\", ifIndex=7, portIndex=1792.\n",
                        "QRB_EVENT_IfPhyUpdate: Failed to execute callback, subId=2, priority=9\n",
                        "QRB_EVENT_PortUpdateSwitchPortUse: Failed to publish event, ifIndex=7",
                        "QRB_EVENT_PortCheckIsVlanBitMapChange: Failed to publish event \"vlan del "
                        "port\", ifIndex=7, portIndex=1792.\n",
                        "QRB_EVENT_PortDelete: Failed to publish event=37, ifIndex=7"}));
}

TEST_F(Change, WithoutANotificationListEachChangeSaysSo)
{
    support::ForgetEvents();
    IF_EvtInit();
    Write(Insert, {Base(7), Phy(7, 1)});
    Write(Update, {Phy(7, 0)});
    const Messages sites    = {"QRB_EVENT_IfBaseTableCallback", "QRB_EVENT_IfPhyInsert",
                               "QRB_EVENT_IfPhyUpdate"};
    const Messages commands = {"0", "3", "4"};
    Messages       expected;
    Messages       seen;
    for (size_t i = 0; i < sites.size(); i++) {
        expected.push_back("IF_NotifyAll: Failed to execute callback, it is not inited\n");
        expected.push_back(
            sites[i] + ": Failed to notify event, ifindex=7, notifyEventId=" + commands[i] + ".\n");
    }
    support::Eventually([&] {
        std::ranges::move(support::TakeComplaints(), std::back_inserter(seen));
        return seen.size() >= expected.size();
    });
    EXPECT_EQ(seen, expected);
}

// Against a slow model: bitmaps that share their first bytes, compared whole and in part.
TEST(VlanBitmap, TheFirstDifferenceDecides)
{
    std::mt19937 random(20261124);
    support::ForgetEvents();
    support::RecordEvents();
    for (int round = 0; round < 3000; round++) {
        QRB_PORT_S oldRow = {};
        QRB_PORT_S newRow = {};
        const auto which  = static_cast<uint8_t>(random() % 2);
        uint8_t*   olds   = which == 1 ? oldRow.vlan_bitmap_1 : oldRow.vlan_bitmap_2;
        uint8_t*   news   = which == 1 ? newRow.vlan_bitmap_1 : newRow.vlan_bitmap_2;
        for (size_t byte = random() % 512; byte < 512; byte += 1 + random() % 100) {
            olds[byte] = static_cast<uint8_t>(random());
            news[byte] = random() % 2 == 0 ? olds[byte] : static_cast<uint8_t>(random());
        }
        const auto length      = static_cast<int32_t>(random() % 513);
        const auto [at, other] = std::mismatch(olds, olds + length, news);
        Events expected;
        if (at != olds + length) {
            expected = {(*other > *at ? "11 if 0 pvid 0 bitmap " : "12 if 0 pvid 0 bitmap ") +
                        std::to_string(which)};
        }
        ASSERT_EQ(QRB_EVENT_PortCheckIsVlanBitMapChange(&newRow, &oldRow, length, which),
                  expected.empty() ? 1U : 0U);
        ASSERT_EQ(support::TakeEvents(), expected);
    }
    const QRB_PORT_S row   = {};
    QRB_PORT_S       other = {};
    other.reserved_1048[0] = 1;
    EXPECT_EQ(QRB_EVENT_PortCheckIsVlanBitMapChange(&row, &other, 4096, 0), 1U);
    other.vlan_bitmap_2[0] = 1;
    for (const int32_t length : {-1, 0}) {
        EXPECT_EQ(QRB_EVENT_PortCheckIsVlanBitMapChange(&row, &other, length, 0), 1U);
    }
    support::ForgetEvents();
}

}  // namespace
