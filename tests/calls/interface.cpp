// Interfaces: names and indexes, types, states and hardware.
#include <cstdlib>

#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/records.h>

#include "calls/calls.h"

namespace calls {

namespace {

using OutBase  = Out<QRB_IF_BASE_S, 1, &QRB_IF_BASE_S::if_index, &QRB_IF_BASE_S::if_type>;
using OutMac   = Out<uint8_t, 7>;
using OutTypes = Out<BDS_IF_TYPE_INFO_S, QRB_IF_TYPE_COUNT, &BDS_IF_TYPE_INFO_S::port_type>;

constexpr IF_NAME_KEY_S SIMPLE_NAME = {"E1", 0};

// As if the type table had not been built.
void ForgetTypes()
{
    free(const_cast<BDS_IF_TYPE_INFO_S*>(g_pstBDSIfTypeInfo));
    g_pstBDSIfTypeInfo = nullptr;
}

void OnBase()
{
    Positioned("if_base");
}

}  // namespace

// clang-format off
Calls InterfaceCalls()
{
    return {
        {CALL(IF_INTF_GetIfNameByIfIndex, OutText(), 1U), R"(0 Eth0/0/1
            read      NONE -
            copy      NONE - | orm cpy failed, index=1 ret = %.\n)"},
        {CALL(IF_GetIfNameByIndex, 1U, OutText()), R"(0 Eth0/0/1
            read      1 - | orm read key[1] failed, ret = %.\n
            copy      1 - | orm cpy failed, index=1 ret = %.\n)"},
        {CALL(BDS_IfnetGetIfNameByIfIndex, 1U, OutText()), R"(0 Eth0/0/1
            read      1 - | Failed to fetch if_base, ret=%\n
            copy      1 - | Failed to copy ifName from db struct to output\n)"},
        {CALL(BDS_IfnetIsIfExist, 1U), R"(1
            read=1001000  0
            read      1 | Error to fetch database, ret=%\n)"},
        // The last of two rows has the name; one that can't be read is passed over.
        {CALL(IF_INTF_GetIfByFullName, "Vlanif10"), R"(2
            open      NONE | /create db session fail %\n
            prepare   NONE | IF_ScanTblByCond: prepare db session fail %\n
            start     NONE | IF_ScanTblByCond: start scan if_base fail %\n
            next      NONE | IF_ScanTblByCond: scan if_base next fail %\n
            row#1     =    | IF_CmpIfBaseRecord: get all field if_base fail for cmp %\n
            row       NONE | IF_CmpIfBaseRecord: get all field if_base fail for cmp %\n
            copy      NONE | IF_CmpIfBaseRecord: copy all field if_base fail for cmp\n
            end       =
            close     =)"},
        {CALL(IF_CmpIfBaseRecord, session, &SIMPLE_NAME, OutBase(), 387), R"(1 1 1
            row       0 - - | get all field if_base fail for cmp %\n
            copy      0 - - | copy all field if_base fail for cmp\n)", OnBase, Closed},
        {CALL(IF_INTF_GetIfIndexByFullName, "Vlanif10"), R"(2
            within    QRB_CreatDbSession NONE
            close     =
            any       NONE)"},
        {CALL(BDS_Ifname2IfGetIndexByname, "Vlanif10", Out32()), R"(0 2
            end       1 2 | DB error: %\n
            session   1 -; 1 2)"},
        {CALL(IF_INTF_GetSimpleName, "Vlanif10", OutText()), R"(0 V10
            copy      1 - | strcpy_s failed\n
            close     =
            session   1 -)"},
        {CALL(IF_INTF_GetFullNameByInput, "Eth1", OutText()), R"(0 Eth1
            copy      NONE - | get full name failed, input=Eth1 ret = %.\n)"},
        {CALL(IF_INTF_GetNameByIfName, OutText(), "Eth1"), R"(0 Eth1
            copy      1 -)"},
        {CALL(BDS_IfnetGetNumStrFromName, "Eth0/0/1", OutText(), 64U), R"(5 0/0/1
            copy      5 - | memcpy failed, ret=%\n)"},

        {"BDS_InitIfTypeInfo", [] {
             const uint32_t ret = BDS_InitIfTypeInfo();
             return Text(ret) + (g_pstBDSIfTypeInfo != nullptr ? " built" : " none");
         }, R"(0 built
            memory    1 none | g_pstBDSIfTypeInfo malloc fail\n)", ForgetTypes, ForgetTypes},
        {CALL(BDS_InitNewIfTypeInfo, OutTypes(), QRB_IF_TYPE_COUNT), "0 - - - - - - - - - - 41 104 105 43 26 103 1"},
        {CALL(BDS_IfPortTypeSwitch, 8U, Out32()), R"(0 41
            memory    1 - | BDS_InitIfTypeInfo: g_pstBDSIfTypeInfo malloc fail\n)", ForgetTypes, ForgetTypes},
        {CALL(BDS_IfnetGetPortType, 2U, Out32()), R"(0 41
            memory    1 - | BDS_InitIfTypeInfo: g_pstBDSIfTypeInfo malloc fail\n
            session   1 -)", ForgetTypes, ForgetTypes},
        {CALL(IFPDT_GetPortType, 2U), R"(41
            within    BDS_IfnetGetPortType NONE)", ForgetTypes, ForgetTypes},
        {CALL(IF_INTF_GetPhyTypeByIndex, 1U), R"(6
            read      101 | get phy tyep orm read ifIndex[1] failed, ret = %.\n)"},

        {CALL(IF_INTF_GetIfLineState, 1U, Out32()), R"(0 1
            read      1 - | Failed to fetch DB, ret=%\n)"},
        {CALL(BDS_IfnetGetLineState, 1U, Out32()), R"(0 1
            within    IF_INTF_GetIfLineState 1 -)"},
        {CALL(IF_INTF_GetIfLinkState, 1U, Out32()), R"(0 1
            read      1 - | Failed to fetch DB, ret=%\n)"},
        {CALL(BDS_IfnetGetLinkState, 1U, Out32()), R"(0 1
            within    IF_INTF_GetIfLinkState 1 -)"},
        {CALL(BDS_IfnetGetIfPhyState, 1U, Out8()), R"(0 1
            session   1 -; 1 1)"},
        {CALL(BDS_IfnetIsSwitchPort, 1U), R"(1
            read=1001000  0
            read      0 | Failed to fetch port status for ifIndex=1, ret=%)"},
        {CALL(IF_INTF_GetSlotByIndex, 1U), R"(1.2.3.4
            read      NONE | Database error: [%], info: read if phy failed\n)"},
        {CALL(IF_INTF_GetPortByIndex, 1U), R"(241.242.243.244
            read      NONE | Database error: [%], info: read if phy failed\n)"},
        {CALL(BDS_IfnetGetCardByIfIndex, 1U, Out32()), R"(0 241.242.243.244
            read      1 - | Failed to fetch if_phy, ret=%\n)"},
        {CALL(BDS_IfnetGetIfMacByIfIndex, 1U, OutMac()), R"(0 2 0 94 16 32 48 -
            any       1 - - - - - - -)"},
        {CALL(IF_GetMacAddrByIfIndex, 1U, OutMac()), R"(0 2 0 94 16 32 48 -
            any       1 - - - - - - -)"},
        {CALL(IF_GetSlotStrBySlotId, -5, OutText()), R"(0 -5
            format    1 - | sprintf_s failed\n
            copy      1 - | strcpy_s failed\n)"},
        {CALL(BDS_IfnetGetSlotIdBySlotStr, "3/0/1"), R"(3
            copy      1 | strcpy_s failed\n)"},
        {CALL(IF_INIF_IsVapByIfIndex, 0x61000000U), "1"},
        {CALL(IF_INIF_IsAPtunnleByIfIndex, 0x61000000U), "0"},
        {CALL(IF_INTF_GetSlotByIfName, "Eth1"), "0"},
        {CALL(IF_INTF_IsTempIf, 1U), R"(0 | STUB for IF_INTF_IsTempIf\n)"},
        {CALL(BDS_TrunkIsPortInTrunk, 1U), "0"},
        {CALL(BDS_TrunkGetTrunkIndex, 1U, Out32()), "1 -"},
        {CALL(BDS_IfnetIsL3IF, 1U), "0"},
        {CALL(BDS_QINQ_INTF_GetEthType, 1U, Out16()), "1 -"},
    };
}
// clang-format on

}  // namespace calls
