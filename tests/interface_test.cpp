// Interfaces: the comparison of names, types and the one-time build of their table, states.
#include <algorithm>
#include <cstdlib>
#include <latch>
#include <span>
#include <thread>

#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/records.h>

#include "calls/calls.h"

namespace {

using namespace calls;

const BDS_IF_TYPE_INFO_S* Published()
{
    return __atomic_load_n(&g_pstBDSIfTypeInfo, __ATOMIC_ACQUIRE);
}

// As if no table had been built yet.
void ForgetTable()
{
    free(const_cast<BDS_IF_TYPE_INFO_S*>(Published()));
    __atomic_store_n(&g_pstBDSIfTypeInfo, nullptr, __ATOMIC_RELEASE);
}

class Interface : public DeviceTest {
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        ForgetTable();
    }
};

TEST_F(Interface, NameIsComparedInTheFormThatIsAskedFor)
{
    static QRB_IF_BASE_S           record  = {};
    static constexpr IF_NAME_KEY_S full    = {"Eth0/0/1", 1};
    static constexpr IF_NAME_KEY_S simple  = {"E1", 0};
    static constexpr IF_NAME_KEY_S wrong   = {"E1", 2};
    constexpr char                 small[] = R"(0 | copy all field if_base fail for cmp\n)";
    Positioned("if_base");
    Expect({
        {CALL(IF_CmpIfBaseRecord, session, &wrong, &record, 387), "0"},
        {CALL(IF_CmpIfBaseRecord, session, &simple, &record, 387), "1"},
        {CALL(IF_CmpIfBaseRecord, session, &full, &record, 388), "1"},
        {CALL(IF_CmpIfBaseRecord, session, &full, &record, 386), small},
        {CALL(IF_CmpIfBaseRecord, session, &full, &record, -1), small},
        {CALL(IF_CmpIfBaseRecord, session, &full, &record, 0), small},
    });
    Closed();
    EXPECT_EQ(uint32_t{record.if_index}, 1U);
}

TEST_F(Interface, TypesFollowFromTheCode)
{
    std::string phyTypes;
    std::string types;
    ASSERT_EQ(BDS_InitIfTypeInfo(), 0U);
    for (const QRB_IF_TRANS_S& pair : g_qrbIfTrans) {
        phyTypes += Texts({pair.if_type, pair.phy_type}) + ", ";
    }
    for (const BDS_IF_TYPE_INFO_S& type : std::span(Published(), QRB_IF_TYPE_COUNT)) {
        types += Texts({type.first_value, type.port_type, type.third_value}) + ", ";
    }
    EXPECT_EQ(phyTypes,
              "0 38, 1 6, 2 53, 3 101, 4 97, 5 98, 6 58, 7 101, 9 55, 10 58, 11 45, 12 82, 13 60, "
              "14 39, 15 100, 16 1, ");
    EXPECT_EQ(types,
              "38 25 22, 6 11 14, 53 37 41, 0 0 0, 97 100 27, 98 101 82, 0 0 0, 86 90 70, "
              "58 41 43, 55 11 54, 58 41 43, 45 104 29, 82 105 66, 60 43 45, 39 26 23, "
              "100 103 72, 1 1 12, ");
    Load(R"({"if_base": [
        {"if_index": 10, "if_name": "0", "if_type": 0}, {"if_index": 11, "if_name": "3", "if_type": 3},
        {"if_index": 12, "if_name": "16", "if_type": 16}, {"if_index": 13, "if_name": "257", "if_type": 257}]})");
    Expect({
        {CALL(BDS_IfPortTypeSwitch, 16U, Out32()), "0 1"},
        {CALL(BDS_IfPortTypeSwitch, 17U, Out32()), "1 -"},
        {CALL(IFPDT_GetPortType, 13U), "NONE"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 10U), "38"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 11U), "101"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 12U), "1"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 13U), "101"},  // not 1, though its low byte is
        {CALL(IF_INTF_GetPhyTypeByIndex, 2U), "101"},
    });
}

