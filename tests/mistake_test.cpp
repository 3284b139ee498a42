// Callers' mistakes: null for every pointer that is checked for it, and walks in wrong states.
#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/route.h>
#include <tarnd_qrb/table_walk.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include <algorithm>
#include <regex>
#include <utility>

#include "calls/records.h"

namespace {

using namespace calls;

class Mistakes : public DeviceTest {};

constexpr uint16_t   VLAN = 10;
constexpr FIB_KEY_S  KEY  = {};
constexpr QRB_PORT_S PORT = {};

const std::string IS_NULL = R"( | Null value provided\n)";

// clang-format off
// Null in place of any of their pointers, one after the other.
TEST_F(Mistakes, NullIsRefused)
{
    const Calls calls = QueryCalls();
    for (const char* name : {
             "BDS_IfnetGetIfNameByIfIndex", "BDS_Ifname2IfGetIndexByname", "IF_INTF_GetSimpleName",
             "BDS_IfnetGetPortType", "IF_INTF_GetIfLineState", "IF_INTF_GetIfLinkState",
             "BDS_IfnetGetCardByIfIndex", "BDS_IfnetGetIfMacByIfIndex", "BDS_IfnetGetSlotIdBySlotStr",
             "IP_GetMainIpAddr", "SYSAPI_GetIp4AllAddrByIf", "BDS_IPIFGetThisIfIpAddr",
             "BDS_IPGetFirstIpByIfIndex", "BDS_IPGetIFBestMatchIpAddr", "IP_GetMask",
             "IP_GetIfindexbyIpAddr", "BDS_L2IF_VLAN_GetIfIndexByVlanId",
             "BDS_IfnetGetVlanIdByIfName", "BDS_IfnetGetVlanIdByIfIndex"}) {
        const auto call = std::ranges::find(calls, name, &Call::name);
        ASSERT_NE(call, calls.end()) << name;
        for (unsigned nth = 1;; nth++) {
            nullPointer           = nth;
            const Outcome outcome = Perform(*call);
            if (std::exchange(nullPointer, 0) != 0) {
                break;  // there are no more
            }
            EXPECT_TRUE(std::regex_match(outcome[0], std::regex("1( -)*"))) << outcome[0];
            EXPECT_EQ(outcome, (Lines{outcome[0], std::string(name) + ": Null value provided\n"}));
        }
    }
    Expect({
        {CALL(QRB_CreatDbSession, nullptr, QRB_ORM_OP_SCAN, OutSession()), "0 closed"},
        {CALL(QRB_CreatDbSession, "vlan", QRB_ORM_OP_SCAN, nullptr), "0"},
        {CALL(IF_INTF_GetIfIndexByFullName, nullptr), "NONE" + IS_NULL},
        {CALL(BDS_IfnetGetNumStrFromName, nullptr, OutText(), 4U), "0 -" + IS_NULL},
        {CALL(BDS_IfnetGetNumStrFromName, "Trunk1", nullptr, 4U), "0" + IS_NULL},
        {CALL(BDS_IfnetGetNumStrFromName, "Trunk1", OutText(), 0U), "0 -" + IS_NULL},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 1U, OutAddresses(), 0U), "1 - - - -" + IS_NULL},
        {CALL(BDS_IfnetGetVlanIdByIfName, "Vlanif1", OutText(), 0U), "1 -" + IS_NULL},
        {CALL(ACLIPv6_IsACLNodeExistByNumber, VLAN, VLAN, 1U, nullptr), "0"},
        {CALL(FIB_InquiryRoute, nullptr, OutNextHops()), "1 - - - - | [FIB Inquiry Route] parameter failed"},
        {CALL(FIB_InquiryRoute, &KEY, nullptr), "1 | [FIB Inquiry Route] parameter failed"},
        {CALL(FIB_InquiryRoutes, nullptr, OutNextHops(), Out32{1}), "1 - - - - 1 | [FIB Inquiry Routes] parameter failed, pstFibKey:1, pstFibNhp:0, count:0"},
        {CALL(FIB_InquiryRoutes, &KEY, nullptr, Out32{1}), "1 1 | [FIB Inquiry Routes] parameter failed, pstFibKey:0, pstFibNhp:1, count:0"},
        {CALL(FIB_InquiryRoutes, &KEY, OutNextHops(), nullptr), "1 - - - - | [FIB Inquiry Routes] parameter failed, pstFibKey:0, pstFibNhp:0, count:1"},
        {CALL(FIB_InquiryRoutes, &KEY, OutNextHops(), Out32{0}), "1 - - - - 0 | [FIB Inquiry Routes] parameter failed, pstFibKey:0, pstFibNhp:0, count:0"},
        {CALL(IF_RegNotifyFunc, 1U, nullptr), "1"},
        {CALL(QRB_EVENT_PortCheckIsVlanBitMapChange, &PORT, nullptr, 512, uint8_t{0}), R"(1 | Input parameter is NULL.\n)"},
        {CALL(QRB_EVENT_PortCheckIsVlanBitMapChange, nullptr, &PORT, 512, uint8_t{0}), R"(1 | Input parameter is NULL.\n)"},
        {CALL(MEM_EX_GetDetailedInfoSize, nullptr), "1"},
        // What has a fixed answer, or works without, doesn't mind.
        {CALL(QRB_DB_Scan, "acl_adv", nullptr, 1U, nullptr, nullptr, "rule_id = 9", nullptr), "0"},
        {CALL(IF_INTF_GetSlotByIfName, nullptr), "0"},
        {CALL(BDS_TrunkGetTrunkIndex, 1U, nullptr), "1"},
        {CALL(BDS_QINQ_INTF_GetEthType, 1U, nullptr), "1"},
        {CALL(BDS_IPv6GetValidGlobalAddrByIfIndex, 1U, nullptr), "1"},
        {CALL(IP6_Addr_GetValidGlobalAddrOnIf, 1U, nullptr), "0"},
    });
}

// 2002 is the stand-in's: no such handle. A walk over an empty table is over before it begins.
TEST_F(Mistakes, WalksInWrongStatesAnswerOne)
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
// clang-format on

}  // namespace
