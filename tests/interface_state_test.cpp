// States and hardware attributes of interfaces, slot texts, index classes and fixed answers.
#include <climits>
#include <cstring>

#include <tarnd_qrb/interface_state.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t NONE      = 0xFFFFFFFF;
constexpr uint32_t UNTOUCHED = 77;

class InterfaceState : public support::PlatformTest {
protected:
    static void Insert(const standin::Row& row)
    {
        standin::Transaction fill;
        fill.Insert(row);
        fill.Commit();
    }

    static standin::Row Row(const char* table, uint32_t ifIndex, const char* field, uint32_t value)
    {
        return standin::Row(table).Set("if_index", ifIndex).Set(field, value);
    }
};

TEST_F(InterfaceState, LineAndLink)
{
    const struct {
        uint32_t link;
        uint32_t route;
        uint32_t linkAnswer;
        uint32_t lineAnswer;
    } cases[] = {
        {1, 1, QRB_IF_STATE_UP, QRB_IF_STATE_UP},
        {1, 0, QRB_IF_STATE_UP, QRB_IF_STATE_DOWN},
        {0, 1, QRB_IF_STATE_DOWN, QRB_IF_STATE_DOWN},
        {0, 0, QRB_IF_STATE_DOWN, QRB_IF_STATE_DOWN},
        // Where the two differ: the line asks for "not 0", the link for 1.
        {2, 3, QRB_IF_STATE_DOWN, QRB_IF_STATE_UP},
    };
    uint32_t ifIndex = 0;
    for (const auto& c : cases) {
        ifIndex++;
        Insert(Row("if_link", ifIndex, "link_state", c.link));
        Insert(Row("if_route", ifIndex, "route_state", c.route));
        for (const auto link : {IF_INTF_GetIfLinkState, BDS_IfnetGetLinkState}) {
            uint32_t state = UNTOUCHED;
            EXPECT_EQ(link(ifIndex, &state), 0U);
            EXPECT_EQ(state, c.linkAnswer) << c.link;
        }
        for (const auto line : {IF_INTF_GetIfLineState, BDS_IfnetGetLineState}) {
            uint32_t state = UNTOUCHED;
            EXPECT_EQ(line(ifIndex, &state), 0U);
            EXPECT_EQ(state, c.lineAnswer) << c.link << c.route;
        }
    }
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(InterfaceState, LineNeedsBothRecords)
{
    Insert(Row("if_link", 1, "link_state", 1));
    Insert(Row("if_route", 2, "route_state", 1));
    uint32_t state = UNTOUCHED;
    EXPECT_EQ(IF_INTF_GetIfLineState(1, &state), 1U);
    EXPECT_EQ(IF_INTF_GetIfLineState(2, &state), 1U);
    EXPECT_EQ(IF_INTF_GetIfLinkState(2, &state), 1U);
    EXPECT_EQ(TakeMessages(),
              (Messages{"IF_INTF_GetIfLineState: Failed to fetch DB, ret=1001000\n",
                        "IF_INTF_GetIfLineState: Failed to fetch DB, ret=1001000\n",
                        "IF_INTF_GetIfLinkState: Failed to fetch DB, ret=1001000\n"}));
    EXPECT_EQ(state, UNTOUCHED);
}

TEST_F(InterfaceState, PhysicalStateIsHandedOutAsStored)
{
    for (const auto stored : {uint8_t{0}, uint8_t{1}, uint8_t{255}}) {
        Insert(Row("if_phy", stored, "phy_state", stored));
        uint8_t state = UNTOUCHED;
        EXPECT_EQ(BDS_IfnetGetIfPhyState(stored, &state), 0U);
        EXPECT_EQ(state, stored);
    }
    uint8_t state = UNTOUCHED;
    EXPECT_EQ(BDS_IfnetGetIfPhyState(9, &state), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_IfnetGetIfPhyState: DB error: 1001000\n"});
    EXPECT_EQ(state, UNTOUCHED);
    FailCall("OrmCloseSession", 1, 51);
    EXPECT_EQ(BDS_IfnetGetIfPhyState(1, &state), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_IfnetGetIfPhyState: Failed to fetch DB, ret=51\n"});
    EXPECT_EQ(state, 1);
}

TEST_F(InterfaceState, HardwareAttributes)
{
    const uint8_t stored[] = {0x02, 0x00, 0x5e, 0x10, 0x20, 0xff};
    Insert(standin::Row("if_phy")
               .Set("if_index", 1)
               .Set("slot_id", 0x01020304)
               .Set("port_id", 0xF1F2F3F4)
               .SetBytes("mac_addr", stored));
    EXPECT_EQ(IF_INTF_GetSlotByIndex(1), 0x01020304U);
    EXPECT_EQ(IF_INTF_GetPortByIndex(1), 0xF1F2F3F4U);
    uint32_t card = UNTOUCHED;
    EXPECT_EQ(BDS_IfnetGetCardByIfIndex(1, &card), 0U);
    EXPECT_EQ(card, 0xF1F2F3F4U);
    for (const auto getMac : {BDS_IfnetGetIfMacByIfIndex, IF_GetMacAddrByIfIndex}) {
        uint8_t mac[7] = {0, 0, 0, 0, 0, 0, UNTOUCHED};
        EXPECT_EQ(getMac(1, mac), 0U);
        EXPECT_EQ(memcmp(mac, stored, sizeof(stored)), 0);
        EXPECT_EQ(mac[6], UNTOUCHED);
    }
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(InterfaceState, HardwareOfAnUnknownInterface)
{
    uint32_t card   = UNTOUCHED;
    uint8_t  mac[6] = {UNTOUCHED};
    EXPECT_EQ(IF_INTF_GetSlotByIndex(9), NONE);
    EXPECT_EQ(IF_INTF_GetPortByIndex(9), NONE);
    EXPECT_EQ(BDS_IfnetGetCardByIfIndex(9, &card), 1U);
    EXPECT_EQ(TakeMessages(),
              (Messages{
                  "IF_INTF_GetSlotByIndex: Database error: [1001000], info: read if phy failed\n",
                  "IF_INTF_GetPortByIndex: Database error: [1001000], info: read if phy failed\n",
                  "BDS_IfnetGetCardByIfIndex: Failed to fetch if_phy, ret=1001000\n",
              }));
    EXPECT_EQ(BDS_IfnetGetIfMacByIfIndex(9, mac), 1U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(card, UNTOUCHED);
    EXPECT_EQ(mac[0], UNTOUCHED);
}

TEST_F(InterfaceState, SwitchPort)
{
    Insert(Row("port", 1, "switch_port", 1));
    Insert(Row("port", 2, "switch_port", 0));
    Insert(Row("port", 3, "switch_port", 200));
    EXPECT_EQ(BDS_IfnetIsSwitchPort(1), 1U);
    EXPECT_EQ(BDS_IfnetIsSwitchPort(2), 0U);
    EXPECT_EQ(BDS_IfnetIsSwitchPort(3), 1U);
    EXPECT_EQ(BDS_IfnetIsSwitchPort(9), 0U);
    EXPECT_TRUE(TakeLog().empty());
    FailCall("OrmgPortReadInner", 1, 52);
    EXPECT_EQ(BDS_IfnetIsSwitchPort(1), 0U);
    EXPECT_EQ(TakeMessages(),
              Messages{"BDS_IfnetIsSwitchPort: Failed to fetch port status for ifIndex=1, ret=52"});
}

TEST_F(InterfaceState, SlotTexts)
{
    for (const int32_t slot : {0, 3, -1, INT_MIN, INT_MAX}) {
        char text[QRB_SLOT_TEXT_SIZE] = "untouched";
        EXPECT_EQ(IF_GetSlotStrBySlotId(slot, text), 0U);
        EXPECT_EQ(text, std::to_string(slot));
        EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr(text), static_cast<uint32_t>(slot));
    }
    const std::string blanks(62, ' ');
    EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr("3/0/1"), 3U);
    EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr(" +7x"), 7U);
    EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr("slot"), 0U);
    EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr(""), 0U);
    EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr((blanks + "8").c_str()), 8U);
    EXPECT_TRUE(TakeLog().empty());

    char text[QRB_SLOT_TEXT_SIZE] = "untouched";
    EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr((blanks + "80").c_str()), 1U);
    EXPECT_EQ(BDS_IfnetGetSlotIdBySlotStr(nullptr), 1U);
    FailCall("sprintf_s", 1, 0);
    EXPECT_EQ(IF_GetSlotStrBySlotId(8, text), 1U);
    EXPECT_STREQ(text, "untouched");
    FailCall("strcpy_s", 1, 34);
    EXPECT_EQ(IF_GetSlotStrBySlotId(8, text), 1U);
    EXPECT_EQ(TakeMessages(), (Messages{"BDS_IfnetGetSlotIdBySlotStr: strcpy_s failed\n",
                                        "BDS_IfnetGetSlotIdBySlotStr: Null value provided\n",
                                        "IF_GetSlotStrBySlotId: sprintf_s failed\n",
                                        "IF_GetSlotStrBySlotId: strcpy_s failed\n"}));
}