TEST_F(Interface, TypeTableIsReplacedByAnExplicitBuildOnly)
{
    uint32_t portType = 0;
    EXPECT_EQ(BDS_IfPortTypeSwitch(1, &portType), 0U);
    auto* const first = const_cast<BDS_IF_TYPE_INFO_S*>(Published());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(BDS_IfPortTypeSwitch(16, &portType), 0U);
    EXPECT_EQ(Published(), first);
    EXPECT_EQ(BDS_InitIfTypeInfo(), 0U);
    EXPECT_NE(Published(), first);
    EXPECT_EQ(first[15].third_value, 72);  // whoever still reads an old table may

    // The second group needs a whole table, and leaves the first alone.
    first[9].port_type = UNTOUCHED;
    first[10]          = {};
    EXPECT_EQ(BDS_InitNewIfTypeInfo(first, 16), 1U);
    EXPECT_EQ(first[10].port_type, 0);
    EXPECT_EQ(BDS_InitNewIfTypeInfo(first, 17), 0U);
    EXPECT_TRUE(first[9].port_type == UNTOUCHED && first[10].port_type == 41);
    free(first);
}

// One build, and no one sees a table that isn't full. A second build would also show as a leak.
TEST_F(Interface, TypesAreAskedForFirstByManyThreads)
{
    support::WatchPlatform(false);
    for (int round = 0; round < 200; round++) {
        const BDS_IF_TYPE_INFO_S* seen[4] = {};
        std::latch                start(std::ssize(seen));
        std::vector<std::jthread> threads;
        for (const BDS_IF_TYPE_INFO_S*& table : seen) {
            threads.emplace_back([&table, &start] {
                uint32_t portType = 0;
                start.arrive_and_wait();
                EXPECT_EQ(BDS_IfPortTypeSwitch(16, &portType), 0U);
                EXPECT_EQ(portType, 1U);
                table = Published();
            });
        }
        threads.clear();
        EXPECT_EQ(std::ranges::count(seen, Published()), std::ssize(seen));
        ForgetTable();
    }
}

TEST_F(Interface, IsUpByItsLinkAndItsRoute)
{
    Load(R"({
        "if_link": [{"if_index": 10, "link_state": 1}, {"if_index": 11, "link_state": 0}, {"if_index": 12, "link_state": 2}],
        "if_route": [{"if_index": 10, "route_state": 0}, {"if_index": 11, "route_state": 1}, {"if_index": 12, "route_state": 3}],
        "if_phy": [{"if_index": 10, "phy_state": 200}],
        "port": [{"if_index": 10, "switch_port": 200}, {"if_index": 11}]})");
    Expect({
        {CALL(IF_INTF_GetIfLineState, 10U, Out32()), "0 2"},
        {CALL(IF_INTF_GetIfLineState, 11U, Out32()), "0 2"},
        {CALL(IF_INTF_GetIfLineState, 12U, Out32()), "0 1"},
        {CALL(IF_INTF_GetIfLinkState, 11U, Out32()), "0 2"},
        {CALL(IF_INTF_GetIfLinkState, 12U, Out32()), "0 2"},
        {CALL(BDS_IfnetGetIfPhyState, 10U, Out8()), "0 200"},
        {CALL(BDS_IfnetIsSwitchPort, 10U), "1"},
        {CALL(BDS_IfnetIsSwitchPort, 11U), "0"},
    });
}

TEST_F(Interface, ClassFollowsFromTheIndex)
{
    Expect({
        {CALL(IF_INIF_IsAPtunnleByIfIndex, 0x5FFFFFFFU), "0"},
        {CALL(IF_INIF_IsAPtunnleByIfIndex, 0x60000000U), "1"},
        {CALL(IF_INIF_IsAPtunnleByIfIndex, 0x60FFFFFFU), "1"},
        {CALL(IF_INIF_IsVapByIfIndex, 0x60FFFFFFU), "0"},
        {CALL(IF_INIF_IsVapByIfIndex, 0x61FFFFFFU), "1"},
        {CALL(IF_INIF_IsVapByIfIndex, 0x62000000U), "0"},
    });
}

}  // namespace
