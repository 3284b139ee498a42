// VLANs: activity, members, description, name; and VLAN interfaces.
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include <array>

#include "calls/calls.h"

namespace {

using namespace calls;
using standin::Row;

class Vlan : public support::PlatformTest {
protected:
    static Row InScope(uint32_t scope, uint32_t id)
    {
        return Row("vlan").Set("vlan_scope0", scope).Set("vlan_id", id);
    }
};

TEST_F(Vlan, IsActiveInAnyScopeUntilAnOddStateEndsTheSearch)
{
    Insert({InScope(0, 10).Set("state", 0), InScope(1, 10).Set("state", 1),
            InScope(0, 20).Set("state", 2), InScope(1, 20).Set("state", 1),
            InScope(0, 30).Set("state", 0)});
    for (const auto& [id, active] : std::array<std::pair<uint16_t, bool>, 4>{
             {{10, true}, {20, false}, {30, false}, {40, false}}}) {
        EXPECT_EQ(VLAN_IsVlanActive(id), active ? 0U : 1U) << id;
        EXPECT_EQ(BDS_L2IF_VLAN_IsActive(id), active ? 1U : 0U) << id;
    }
    EXPECT_TRUE(support::TakeLog().empty());
    EXPECT_EQ(VLAN_IsVlanUsed(30), 0U);
    Insert({InScope(1, 50)});
    EXPECT_EQ(VLAN_IsVlanUsed(50), 1U);
}

TEST_F(Vlan, PortIsAMemberByEitherSetOfTheVlanInItsOwnScope)
{
    constexpr uint32_t position9   = 0x01000901;
    constexpr uint32_t position255 = 0x0000FF00;
    constexpr uint32_t absentPort  = 99;  // stands in position 0
    EXPECT_EQ(VLAN_PortIndex2PortIdx(0xAABB09CC), 9);
    EXPECT_EQ(VLAN_PortIndex2PortIdx(0xFFFF), 255);

    const auto port = [](uint32_t ifIndex, uint32_t scope, uint32_t portIndex) {
        return Row("port")
            .Set("if_index", ifIndex)
            .Set("vlan_scope0", scope)
            .Set("port_index", portIndex);
    };
    const auto set = [](size_t byte, uint8_t bits) {
        std::array<uint8_t, QRB_MEMBER_SET_SIZE> members = {};
        members[byte]                                    = bits;
        return members;
    };
    Insert({port(1, 0, position9), port(2, 0, position255), port(3, 5, position9)});
    Insert({InScope(0, 10).SetBytes("member_bitmap_1", set(1, 0x40)),
            InScope(0, 20).SetBytes("member_bitmap_2", set(31, 0x01)),
            InScope(0, 30).SetBytes("member_bitmap_1", set(0, 0x80)),
            InScope(5, 40).AddToSet("member_bitmap_2", 9, 9)});
    const struct {
        uint32_t ifIndex;
        uint16_t vlanId;
        bool     member;
    } cases[] = {
        {1, 10, true},  {1, 20, false}, {1, 30, false},         {2, 10, false}, {2, 20, true},
        {3, 10, false}, {3, 40, true},  {absentPort, 30, true}, {1, 50, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(VLAN_IsPortInVlan(c.ifIndex, c.vlanId), c.member ? 0U : 1U)
            << c.ifIndex << " " << c.vlanId;
        EXPECT_EQ(BDS_L2IF_VP_PortIsInVlan(c.ifIndex, c.vlanId), c.member ? 1U : 0U);
    }
    EXPECT_TRUE(support::TakeLog().empty());
}

TEST_F(Vlan, TextsFillTheirFields)
{
    static const std::string description(80, 'd');
    static const std::string name(32, 'n');
    static const std::string longer = name + "cut";
    Insert({InScope(0, 10).Set("description", description).Set("name", "red"),
            InScope(1, 20).Set("name", name), InScope(0, 30).Set("name", "red")});
    constexpr char absent[] = R"(1 - | QRB_DB_Scan failed, ret = 0\n)";
    Expect({
        {CALL(L2IF_VLAN_GetDescript, uint16_t{10}, OutText()), "0 " + description},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "red", Out16()), "0 10"},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, longer.c_str(), Out16()), "0 20"},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "re", Out16()), absent},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "redd", Out16()), absent},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "Red", Out16()), absent},
        {CALL(L2IF_SH_VLAN_GetVlanidByName, "nnn", Out16()), absent},
    });
}

TEST_F(Vlan, InterfaceIsFoundByNameAndNumberedByRule)
{
    for (const auto& [index, name, type] : {std::tuple{1U, "Vlanif4094", 8U},
                                            {2U, "Vlanif10", 7U},
                                            {3U, "Vlanif0", 8U},
                                            {4U, "Vlanif12345", 8U}}) {
        Insert({Row("if_base").Set("if_index", index).Set("if_name", name).Set("if_type", type)});
    }
    Expect({
        {CALL(BDS_L2IF_VLAN_GetIfIndexByVlanId, uint16_t{0xFFFF}, Out32()), "0 75535"},
        {CALL(BDS_L2IF_VLAN_GetIfIndexByVlanId, uint16_t{0}, Out32()),
         R"(1 - | Null value provided\n)"},
        {CALL(BDS_L2_VlanGetIfIndex, uint16_t{40}, Out32()),
         R"(1 NONE | Get if index by ifname failed\n)"},
        {CALL(BDS_L2IF_VLAN_GetVlanIfIndex, uint16_t{40}), "NONE"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 1U, Out32()), "0 4094"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 2U, Out32()), "1 - | IfType is not vlan interface"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 3U, Out32()), R"(1 0 | atoi failed, ret=0\n)"},
        {CALL(BDS_IfnetGetVlanIdByIfIndex, 4U, Out32()), "1 - | Get vlanId by ifName fail, ret=1"},
    });
}

}  // namespace
