// From a write to the callbacks on the listener thread.
#include <algorithm>
#include <random>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/subscription.h>

#include "sources/host/host_source.h"
#include "support/recorded_events.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using standin::Row;
using support::AwaitEvents;
using support::Base, support::PhyState, support::Port, support::RouteState;
using support::Events;
using namespace support::writes;

class ChangeDetection : public support::EventTest {
protected:
    void SetUp() override
    {
        EventTest::SetUp();
        support::RecordEvents();
        ASSERT_EQ(BDS_InitStart(), 0U);
    }
};

// VLANs 47 and 46 are the lowest bits of one byte, 47 the lower.
Row Member(uint64_t pvid, int bitmap, uint32_t vlan)
{
    return Port(7, pvid, 0).AddToSet("vlan_bitmap_" + std::to_string(bitmap), vlan, vlan);
}

// In addition to the example calls, which have one for each table and kind of write.
const struct {
    Row before;
    Writing write;
    Row row;
    Events events;
} cases[] = {
    {PhyState(7, 0),
     Update,
     PhyState(7, 1),
     {"9/2 flag 0 if 7", "9/8 flag 0 if 7", "notify 3 if 7"}},
    {PhyState(7, 1), Update, PhyState(7, 1).Set("speed", 10), {}},
    {PhyState(7, 0), Update, PhyState(7, 2), {}},
    {PhyState(7, 2), Update, PhyState(7, 1), {}},
    {PhyState(6, 0), Insert, PhyState(7, 2), {}},
    {RouteState(7, 0), Update, RouteState(7, 1), {"9/3 flag 0 if 7 with 1, 0"}},
    {RouteState(7, 1), Replace, RouteState(7, 0), {"9/3 flag 1 if 7 with 1, 0"}},
    {Port(7, 1, 0), Update, Port(7, 2, 1), {"13 if 7 use 1"}},
    {Member(1, 2, 47), Update, Member(2, 2, 46), {"11 if 7 pvid 2 bitmap 0"}},
    {Member(1, 1, 0), Update, Member(2, 1, 4095), {"12 if 7 pvid 1 bitmap 1"}},
    {Member(1, 1, 8), Update, Member(2, 2, 8), {"11 if 7 pvid 2 bitmap 0"}},
};

TEST_F(ChangeDetection, PublishesTheEventsOfTheTable)
{
    for (const auto& [before, write, row, events] : cases) {
        SCOPED_TRACE(testing::PrintToString(events) + " are expected");
        standin::Reset();
        Write(Insert, {before});
        AwaitEvents();
        support::TakeMessages();
        Write(write, {row});
        EXPECT_EQ(AwaitEvents(), events);
        EXPECT_EQ(support::TakeComplaints(), Events());
    }
}

TEST_F(ChangeDetection, SubscribesWithTheRecordedDefinitions)
{
    std::string texts;
    for (const std::string& text : support::PlatformTexts()) {
        texts += text + "\n";
    }
    EXPECT_EQ(texts, support::TextOf(TARND_PROJECT_ROOT "/tests/data/subscription_texts.txt"));
}

TEST_F(ChangeDetection, RowsOfOneDeliveryAreIndependent)
{
    Write(Insert, {PhyState(2, 1)});
    AwaitEvents();
    Write(Replace, {PhyState(1, 0), PhyState(2, 0), PhyState(3, 1), Port(1, 1, 1), Port(1, 2, 0),
                    RouteState(1, 1)});
    EXPECT_EQ(AwaitEvents(),
              (Events{"notify 4 if 1", "9/2 flag 1 if 2", "notify 4 if 2", "9/8 flag 0 if 3",
                      "notify 3 if 3", "36 if 1 pvid 1", "14 if 1 use 0"}));
}

