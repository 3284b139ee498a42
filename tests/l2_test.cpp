// VLANs, VLAN interfaces and the walks.
#include <algorithm>

#include <tarnd_qrb/table_walk.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include "support/example_calls.h"

namespace calls {

namespace {

// One step of a walk, after this first step or without it. An open walk has a session and a scan.
template <typename Function, typename... Arguments>
Call StepOf(const char* name, const char* expected, uint32_t (*first)(uint32_t*), Function function,
            Arguments... arguments)
{
    return {
        name,
        "",
        [=] {
            const std::string result = Run(function, arguments...);
            return result + (support::OpenHandles() == 2 ? " open" : " closed");
        },
        expected,
        [=] {
            uint32_t value = 0;
            EXPECT_EQ(first == nullptr ? 0 : first(&value), 0U);
        },
        [] {
            if (support::OpenHandles() != 0) {  // otherwise the state must be as before the walk
                QRB_ScanIfIndexFinish();
                QRB_ScanPortFinish();
                QRB_ScanVlanFinish();
            }
        }};
}
#define STEP(expected, first, function, ...) \
    StepOf(#function, expected, first, function __VA_OPT__(, ) __VA_ARGS__)

}  // namespace

// clang-format off
Calls Layer2Calls()
{
    return {
        {CALL(VLAN_IsVlanActive, uint16_t{10}), "0"},
        {CALL(BDS_L2IF_VLAN_IsActive, uint16_t{10}), "1"},
        {CALL(VLAN_IsVlanUsed, uint16_t{10}), "0"},
        {CALL(BDS_L2IF_VLAN_IsUsed, uint16_t{10}), "1"},
        {CALL(VLAN_IsPortInVlan, 1U, uint16_t{10}), "0"},
        {CALL(BDS_L2IF_VP_PortIsInVlan, 1U, uint16_t{10}), "1"},
        {CALL(BDS_L2IF_VP_PortIsInVlanWithTag, 1U, uint16_t{10}), R"(0 | STUB for BDS_L2IF_VP_PortIsInVlanWithTag\n)"},
        {CALL(VLAN_PortIndex2PortIdx, 0x100U), "1"},
        {CALL(L2IF_GetPVIDByIfIndex, 1U, Out16()), "0 10"},
        {CALL(L2IF_VLAN_GetDescript, uint16_t{10}, OutText()), "0 red floor"},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "red", Out16()), "0 10"},
        {CALL(L2IF_DB_ScanVlanId, session, Out16(), 0U), "0 20", [] { Positioned("vlan"); }, Closed},

