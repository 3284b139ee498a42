// VLANs: activity, use, membership, default VLAN, description, name.
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/vlan.h>

#include <array>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::PlatformCalls;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;
using Calls    = std::vector<std::string>;

class Vlan : public support::PlatformTest {
protected:
    static standin::Row Row(uint32_t scope, uint16_t id)
    {
        return standin::Row("vlan").Set("vlan_scope0", scope).Set("vlan_id", id);
    }

    static void Insert(const standin::Row& row)
    {
        standin::Transaction write;
        write.Insert(row);
        write.Commit();
    }
};

TEST_F(Vlan, IsActiveInAnyScopeUntilAnOddStateEndsTheSearch)
{
    Insert(Row(0, 10).Set("state", 0));
    Insert(Row(1, 10).Set("state", 1));
    Insert(Row(0, 20).Set("state", 2));
    Insert(Row(1, 20).Set("state", 1));
    Insert(Row(0, 30).Set("state", 0));
    for (const auto& [id, active] : std::array<std::pair<uint16_t, bool>, 4>{
             {{10, true}, {20, false}, {30, false}, {40, false}}}) {
        EXPECT_EQ(VLAN_IsVlanActive(id), active ? 0U : 1U) << id;
        EXPECT_EQ(BDS_L2IF_VLAN_IsActive(id), active ? 1U : 0U) << id;
    }
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(Vlan, ActivityEndsTheScanBeforeTheSessionAndIgnoresBothResults)
{
    Insert(Row(0, 10).Set("state", 1));
    support::ResetPlatform();
    EXPECT_EQ(VLAN_IsVlanActive(10), 0U);
    EXPECT_EQ(PlatformCalls(),
              (Calls{"OrmOpenSessionByDefault", "OrmPrepare", "OrmScanStart", "OrmScanNext",
                     "OrmGetFieldById", "OrmGetFieldById", "OrmScanEnd", "OrmCloseSession"}));
    FailCall("OrmScanEnd", 1, 7);
    EXPECT_EQ(VLAN_IsVlanActive(10), 0U);
    FailCall("OrmCloseSession", 1, 7);
    EXPECT_EQ(VLAN_IsVlanActive(10), 0U);
    EXPECT_TRUE(TakeLog().empty());
    FailCall("OrmGetFieldById", 2, 7);
    EXPECT_EQ(VLAN_IsVlanActive(10), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"VLAN_IsVlanActive: DB error: 7\n"});
}

