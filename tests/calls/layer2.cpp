// VLANs, VLAN interfaces and the walks.
#include <tarnd_qrb/table_walk.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include <algorithm>

#include "calls/calls.h"

namespace calls {

namespace {

// A walk, and how its messages name it.
struct Walk {
    uint32_t (*first)(uint32_t*);
    uint32_t (*finish)();
    Values words;
};

// clang-format off
const Walk IF_INDEXES = {QRB_GetFirstIfIndex, QRB_ScanIfIndexFinish, {
    {"$kind", "IfIndex"}, {"$name", "index"}, {"$variable", "g_ScanIndexSession"},
    {"$row", "OrmgIfBaseGetAllFields"}, {"$1st", "1"}, {"$2nd", "2"}}};
const Walk PORTS = {QRB_GetFirstPort, QRB_ScanPortFinish, {
    {"$kind", "Port"}, {"$name", "port"}, {"$variable", "g_ScanPortSession"},
    {"$row", "OrmgportGetAllFields"}, {"$1st", "256"}, {"$2nd", "512"}}};
const Walk VLANS = {QRB_GetFirstVlan, QRB_ScanVlanFinish, {
    {"$kind", "Vlan"}, {"$name", "vlan"}, {"$variable", "g_ScanVlanSession"},
    {"$row", "OrmgVlanGetAllFields"}, {"$1st", "20"}, {"$2nd", "10"}}};

constexpr char FIRST[] = R"(0 $1st open
    reporter  QRB_GetFirst$kind
    open      1 $none closed | Database error: %, open $name $variable fail
    prepare   1 $none closed | Database error: %, OrmPrepare $name fail
    start     1 $none closed | Database error: %, OrmScanStart $name fail
    next!     1 $none closed | OrmScanNext ret:%, isEof:0 | QRB_Scan$kindFinish: OrmScanEnd fail ret:%
    next      1 $none closed | OrmScanNext ret:%, isEof:0
    row!      1 $none closed | $row fail ret:% | QRB_Scan$kindFinish: OrmScanEnd fail ret:%
    row       1 $none closed | $row fail ret:%)";
constexpr char AGAIN[] = "1 - open";
constexpr char NEXT[] = R"(0 $2nd open
    reporter  QRB_GetNext$kind
    next      1 $none open | OrmScanNext ret:%, isEof:0
    row       1 $none open | $row fail ret:%)";
constexpr char FINISH[] = R"(0 closed
    reporter  QRB_Scan$kindFinish
    end       1 closed | OrmScanEnd fail ret:%
    close     1 closed | OrmCloseSession fail ret:%)";
// clang-format on

// One step of a walk, under one of its names. A walk that is open has a session and a scan.
template <typename Function, typename... Arguments>
Call StepOf(const Walk& walk, const char* name, const char* expectations, const char* none,
            Function function, Arguments... arguments)
{
    const bool isFirst = expectations == FIRST;
    return {name,
            [=] {
                const std::string answer = Run(function, arguments...);
                return answer + (support::OpenHandles() == 2 ? " open" : " closed");
            },
            Fill(Fill(expectations, walk.words), {{"$none", none}}),
            [=] {
                uint32_t value = 0;
                EXPECT_EQ(isFirst ? 0 : walk.first(&value), 0U);
            },
            [=] {
                if (support::OpenHandles() != 0) {  // else all must be as before the walk
                    walk.finish();
                }
            }};
}

// clang-format off
}  // namespace

