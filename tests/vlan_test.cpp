// VLANs: activity and members; the numbers of VLAN interfaces.
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include <algorithm>

#include "calls/calls.h"

namespace {

using namespace calls;

using Vlan = support::PlatformTest;

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
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vl1", OutText(), 2U), "0 1"},
        {CALL(BDS_IfnetGetVlanIdByIfName, "V1", OutText(), 2U), "1 -"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 1U, Out32()), "0 4094"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 2U, Out32()), "1 - | IfType is not vlan interface"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 3U, Out32()), R"(1 0 | atoi failed, ret=0\n)"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 4U, Out32()), "1 - | Get vlanId by ifName fail, ret=1"},
    });
}

}  // namespace