TEST_F(Vlan, IsUsedWhenItsUnscopedRecordCanBeRead)
{
    Insert(Row(0, 10));
    Insert(Row(1, 20));
    EXPECT_EQ(VLAN_IsVlanUsed(10), 0U);
    EXPECT_EQ(BDS_L2IF_VLAN_IsUsed(10), 1U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(VLAN_IsVlanUsed(20), 1U);
    EXPECT_EQ(BDS_L2IF_VLAN_IsUsed(20), 0U);
    EXPECT_EQ(
        TakeMessages(),
        Messages(2, "VLAN_IsVlanUsed: Failed to fetch vlan msg for VlanId =20, ret =1001000"));
}

TEST_F(Vlan, PortPositionIsTheSecondByteOfThePortIndex)
{
    EXPECT_EQ(VLAN_PortIndex2PortIdx(0xAABB09CC), 9);
    EXPECT_EQ(VLAN_PortIndex2PortIdx(0xFFFF), 255);
}

TEST_F(Vlan, PortIsAMemberByEitherSetOfTheVlanInItsOwnScope)
{
    constexpr uint32_t position9   = 0x01000901;
    constexpr uint32_t position255 = 0x0000FF00;

    const auto port = [](uint32_t ifIndex, uint32_t scope, uint32_t portIndex) {
        return standin::Row("port")
            .Set("if_index", ifIndex)
            .Set("vlan_scope0", scope)
            .Set("port_index", portIndex);
    };
    Insert(port(1, 0, position9));
    Insert(port(2, 0, position255));
    Insert(port(3, 5, position9));
    std::array<uint8_t, QRB_MEMBER_SET_SIZE> set = {};
    set[1]                                       = 0x40;  // position 9
    Insert(Row(0, 10).SetBytes("member_bitmap_1", set));
    set     = {};
    set[31] = 0x01;  // position 255
    Insert(Row(0, 20).SetBytes("member_bitmap_2", set));
    set    = {};
    set[0] = 0x80;  // position 0
    Insert(Row(0, 30).SetBytes("member_bitmap_1", set));
    Insert(Row(5, 40).AddToSet("member_bitmap_2", 9, 9));

    constexpr uint32_t absentPort = 99;
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
    EXPECT_TRUE(TakeLog().empty());

    FailCall("OrmgPortReadInner", 1, 12);
    EXPECT_EQ(VLAN_IsPortInVlan(1, 10), 1U);
    FailCall("OrmgVlanReadInner", 1, 13);
    EXPECT_EQ(BDS_L2IF_VP_PortIsInVlan(1, 10), 0U);
    EXPECT_EQ(TakeMessages(),
              (Messages{"VLAN_IsPortInVlan: Failed to fetch port status for ifIndex=1, ret=12",
                        "VLAN_IsPortInVlan: Failed to fetch vlan status for ifIndex=1, ret=13"}));

    EXPECT_EQ(BDS_L2IF_VP_PortIsInVlanWithTag(1, 10), 0U);
    EXPECT_EQ(
        TakeMessages(),
        Messages{"BDS_L2IF_VP_PortIsInVlanWithTag: STUB for BDS_L2IF_VP_PortIsInVlanWithTag\n"});
}

// What the readers answer is passed on or swallowed, but only 1 keeps the output as it was.
TEST_F(Vlan, DefaultVlanAndDescriptionStayOnlyWhenTheReaderAnswersOne)
{
    const std::string longest(80, 'd');
    Insert(standin::Row("port").Set("if_index", 1).Set("pvid", 4094));
    Insert(Row(0, 10).Set("description", longest));

    uint16_t pvid            = 0;
    char     description[81] = "";
    EXPECT_EQ(L2IF_GetPVIDByIfIndex(1, &pvid), 0U);
    EXPECT_EQ(pvid, 4094);
    EXPECT_EQ(L2IF_VLAN_GetDescript(10, description), 0U);
    EXPECT_EQ(description, longest);

    FailCall("OrmgPortReadInner", 1, 1);
    EXPECT_EQ(L2IF_GetPVIDByIfIndex(1, &pvid), 1U);
    EXPECT_EQ(pvid, 4094);
    FailCall("OrmgVlanReadInner", 1, 1);
    EXPECT_EQ(L2IF_VLAN_GetDescript(10, description), 0U);
    EXPECT_EQ(description, longest);

    for (const uint32_t code : {ORM_NO_RECORD, 2U}) {
        pvid           = 77;
        description[0] = 'x';
        FailCall("OrmgPortReadInner", 1, code);
        EXPECT_EQ(L2IF_GetPVIDByIfIndex(1, &pvid), code);
        EXPECT_EQ(pvid, 0);
        FailCall("OrmgVlanReadInner", 1, code);
        EXPECT_EQ(L2IF_VLAN_GetDescript(10, description), 0U);
        EXPECT_STREQ(description, "");
    }
    EXPECT_TRUE(TakeLog().empty());

    FailCall("strcpy_s", 1, 34);
    EXPECT_EQ(L2IF_VLAN_GetDescript(10, description), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"L2IF_VLAN_GetDescript: strcpy_s failed, error = 34\n"});
}

TEST_F(Vlan, IdByNameComparesThirtyTwoBytes)
{
    const std::string full(32, 'n');
    Insert(Row(0, 10).Set("name", "red"));
    Insert(Row(1, 20).Set("name", full));
    Insert(Row(0, 30).Set("name", "red"));

    uint16_t id = 0;
    EXPECT_EQ(L2IF_SH_VLAN_GetVlanidByName("red", &id), 0U);
    EXPECT_EQ(id, 10);
    EXPECT_EQ(L2IF_SH_VLAN_GetVlanidByName((full + "cut").c_str(), &id), 0U);
    EXPECT_EQ(id, 20);
    EXPECT_TRUE(TakeLog().empty());
    for (const char* other : {"re", "redd", "Red", "nnn"}) {
        EXPECT_EQ(L2IF_SH_VLAN_GetVlanidByName(other, &id), 1U);
        EXPECT_EQ(TakeMessages(),
                  Messages{"L2IF_SH_VLAN_GetVlanidByName: QRB_DB_Scan failed, ret = 0\n"});
    }
    EXPECT_EQ(id, 20);

    FailCall("OrmScanStart", 1, 9);
    EXPECT_EQ(L2IF_SH_VLAN_GetVlanidByName("red", &id), 1U);
    EXPECT_EQ(TakeMessages().back(), "L2IF_SH_VLAN_GetVlanidByName: QRB_DB_Scan failed, ret = 1\n");
    FailCall("strcat_s", 1, 34);
    EXPECT_EQ(L2IF_SH_VLAN_GetVlanidByName("red", &id), 1U);
    constexpr unsigned afterTheDigits = 33;
    FailCall("sprintf_s", afterTheDigits, 34);
    EXPECT_EQ(L2IF_SH_VLAN_GetVlanidByName("red", &id), 1U);
    EXPECT_EQ(TakeMessages(), (Messages{"L2IF_SH_VLAN_GetVlanidByName: Trans string to hexadecimal "
                                        "num string failed\n",
                                        "L2IF_SH_VLAN_GetVlanidByName: sprintf_s failed\n"}));
}

}  // namespace