// The first entries have no callback, and there is no notification list.
TEST_F(ChangeDetection, ContinuesAfterAFailedPublication)
{
    IF_NotifyFuncRegTbl_Deinit();
    g_isIFNotifyInited = 0;
    for (const uint32_t event : {11U, 12U, 13U, 14U, 36U, 37U}) {
        L2IF_SH_EvtCbFuncReg("null", event, 9, nullptr);
    }
    IF_INTF_RegEvtCb(9, 2, nullptr, 0, 9);
    Write(Insert, {Base(7), Port(7, 1, 0), PhyState(7, 1)});
    Write(Update, {Port(7, 1, 1).AddToSet("vlan_bitmap_2", 1, 1), PhyState(7, 0)});
    Write(Update, {Port(7, 1, 0)});
    Write(Delete, {Port(7, 1, 0)});
    const Events expected = {
        "IfBaseTableCallback: Failed to notify event, ifindex=7, notifyEventId=0.\n",
        "PortInsert: Failed to publish event=36, ifIndex=7",
        "IfPhyInsert: Failed to notify event, ifindex=7, notifyEventId=3.\n",
        "PortUpdateSwitchPortUse: Failed to publish event, ifIndex=7",
        "PortCheckIsVlanBitMapChange: Failed to publish event \"vlan add port\", ifIndex=7, "
        "portIndex=1792.\n",
        "IfPhyUpdate: Failed to execute callback, subId=2, priority=9\n",
        "IfPhyUpdate: Failed to notify event, ifindex=7, notifyEventId=4.\n",
        "PortUpdateSwitchPortUse: Failed to publish event, ifIndex=7",
        "PortCheckIsVlanBitMapChange: Failed to publish event \"vlan del port\", ifIndex=7, "
        "portIndex=1792.\n",
        "PortDelete: Failed to publish event=37, ifIndex=7"};
    Events seen;
    support::Eventually([&] {
        for (const std::string& complaint : support::TakeComplaints()) {
            if (complaint.starts_with("QRB_EVENT_")) {  // excludes lines of the publisher
                seen.push_back(complaint.substr(10));
            }
        }
        return seen.size() >= expected.size();
    });
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(support::TakeEvents(), Events{"9/8 flag 0 if 7"});
}

// Compares with a model: bitmaps with equal first bytes, of full and of shorter lengths.
TEST_F(ChangeDetection, FirstDifferingByteOfAVlanBitmapDecides)
{
    std::mt19937 random(20261124);
    for (int round = 0; round < 3000; round++) {
        QRB_PORT_S oldRow = {};
        QRB_PORT_S newRow = {};
        const auto which = static_cast<uint8_t>(random() % 2);
        uint8_t* olds = which == 1 ? oldRow.vlan_bitmap_1 : oldRow.vlan_bitmap_2;
        uint8_t* news = which == 1 ? newRow.vlan_bitmap_1 : newRow.vlan_bitmap_2;
        for (size_t byte = random() % 8; byte < 512; byte += 1 + random() % 100) {
            olds[byte] = static_cast<uint8_t>(random());
            news[byte] = random() % 2 == 0 ? olds[byte] : static_cast<uint8_t>(random());
        }
        // Bytes after the bitmaps, and a length that reaches them, must not affect the result.
        newRow.reserved_1048[0] = 1;
        const auto length = static_cast<int32_t>(random() % 600) - 50;
        const auto end = olds + std::clamp(length, 0, 512);
        const auto [at, other] = std::mismatch(olds, end, news);
        Events expected;
        if (at != end) {
            expected = {(*other > *at ? "11 if 0 pvid 0 bitmap " : "12 if 0 pvid 0 bitmap ") +
                        std::to_string(which)};
        }
        ASSERT_EQ(QRB_EVENT_PortCheckIsVlanBitMapChange(&newRow, &oldRow, length, which),
                  expected.empty() ? 1U : 0U);
        ASSERT_EQ(support::TakeEvents(), expected);
    }
}

void FollowTheKernel()
{
    const std::pair<const char*, Events> steps[] = {
        {"link add veth0 index 10 type veth peer name veth1 index 11",
         {"36 if 10 pvid 0", "36 if 11 pvid 0", "notify 0 if 10", "notify 0 if 11",
          "notify 4 if 10", "notify 4 if 11"}},
        {"link set veth0 up", {}},
        {"link set veth1 up",
         {"9/2 flag 0 if 10", "9/2 flag 0 if 11", "9/3 flag 0 if 10 with 1, 0",
          "9/3 flag 0 if 11 with 1, 0", "9/8 flag 0 if 10", "9/8 flag 0 if 11", "notify 3 if 10",
          "notify 3 if 11"}},
        {"link add br0 index 12 type bridge",
         {"36 if 12 pvid 0", "notify 0 if 12", "notify 4 if 12"}},
        {"link set veth0 master br0", {"13 if 10 use 1"}},
        {"link set veth0 mtu 1400", {}},
        {"link del br0", {"14 if 10 use 0", "37 if 12 pvid 0", "notify 1 if 12"}}};
    sources::HostSource host;
    AwaitEvents();
    host.Follow();
    for (const auto& [change, expected] : steps) {
        Events seen;
        support::Ip(change);
        support::Eventually([&, wanted = expected.size()] {
            std::ranges::move(AwaitEvents(), std::back_inserter(seen));
            return seen.size() >= wanted;
        });
        std::ranges::sort(seen);  // interfaces may change in any order
        EXPECT_EQ(seen, expected) << change;
    }
}

TEST_F(ChangeDetection, PublishesChangesOfTheKernel)
{
    IN_OWN_NETWORK(FollowTheKernel);
}

}  // namespace