TEST_F(InterfaceState, ClassesOfIndexes)
{
    const struct {
        uint32_t ifIndex;
        uint32_t apTunnel;
        uint32_t vap;
    } cases[] = {
        {0, 0, 0},          {0x5FFFFFFF, 0, 0}, {0x60000000, 1, 0}, {0x60FFFFFF, 1, 0},
        {0x61000000, 0, 1}, {0x61FFFFFF, 0, 1}, {0x62000000, 0, 0}, {NONE, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IF_INIF_IsAPtunnleByIfIndex(c.ifIndex), c.apTunnel) << c.ifIndex;
        EXPECT_EQ(IF_INIF_IsVapByIfIndex(c.ifIndex), c.vap) << c.ifIndex;
    }
}

TEST_F(InterfaceState, NullIsRefusedButByFixedAnswers)
{
    EXPECT_EQ(BDS_IfnetGetLineState(1, nullptr), 1U);
    EXPECT_EQ(BDS_IfnetGetLinkState(1, nullptr), 1U);
    EXPECT_EQ(BDS_IfnetGetCardByIfIndex(1, nullptr), 1U);
    EXPECT_EQ(IF_GetMacAddrByIfIndex(1, nullptr), 1U);
    EXPECT_EQ(TakeMessages(), (Messages{"IF_INTF_GetIfLineState: Null value provided\n",
                                        "IF_INTF_GetIfLinkState: Null value provided\n",
                                        "BDS_IfnetGetCardByIfIndex: Null value provided\n",
                                        "BDS_IfnetGetIfMacByIfIndex: Null value provided\n"}));
    EXPECT_EQ(IF_INTF_GetSlotByIfName(nullptr), 0U);
    EXPECT_EQ(BDS_TrunkIsPortInTrunk(1), 0U);
    EXPECT_EQ(BDS_TrunkGetTrunkIndex(1, nullptr), 1U);
    EXPECT_EQ(BDS_IfnetIsL3IF(1), 0U);
    EXPECT_EQ(BDS_QINQ_INTF_GetEthType(1, nullptr), 1U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(IF_INTF_IsTempIf(1), 0U);
    EXPECT_EQ(IF_INTF_IsTempIf(1), 0U);
    EXPECT_EQ(TakeMessages(), Messages(2, "IF_INTF_IsTempIf: STUB for IF_INTF_IsTempIf\n"));
    EXPECT_TRUE(support::PlatformCalls().empty());
}

}  // namespace