        {CALL(BDS_L2IF_VLAN_GetIfIndexByVlanId, uint16_t{10}, Out32()), "0 10010"},
        {CALL(BDS_L2_VlanGetIfIndex, uint16_t{10}, Out32()), "0 2"},
        {CALL(BDS_L2IF_VLAN_GetVlanIfIndex, uint16_t{10}), "2"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vlanif10", OutText(), 64U), "0 10"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 2U, Out32()), "0 10"},

        STEP("0 1 open", nullptr, QRB_GetFirstIfIndex, Out32()),
        StepOf("QRB_GetFirstIfIndex, already begun", "1 - open", QRB_GetFirstIfIndex, QRB_GetFirstIfIndex, Out32()),
        STEP("0 2 open", QRB_GetFirstIfIndex, QRB_GetNextIfIndex, Out32()),
        STEP("0 closed", QRB_GetFirstIfIndex, QRB_ScanIfIndexFinish),
        STEP("0 1 open", nullptr, IF_INTF_GetFirstIfIndex, Out32()),
        STEP("0 2 open", QRB_GetFirstIfIndex, IF_INTF_GetNextIfIndex, 9U, Out32()),
        STEP("0 closed", QRB_GetFirstIfIndex, IF_INTF_ScanFinish),
        STEP("0 256 open", nullptr, QRB_GetFirstPort, Out32()),
        StepOf("QRB_GetFirstPort, already begun", "1 - open", QRB_GetFirstPort, QRB_GetFirstPort, Out32()),
        STEP("0 512 open", QRB_GetFirstPort, QRB_GetNextPort, Out32()),
        STEP("0 closed", QRB_GetFirstPort, QRB_ScanPortFinish),
        STEP("0 256 open", nullptr, L2IF_GetFirstPort, Out32()),
        STEP("0 512 open", QRB_GetFirstPort, L2IF_GetNextPort, Out32()),
        STEP("0 closed", QRB_GetFirstPort, L2IF_ScanFinish),
        STEP("0 20 open", nullptr, QRB_GetFirstVlan, Out32()),
        StepOf("QRB_GetFirstVlan, already begun", "1 - open", QRB_GetFirstVlan, QRB_GetFirstVlan, Out32()),
        STEP("0 10 open", QRB_GetFirstVlan, QRB_GetNextVlan, Out32()),
        STEP("0 closed", QRB_GetFirstVlan, QRB_ScanVlanFinish),
        STEP("0 20 open", nullptr, L2IF_GetFirstVlan, Out16()),
        STEP("0 10 open", QRB_GetFirstVlan, L2IF_GetNextVlan, Out16()),
        STEP("0 closed", QRB_GetFirstVlan, L2IF_ScanVlanFinish),
    };
}
// clang-format on

namespace {

using Vlan = support::PlatformTest;
using Walks = DeviceTest;

TEST_F(Vlan, IsActiveInAnyScopeUntilAnUnknownStateEndsTheScan)
{
    Load(R"({"vlan": [
        {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 10, "state": 0},
        {"vlan_scope0": 1, "vlan_scope1": 0, "vlan_id": 10, "state": 1},
        {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 20, "state": 2},
        {"vlan_scope0": 1, "vlan_scope1": 0, "vlan_id": 20, "state": 1},
        {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 30, "state": 0}]})");
    for (const auto& [id, active] :
         {std::pair<uint16_t, bool>{10, true}, {20, false}, {30, false}, {40, false}}) {
        EXPECT_EQ(VLAN_IsVlanActive(id), active ? 0U : 1U) << id;
        EXPECT_EQ(BDS_L2IF_VLAN_IsActive(id), active ? 1U : 0U) << id;
    }
    EXPECT_TRUE(support::TakeLog().empty());
    support::FailCall("OrmScanNext", 4, 9);  // after the unknown state
    EXPECT_EQ(VLAN_IsVlanActive(20), 1U);
    EXPECT_EQ(support::TakeMessages(),
              std::vector<std::string>{"VLAN_IsVlanActive: DB error: 9\n"});
}

// The position is the second byte of the port index. Absent ports have position 0.
TEST_F(Vlan, PortIsAMemberByEitherSetOfTheVlanInItsOwnScope)
{
    Load(R"({
        "port": [
            {"if_index": 1, "port_index": 16779521},
            {"if_index": 2, "port_index": 65280},
            {"if_index": 3, "port_index": 2305, "vlan_scope0": 5, "vlan_scope1": 6}],
        "vlan": [
            {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 10, "member_bitmap_1": [9]},
            {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 20, "member_bitmap_2": [255]},
            {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 30, "member_bitmap_1": [0]},
            {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 31, "member_bitmap_1": ["1-255"]},
            {"vlan_scope0": 5, "vlan_scope1": 6, "vlan_id": 40, "member_bitmap_2": [9]}]})");
    const std::pair<uint32_t, uint16_t> members[] = {{1, 10}, {2, 20}, {3, 40},
                                                     {4, 30}, {1, 31}, {2, 31}};
    for (const uint32_t ifIndex : {1U, 2U, 3U, 4U}) {
        for (const uint16_t id : std::initializer_list<uint16_t>{10, 20, 30, 40, 50, 31}) {
            const bool member = std::ranges::count(members, std::pair(ifIndex, id)) != 0;
            EXPECT_EQ(VLAN_IsPortInVlan(ifIndex, id), member ? 0U : 1U) << ifIndex << " " << id;
            EXPECT_EQ(BDS_L2IF_VP_PortIsInVlan(ifIndex, id), member ? 1U : 0U);
        }
    }
    EXPECT_TRUE(support::TakeLog().empty());
}

