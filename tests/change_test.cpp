// The road of a change: a row is written, and the modules are told, in order, on the listener
// thread.
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>

#include <algorithm>
#include <optional>
#include <random>

#include <standin/database.h>

#include "support/events.h"
#include "support/listener.h"
#include "support/network.h"
#include "support/platform.h"

namespace {

using standin::Row;
using standin::Transaction;
using support::AwaitEvents;
using support::Events;
using support::Eventually;
using support::TakeMessages;

using Messages = std::vector<std::string>;

Row Base()
{
    return Row("if_base").Set("if_index", 7).Set("if_name", "seven");
}

Row Phy(uint64_t state, uint64_t interface = 7)
{
    return Row("if_phy").Set("if_index", interface).Set("phy_state", state);
}

Row Route(uint64_t state)
{
    return Row("if_route").Set("if_index", 7).Set("route_state", state);
}

// VLANs 47 and 46 are the lowest bits of one byte, 47 the lower; 8 lies in a byte before.
struct Vlans {
    std::vector<uint32_t> first;
    std::vector<uint32_t> second;
};

Row Port(uint64_t pvid, uint64_t use, const Vlans& vlans = {}, uint64_t interface = 7)
{
    Row row = Row("port").Set("if_index", interface).Set("port_index", interface << 8);
    row.Set("pvid", pvid).Set("switch_port", use);
    for (const uint32_t id : vlans.first) {
        row.AddToSet("vlan_bitmap_1", id, id);
    }
    for (const uint32_t id : vlans.second) {
        row.AddToSet("vlan_bitmap_2", id, id);
    }
    return row;
}

enum class Write { Insert, Delete, Update, Replace };

void Put(Transaction& transaction, Write write, const Row& row)
{
    switch (write) {
        case Write::Insert:
            return transaction.Insert(row);
        case Write::Delete:
            return transaction.Delete(row);
        case Write::Update:
            return transaction.Update(row);
        case Write::Replace:
            return transaction.Replace(row);
    }
}

void Do(Write write, const std::vector<Row>& rows)
{
    Transaction transaction;
    for (const Row& row : rows) {
        Put(transaction, write, row);
    }
    transaction.Commit();
}

// Without what the listener thread says of its start.
Messages Complaints()
{
    auto messages = TakeMessages();
    std::erase_if(messages, [](const std::string& message) {
        return message.starts_with("DbListenerEpollThreadFunc");
    });
    return messages;
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
    Write              write;
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
    {none, Write::Insert, Base(), {"notify 0 if 7"}},
    {Base(), Write::Delete, Base(), {"notify 1 if 7"}},
    {Base(), Write::Update, Base().Set("mtu", 9000), {}},
    {none, Write::Replace, Base(), {}},
    {none, Write::Insert, Row("if_link").Set("if_index", 7).Set("link_state", 1), {}},

    {none, Write::Insert, Phy(1), {"9/8 flag 0 if 7", "notify 3 if 7"}},
    {none, Write::Insert, Phy(0), {"notify 4 if 7"}},
    {none, Write::Insert, Phy(2), {}},
    {none, Write::Replace, Phy(1), {"9/8 flag 0 if 7", "notify 3 if 7"}},
    {none, Write::Replace, Phy(0), {"notify 4 if 7"}},
    {Phy(0), Write::Update, Phy(1), {"9/2 flag 0 if 7", "9/8 flag 0 if 7", "notify 3 if 7"}},
    {Phy(0), Write::Replace, Phy(1), {"9/2 flag 0 if 7", "9/8 flag 0 if 7", "notify 3 if 7"}},
    {Phy(1), Write::Update, Phy(0), {"9/2 flag 1 if 7", "notify 4 if 7"}},
    {Phy(1), Write::Replace, Phy(0), {"9/2 flag 1 if 7", "notify 4 if 7"}},
    {Phy(1), Write::Update, Phy(1).Set("speed", 10), {}},
    {Phy(0), Write::Update, Phy(2), {}},
    {Phy(2), Write::Update, Phy(1), {}},
    {Phy(1), Write::Delete, Phy(1), {}, dropped},

    {none, Write::Insert, Route(1), {}},
    {Route(1), Write::Delete, Route(1), {}},
    {none, Write::Replace, Route(1), {}, noOldRoute},
    {Route(0), Write::Update, Route(1), {"9/3 flag 0 if 7 with 1, 0"}},
    {Route(1), Write::Replace, Route(0), {"9/3 flag 1 if 7 with 1, 0"}},
    {Route(1), Write::Update, Route(2), {}},
    {Route(1), Write::Update, Route(1), {}},

    {none, Write::Insert, Port(1, 0), {"36 if 7 pvid 1"}},
    {none, Write::Replace, Port(1, 1), {"36 if 7 pvid 1"}},
    {Port(1, 0), Write::Delete, Port(9, 0), {"37 if 7 pvid 1"}},
    {Port(1, 0), Write::Update, Port(2, 0), {}},
    {Port(1, 0), Write::Update, Port(2, 1), {"13 if 7 use 1"}},
    {Port(1, 1), Write::Replace, Port(2, 0), {"14 if 7 use 0"}},
    {Port(1, 2), Write::Update, Port(2, 1), {}},
    {Port(1, 0, {{}, {47}}), Write::Update, Port(2, 0, {{}, {46, 47}}), {"11 if 7 pvid 2 bitmap 0"}},
    {Port(1, 0, {{}, {46, 47}}), Write::Replace, Port(2, 0, {{}, {47}}), {"12 if 7 pvid 1 bitmap 0"}},
    {Port(1, 0, {{}, {47}}), Write::Update, Port(2, 0, {{}, {46}}), {"11 if 7 pvid 2 bitmap 0"}},
    {Port(1, 0, {{47}, {}}), Write::Update, Port(2, 0, {{46, 47}, {}}), {"11 if 7 pvid 2 bitmap 1"}},
    {Port(1, 0, {{0}, {}}), Write::Update, Port(2, 0, {{4095}, {}}), {"12 if 7 pvid 1 bitmap 1"}},
    {Port(1, 0, {{47}, {}}), Write::Update, Port(2, 0, {{}, {8}}), {"11 if 7 pvid 2 bitmap 0"}},
    {Port(1, 0, {{}, {8}}), Write::Update, Port(2, 1, {{}, {47}}), {"13 if 7 use 1", "12 if 7 pvid 1 bitmap 0"}},
};
// clang-format on

TEST_F(Change, BecomesTheEventsOfItsTable)
{
    for (const Case& one : cases) {
        SCOPED_TRACE(&one - cases);
        standin::Reset();
        if (one.before) {
            Do(Write::Insert, {*one.before});
        }
        AwaitEvents();
        TakeMessages();
        Do(one.write, {one.row});
        EXPECT_EQ(AwaitEvents(), one.events);
        EXPECT_EQ(Complaints(), one.complaints);
    }
}

TEST_F(Change, RowsOfOneDeliveryAnswerForThemselves)
{
    Do(Write::Insert, {Phy(1, 2)});
    AwaitEvents();
    Do(Write::Replace, {Phy(0, 1), Phy(0, 2), Phy(1, 3), Port(1, 1, {}, 1), Port(2, 0, {}, 1)});
    EXPECT_EQ(AwaitEvents(),
              (Events{"notify 4 if 1", "9/2 flag 1 if 2", "notify 4 if 2", "9/8 flag 0 if 3",
                      "notify 3 if 3", "36 if 1 pvid 1", "14 if 1 use 0"}));
    Transaction refused;
    refused.Update(Phy(1, 1));
    refused.Update(Phy(1, 99));
    EXPECT_THROW(refused.Commit(), standin::Error);
    EXPECT_EQ(AwaitEvents(), Events{});
}

// With an entry that has no callback ahead of all others, or with nobody to notify.
TEST_F(Change, AFailedPublicationIsReportedAndTheRestGoesOn)
{
    for (const uint32_t event : {11U, 12U, 13U, 14U, 36U, 37U}) {
        L2IF_SH_EvtCbFuncReg("null", event, 9, nullptr);
    }
    IF_INTF_RegEvtCb(9, 2, nullptr, 0, 9);
    Do(Write::Insert, {Port(1, 0), Phy(0)});
    Do(Write::Update, {Port(1, 1, {{}, {1}}), Phy(1)});
    Do(Write::Update, {Port(1, 0)});
    Do(Write::Delete, {Port(1, 0)});
    EXPECT_EQ(AwaitEvents(), (Events{"notify 4 if 7", "9/8 flag 0 if 7", "notify 3 if 7"}));
    auto messages = Complaints();
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
    Do(Write::Insert, {Base(), Phy(1)});
    Do(Write::Update, {Phy(0)});
    Do(Write::Delete, {Base()});
    Messages expected;
    Messages seen;
    for (const auto& [site, command] : {std::pair{"QRB_EVENT_IfBaseTableCallback", "0"},
                                        {"QRB_EVENT_IfPhyInsert", "3"},
                                        {"QRB_EVENT_IfPhyUpdate", "4"},
                                        {"QRB_EVENT_IfBaseTableCallback", "1"}}) {
        expected.push_back("IF_NotifyAll: Failed to execute callback, it is not inited\n");
        expected.push_back(std::string(site) +
                           ": Failed to notify event, ifindex=7, notifyEventId=" + command + ".\n");
    }
    Eventually([&] {
        std::ranges::move(Complaints(), std::back_inserter(seen));
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
    for (int round = 0; round < 5000; round++) {
        QRB_PORT_S oldRow = {};
        QRB_PORT_S newRow = {};
        const auto which  = static_cast<uint8_t>(random() % 2);
        uint8_t*   olds   = which == 1 ? oldRow.vlan_bitmap_1 : oldRow.vlan_bitmap_2;
        uint8_t*   news   = which == 1 ? newRow.vlan_bitmap_1 : newRow.vlan_bitmap_2;
        for (size_t byte = random() % 512; byte < 512; byte += 1 + random() % 100) {
            olds[byte] = static_cast<uint8_t>(random());
            news[byte] = random() % 2 == 0 ? olds[byte] : static_cast<uint8_t>(random());
        }
        const auto length      = random() % 2 == 0 ? 512 : static_cast<int32_t>(random() % 513);
        const auto [at, other] = std::mismatch(olds, olds + length, news);
        Events expected;
        if (at != olds + length) {
            expected = {std::string(*other > *at ? "11" : "12") + " if 0 pvid 0 bitmap " +
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
    EXPECT_EQ(QRB_EVENT_PortCheckIsVlanBitMapChange(&row, &other, -1, 0), 1U);
    TakeMessages();
    EXPECT_EQ(QRB_EVENT_PortCheckIsVlanBitMapChange(&row, nullptr, 512, 0), 1U);
    EXPECT_EQ(QRB_EVENT_PortCheckIsVlanBitMapChange(nullptr, &row, 512, 0), 1U);
    EXPECT_EQ(TakeMessages(),
              Messages(2, "QRB_EVENT_PortCheckIsVlanBitMapChange: Input parameter is NULL.\n"));
    support::ForgetEvents();
}

}  // namespace