Calls Layer2Calls()
{
    return {
        {CALL(VLAN_IsVlanActive, uint16_t{10}), R"(0
            end       =
            close     =
            session   1)"},
        {CALL(BDS_L2IF_VLAN_IsActive, uint16_t{10}), R"(1
            within    VLAN_IsVlanActive 0)"},
        {CALL(VLAN_IsVlanUsed, uint16_t{10}), R"(0
            read      1 | Failed to fetch vlan msg for VlanId =10, ret =%)"},
        {CALL(BDS_L2IF_VLAN_IsUsed, uint16_t{10}), R"(1
            within    VLAN_IsVlanUsed 0)"},
        // An absent port stands in position 0, of which VLAN 10 is no member.
        {CALL(VLAN_IsPortInVlan, 1U, uint16_t{10}), R"(0
            read=1001000  1
            read#1    1 | Failed to fetch port status for ifIndex=1, ret=%
            read#2    1 | Failed to fetch vlan status for ifIndex=1, ret=%)"},
        {CALL(BDS_L2IF_VP_PortIsInVlan, 1U, uint16_t{10}), R"(1
            within    VLAN_IsPortInVlan 0)"},
        {CALL(BDS_L2IF_VP_PortIsInVlanWithTag, 1U, uint16_t{10}),
            R"(0 | STUB for BDS_L2IF_VP_PortIsInVlanWithTag\n)"},
        {CALL(VLAN_PortIndex2PortIdx, 0x100U), "1"},
        {CALL(L2IF_GetPVIDByIfIndex, 1U, Out16()), R"(0 10
            read=1    1 -
            read      % 0)"},
        {CALL(L2IF_VLAN_GetDescript, uint16_t{10}, OutText()), R"(0 red floor
            read=1    0 -
            read      0 ""
            copy      1 - | strcpy_s failed, error = %\n)"},
        // The name is formatted byte by byte, 32 of them, and then the condition.
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "red", Out16()), R"(0 10
            format#33 1 - | sprintf_s failed\n
            format    1 - | Trans string to hexadecimal num string failed\n
            memory    1 - | Trans string to hexadecimal num string failed\n
            copy      1 - | Trans string to hexadecimal num string failed\n
            behind    QRB_DB_Scan failed, ret = 1\n
            scan      1 -; 1 10)"},
        {CALL(L2IF_DB_ScanVlanId, session, Out16(), 0U), R"(0 20
            field     % -)", [] { Positioned("vlan"); }, Closed},

        {CALL(BDS_L2IF_VLAN_GetIfIndexByVlanId, uint16_t{10}, Out32()), "0 10010"},
        {CALL(BDS_L2_VlanGetIfIndex, uint16_t{10}, Out32()), R"(0 2
            close     =
            format    1 - | sprintf failed\n
            behind    Get if index by ifname failed\n
            within    QRB_CreatDbSession 1 NONE
            any       1 NONE)"},
        {CALL(BDS_L2IF_VLAN_GetVlanIfIndex, uint16_t{10}), R"(2
            format    1
            within    IF_INTF_GetIfIndexByFullName NONE)"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vlanif10", OutText(), 64U), R"(0 10
            copy      1 - | memcpy failed, ret=%\n)"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 2U, Out32()), R"(0 10
            read      1 - | BDS_IfnetGetIfNameByIfIndex: Failed to fetch if_base, ret=%\n | Get ifName by ifIndex fail, ret=1
            copy#1    1 - | BDS_IfnetGetIfNameByIfIndex: Failed to copy ifName from db struct to output\n | Get ifName by ifIndex fail, ret=1
            copy#2    1 - | BDS_IfnetGetVlanIdByIfName: memcpy failed, ret=%\n | Get vlanId by ifName fail, ret=1
            session   1 -)"},

        StepOf(IF_INDEXES, "QRB_GetFirstIfIndex", FIRST, "-", QRB_GetFirstIfIndex, Out32()),
        StepOf(IF_INDEXES, "QRB_GetFirstIfIndex", AGAIN, "-", QRB_GetFirstIfIndex, Out32()),
        StepOf(IF_INDEXES, "QRB_GetNextIfIndex", NEXT, "-", QRB_GetNextIfIndex, Out32()),
        StepOf(IF_INDEXES, "QRB_ScanIfIndexFinish", FINISH, "-", QRB_ScanIfIndexFinish),
        StepOf(IF_INDEXES, "IF_INTF_GetFirstIfIndex", FIRST, "0", IF_INTF_GetFirstIfIndex, Out32()),
        StepOf(IF_INDEXES, "IF_INTF_GetNextIfIndex", NEXT, "0", IF_INTF_GetNextIfIndex, 9U, Out32()),
        StepOf(IF_INDEXES, "IF_INTF_ScanFinish", FINISH, "0", IF_INTF_ScanFinish),
        StepOf(PORTS, "QRB_GetFirstPort", FIRST, "-", QRB_GetFirstPort, Out32()),
        StepOf(PORTS, "QRB_GetFirstPort", AGAIN, "-", QRB_GetFirstPort, Out32()),
        StepOf(PORTS, "QRB_GetNextPort", NEXT, "-", QRB_GetNextPort, Out32()),
        StepOf(PORTS, "QRB_ScanPortFinish", FINISH, "-", QRB_ScanPortFinish),
        StepOf(PORTS, "L2IF_GetFirstPort", FIRST, "0", L2IF_GetFirstPort, Out32()),
        StepOf(PORTS, "L2IF_GetNextPort", NEXT, "0", L2IF_GetNextPort, Out32()),
        StepOf(PORTS, "L2IF_ScanFinish", FINISH, "0", L2IF_ScanFinish),
        StepOf(VLANS, "QRB_GetFirstVlan", FIRST, "-", QRB_GetFirstVlan, Out32()),
        StepOf(VLANS, "QRB_GetFirstVlan", AGAIN, "-", QRB_GetFirstVlan, Out32()),
        StepOf(VLANS, "QRB_GetNextVlan", NEXT, "-", QRB_GetNextVlan, Out32()),
        StepOf(VLANS, "QRB_ScanVlanFinish", FINISH, "-", QRB_ScanVlanFinish),
        StepOf(VLANS, "L2IF_GetFirstVlan", FIRST, "0", L2IF_GetFirstVlan, Out16()),
        StepOf(VLANS, "L2IF_GetNextVlan", NEXT, "0", L2IF_GetNextVlan, Out16()),
        StepOf(VLANS, "L2IF_ScanVlanFinish", FINISH, "0", L2IF_ScanVlanFinish),
    };
}
// clang-format on