TEST_F(Vlan, InterfaceIsFoundByNameOrByFixedNumbering)
{
    Load(R"({"if_base": [
        {"if_index": 1, "if_name": "Vlanif4094", "if_type": 8},
        {"if_index": 2, "if_name": "Vlanif10", "if_type": 7},
        {"if_index": 3, "if_name": "Vlanif0", "if_type": 8},
        {"if_index": 4, "if_name": "Vlanif12345", "if_type": 8}]})");
    Expect({
        {CALL(BDS_L2IF_VLAN_GetIfIndexByVlanId, uint16_t{0xFFFF}, Out32()), "0 75535"},
        {CALL(BDS_L2IF_VLAN_GetIfIndexByVlanId, uint16_t{0}, Out32()),
         R"(1 - | Null value provided\n)"},
        {CALL(BDS_L2_VlanGetIfIndex, uint16_t{40}, Out32()),
         R"(1 NONE | Get if index by ifname failed\n)"},
        {CALL(BDS_L2IF_VLAN_GetVlanIfIndex, uint16_t{40}), "NONE"},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "red", Out16()),
         R"(1 - | QRB_DB_Scan failed, ret = 0\n)"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vlanif1", OutText(), 0U),
         R"(1 - | Null value provided\n)"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vlanif10", OutText(), 3U), "0 10"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vlanif10", OutText(), 2U), "1 -"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "V1", OutText(), 9U), "1 -"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vl1", OutText(), 9U), "0 1"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vlanif", OutText(), 9U), "1 -"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 1U, Out32()), "0 4094"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 2U, Out32()), "1 - | IfType is not vlan interface"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 3U, Out32()), R"(1 0 | atoi failed, ret=0\n)"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 4U, Out32()), "1 - | Get vlanId by ifName fail, ret=1"},
    });
}

// A name of 32 bytes fills the field; only that many are compared.
// clang-format off
TEST_F(Vlan, NameAndDescriptionMayFillTheirFields)
{
    static const std::string name(32, 'n');
    static const std::string longer = name + "x";
    const std::string description(80, 'd');
    Load(R"({"vlan": [{"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 9, "name": ")" + name + R"(", "description": ")" + description + R"("}]})");
    Expect({
        {CALL(L2IF_SH_VLAN_GetVlanidByName, name.c_str(), Out16()), "0 9"},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, longer.c_str(), Out16()), "0 9"},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "nn", Out16()), R"(1 - | QRB_DB_Scan failed, ret = 0\n)"},
        {CALL(L2IF_VLAN_GetDescript, uint16_t{9}, OutText()), "0 " + description},
    });
}
// clang-format on

// 2002 is the stand-in's code for an unknown handle. A walk over an empty table ends at once.
TEST_F(Walks, InWrongStatesReturnOne)
{
    // A session that was closed during the walk.
    uint32_t value = 0;
    ASSERT_EQ(QRB_GetFirstVlan(&value), 0U);
    ASSERT_EQ(OrmScanEnd(g_ScanVlanSession, g_VlanScanHandle), 0U);
    ASSERT_EQ(OrmCloseSession(g_ScanVlanSession), 0U);
    Expect({
        {CALL(QRB_GetFirstVlan, Out32()), "1 -"},
        {CALL(QRB_GetNextVlan, Out32()), "1 - | OrmScanNext ret:2002, isEof:0"},
        {CALL(L2IF_ScanVlanFinish), "1 | QRB_ScanVlanFinish: OrmScanEnd fail ret:2002"},
    });
    EXPECT_EQ(QRB_GetFirstVlan(&value), 0U);
    EXPECT_EQ(QRB_ScanVlanFinish(), 0U);
    standin::Reset();
    for (int again = 0; again < 2; again++) {
        Expect({
            {CALL(QRB_GetFirstIfIndex, Out32()), "1 -"},
            {CALL(QRB_GetNextIfIndex, Out32()), "1 -"},
            {CALL(IF_INTF_GetNextIfIndex, 1U, Out32()), "1 0"},
            {CALL(QRB_ScanIfIndexFinish), "1 | OrmScanEnd fail ret:2002"},
            {CALL(QRB_GetFirstPort, Out32()), "1 -"},
            {CALL(L2IF_GetNextPort, Out32()), "1 0"},
            {CALL(QRB_ScanPortFinish), "1 | OrmScanEnd fail ret:2002"},
            {CALL(L2IF_GetFirstVlan, Out16()), "1 0"},
            {CALL(L2IF_GetNextVlan, Out16()), "1 0"},
            {CALL(QRB_ScanVlanFinish), "1 | OrmScanEnd fail ret:2002"},
        });
    }
}

}  // namespace

}  // namespace calls
