// VLAN interfaces: from VLAN id to interface index, and back through the name.
#include <tarnd_qrb/vlan_interface.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t NONE = 0xFFFFFFFF;

class VlanInterface : public support::PlatformTest {
protected:
    static void Insert(uint32_t ifIndex, const std::string& name, uint16_t type)
    {
        standin::Transaction write;
        write.Insert(standin::Row("if_base")
                         .Set("if_index", ifIndex)
                         .Set("if_name", name)
                         .Set("if_type", type));
        write.Commit();
    }
};

TEST_F(VlanInterface, FixedNumberingNeedsNoDatabase)
{
    uint32_t index = 0;
    support::ResetPlatform();
    EXPECT_EQ(BDS_L2IF_VLAN_GetIfIndexByVlanId(100, &index), 0U);
    EXPECT_EQ(index, 10100U);
    EXPECT_EQ(BDS_L2IF_VLAN_GetIfIndexByVlanId(0xFFFF, &index), 0U);
    EXPECT_EQ(index, 75535U);
    EXPECT_TRUE(support::PlatformCalls().empty());
    EXPECT_EQ(BDS_L2IF_VLAN_GetIfIndexByVlanId(0, &index), 1U);
    EXPECT_EQ(BDS_L2IF_VLAN_GetIfIndexByVlanId(100, nullptr), 1U);
    EXPECT_EQ(TakeMessages(),
              Messages(2, "BDS_L2IF_VLAN_GetIfIndexByVlanId: Null value provided\n"));
    EXPECT_EQ(index, 75535U);
}

TEST_F(VlanInterface, IndexIsThatOfTheInterfaceWithTheName)
{
    Insert(7, "Vlanif100", 8);
    uint32_t index = 0;
    EXPECT_EQ(BDS_L2_VlanGetIfIndex(100, &index), 0U);
    EXPECT_EQ(index, 7U);
    EXPECT_EQ(BDS_L2IF_VLAN_GetVlanIfIndex(100), 7U);
    EXPECT_EQ(BDS_L2IF_VLAN_GetVlanIfIndex(10), NONE);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(BDS_L2_VlanGetIfIndex(10, &index), 1U);
    EXPECT_EQ(index, NONE);

    index = 77;
    FailCall("sprintf_s", 1, 34);
    EXPECT_EQ(BDS_L2_VlanGetIfIndex(100, &index), 1U);
    EXPECT_EQ(index, 77U);
    FailCall("sprintf_s", 1, 34);
    EXPECT_EQ(BDS_L2IF_VLAN_GetVlanIfIndex(100), 1U);
    EXPECT_EQ(TakeMessages(), (Messages{"BDS_L2_VlanGetIfIndex: Get if index by ifname failed\n",
                                        "BDS_L2_VlanGetIfIndex: sprintf failed\n"}));
}

TEST_F(VlanInterface, DigitsAtTheEndOfAName)
{
    const struct {
        const char* name;
        uint32_t    size;
        const char* digits;  // null: refused
    } cases[] = {
        {"Vlanif4094", 5, "4094"}, {"Vlanif4094", 4, nullptr}, {"Vlanif", 64, nullptr},
        {"12", 64, nullptr},       {"V12", 64, nullptr},       {"Vl12", 64, "12"},
        {"Eth0/1:2.10", 3, "10"},  {"", 64, nullptr},          {"Vlanif12x", 64, nullptr},
    };
    for (const auto& c : cases) {
        char output[64] = "untouched";
        EXPECT_EQ(BDS_IfnetGetVlanIdByIfName(c.name, output, c.size), c.digits ? 0U : 1U)
            << c.name << " " << c.size;
        EXPECT_STREQ(output, c.digits ? c.digits : "untouched");
    }
    EXPECT_TRUE(TakeLog().empty());
    char output[8] = "#######";
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfName(nullptr, output, 8), 1U);
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfName("Vlanif1", nullptr, 8), 1U);
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfName("Vlanif1", output, 0), 1U);
    EXPECT_EQ(TakeMessages(), Messages(3, "BDS_IfnetGetVlanIdByIfName: Null value provided\n"));
    EXPECT_STREQ(output, "#######");
}

TEST_F(VlanInterface, VlanIdOfAnIndexIsWhatEndsItsName)
{
    Insert(1, "Vlanif4094", 8);
    Insert(2, "Vlanif10", 7);
    Insert(3, "Vlanif0", 8);
    Insert(4, "Vlanif12345", 8);
    const std::string self   = "BDS_IfnetGetVlanIdByIfIndex: ";
    uint32_t          vlanId = 77;
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfIndex(2, &vlanId), 1U);
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfIndex(4, &vlanId), 1U);
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfIndex(9, &vlanId), 1U);
    EXPECT_EQ(vlanId, 77U);
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfIndex(3, &vlanId), 1U);
    EXPECT_EQ(vlanId, 0U);
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfIndex(1, nullptr), 1U);
    EXPECT_EQ(TakeMessages(),
              (Messages{self + "IfType is not vlan interface",
                        self + "Get vlanId by ifName fail, ret=1", self + "DB error: 1001000\n",
                        self + "atoi failed, ret=0\n", self + "Null value provided\n"}));

    FailCall("OrmgIfBaseReadInner", 1, 12);
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfIndex(1, &vlanId), 1U);
    EXPECT_EQ(TakeMessages(),
              (Messages{"BDS_IfnetGetIfNameByIfIndex: Failed to fetch if_base, ret=12\n",
                        self + "Get ifName by ifIndex fail, ret=1"}));
    EXPECT_EQ(BDS_IfnetGetVlanIdByIfIndex(1, &vlanId), 0U);
    EXPECT_EQ(vlanId, 4094U);
    EXPECT_TRUE(TakeLog().empty());
}

}  // namespace