namespace {

using Vlan  = support::PlatformTest;
using Walks = DeviceTest;

TEST_F(Vlan, IsActiveInAnyScopeUntilAnOddStateEndsTheSearch)
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
    support::FailCall("OrmScanNext", 4, 9);  // behind the odd state
    EXPECT_EQ(VLAN_IsVlanActive(20), 1U);
    EXPECT_EQ(support::TakeMessages(), Lines{"VLAN_IsVlanActive: DB error: 9\n"});
}

// The position is the second byte of the port's index. Ports that are absent stand in position 0.
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

TEST_F(Vlan, InterfaceIsFoundByNameAndNumberedByRule)
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
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 1U, Out32()), "0 4094"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 2U, Out32()), "1 - | IfType is not vlan interface"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 3U, Out32()), R"(1 0 | atoi failed, ret=0\n)"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 4U, Out32()), "1 - | Get vlanId by ifName fail, ret=1"},
    });
}

// 2002 is the stand-in's: no such handle. A walk over an empty table is over before it begins.
TEST_F(Walks, InWrongStatesAnswerOne)
{
    // A session that has ended behind the walk's back.
    uint32_t value = 0;
    ASSERT_EQ(QRB_GetFirstVlan(&value), 0U);
    ASSERT_EQ(OrmScanEnd(g_ScanVlanSession, g_VlanScanHandle), 0U);
    ASSERT_EQ(OrmCloseSession(g_ScanVlanSession), 0U);
    Expect({
        {CALL(QRB_GetFirstVlan, Out32()), "1 -"},
        {CALL(QRB_GetNextVlan, Out32()), "1 - | OrmScanNext ret:2002, isEof:0"},
        {CALL(L2IF_ScanVlanFinish), "1 | QRB_ScanVlanFinish: OrmScanEnd fail ret:2002"},
        {CALL(QRB_GetFirstVlan, Out32()), "0 20", {}, [] { QRB_ScanVlanFinish(); }},
    });
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
