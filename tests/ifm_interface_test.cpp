// Interfaces: names and indexes, types, states and hardware.
#include <algorithm>
#include <cstdlib>
#include <latch>
#include <thread>

#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/records.h>

#include "support/example_calls.h"

namespace calls {

namespace {

using OutBase = Out<QRB_IF_BASE_S, 1, &QRB_IF_BASE_S::if_index, &QRB_IF_BASE_S::if_type>;
using OutMac = Out<uint8_t, 7>;
using OutTypes = Out<BDS_IF_TYPE_INFO_S, QRB_IF_TYPE_COUNT, &BDS_IF_TYPE_INFO_S::port_type>;

constexpr IF_NAME_KEY_S SIMPLE_NAME = {"E1", 0};

const BDS_IF_TYPE_INFO_S* TypeTable()
{
    return __atomic_load_n(&g_pstBDSIfTypeInfo, __ATOMIC_ACQUIRE);
}

// Restores the state before the type table was built.
void ForgetTypes()
{
    free(const_cast<BDS_IF_TYPE_INFO_S*>(TypeTable()));
    __atomic_store_n(&g_pstBDSIfTypeInfo, nullptr, __ATOMIC_RELEASE);
}

}  // namespace

// clang-format off
Calls InterfaceCalls()
{
    return {
        {CALL(IF_INTF_GetIfNameByIfIndex, OutText(), 1U), "0 Eth0/0/1"},
        {CALL(IF_GetIfNameByIndex, 1U, OutText()), "0 Eth0/0/1"},
        {CALL(BDS_IfnetGetIfNameByIfIndex, 1U, OutText()), "0 Eth0/0/1"},
        {CALL(BDS_IfnetIsIfExist, 1U), "1"},
        {CALL(IF_INTF_GetIfByFullName, "Vlanif10"), "2"},
        {CALL(IF_CmpIfBaseRecord, session, &SIMPLE_NAME, OutBase(), 387), "1 1 1", [] { Positioned("if_base"); }, Closed},
        {CALL(IF_INTF_GetIfIndexByFullName, "Vlanif10"), "2"},
        {CALL(BDS_Ifname2IfGetIndexByname, "Vlanif10", Out32()), "0 2"},
        {CALL(IF_INTF_GetSimpleName, "Vlanif10", OutText()), "0 V10"},
        {CALL(IF_INTF_GetFullNameByInput, "Eth1", OutText()), "0 Eth1"},
        {CALL(IF_INTF_GetNameByIfName, OutText(), "Eth1"), "0 Eth1"},
        {CALL(BDS_IfnetGetNumStrFromName, "Eth0/0/1", OutText(), 64U), "5 0/0/1"},

        {"BDS_InitIfTypeInfo", "", [] {
             const uint32_t ret = BDS_InitIfTypeInfo();
             return Text(ret) + (TypeTable() != nullptr ? " built" : " none");
         }, "0 built", ForgetTypes, ForgetTypes},
        {CALL(BDS_InitNewIfTypeInfo, OutTypes(), QRB_IF_TYPE_COUNT), "0 - - - - - - - - - - 41 104 105 43 26 103 1"},
        {CALL(BDS_IfPortTypeSwitch, 8U, Out32()), "0 41", ForgetTypes, ForgetTypes},
        {CALL(BDS_IfnetGetPortType, 2U, Out32()), "0 41", ForgetTypes, ForgetTypes},
        {CALL(IFPDT_GetPortType, 2U), "41", ForgetTypes, ForgetTypes},
        {CALL(IF_INTF_GetPhyTypeByIndex, 1U), "6"},

        {CALL(IF_INTF_GetIfLineState, 1U, Out32()), "0 1"},
        {CALL(BDS_IfnetGetLineState, 1U, Out32()), "0 1"},
        {CALL(IF_INTF_GetIfLinkState, 1U, Out32()), "0 1"},
        {CALL(BDS_IfnetGetLinkState, 1U, Out32()), "0 1"},
        {CALL(BDS_IfnetGetIfPhyState, 1U, Out8()), "0 1"},
        {CALL(BDS_IfnetIsSwitchPort, 1U), "1"},
        {CALL(IF_INTF_GetSlotByIndex, 1U), "1.2.3.4"},
        {CALL(IF_INTF_GetPortByIndex, 1U), "241.242.243.244"},
        {CALL(BDS_IfnetGetCardByIfIndex, 1U, Out32()), "0 241.242.243.244"},
        {CALL(BDS_IfnetGetIfMacByIfIndex, 1U, OutMac()), "0 2 0 94 16 32 48 -"},
        {CALL(IF_GetMacAddrByIfIndex, 1U, OutMac()), "0 2 0 94 16 32 48 -"},
        {CALL(IF_GetSlotStrBySlotId, -5, OutText()), "0 -5"},
        {CALL(BDS_IfnetGetSlotIdBySlotStr, "3/0/1"), "3"},
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

namespace {

using Interface = DeviceTest;

// clang-format off
TEST_F(Interface, NameIsComparedInTheSelectedForm)
{
    static constexpr IF_NAME_KEY_S full  = {"Eth0/0/1", 1};
    static constexpr IF_NAME_KEY_S wrong = {"E1", 2};
    Positioned("if_base");
    Expect({
        {CALL(IF_CmpIfBaseRecord, session, &wrong, OutBase(), 387), "0 - -"},
        {CALL(IF_CmpIfBaseRecord, session, &full, OutBase(), 388), "1 1 1"},
        {CALL(IF_CmpIfBaseRecord, session, &full, OutBase(), 386), R"(0 - - | copy all field if_base fail for cmp\n)"},
        {CALL(IF_CmpIfBaseRecord, session, &full, OutBase(), -1), R"(0 - - | copy all field if_base fail for cmp\n)"},
        {CALL(IF_INTF_GetIfIndexByFullName, nullptr), R"(NONE | Null value provided\n)"},
        {CALL(BDS_IfnetGetNumStrFromName, nullptr, OutText(), 4U), R"(0 - | Null value provided\n)"},
        {CALL(BDS_IfnetGetNumStrFromName, "Trunk1", nullptr, 4U), R"(0 | Null value provided\n)"},
        {CALL(BDS_IfnetGetNumStrFromName, "Trunk1", OutText(), 0U), R"(0 - | Null value provided\n)"},
    });
    Closed();
}
// clang-format on

TEST_F(Interface, TypesFollowFromTheCode)
{
    ASSERT_EQ(BDS_InitIfTypeInfo(), 0U);
    // An explicit build replaces the table and does not free the old one, which may still be in
    // use.
    auto* const first = const_cast<BDS_IF_TYPE_INFO_S*>(TypeTable());
    EXPECT_EQ(BDS_InitIfTypeInfo(), 0U);
    EXPECT_NE(TypeTable(), first);
    EXPECT_EQ(first[15].third_value, 72);
    free(first);

    Load(R"({"if_base": [
        {"if_index": 10, "if_name": "0", "if_type": 0}, {"if_index": 13, "if_name": "257", "if_type": 257}]})");
    Expect({
        {CALL(BDS_InitNewIfTypeInfo, OutTypes(), 16U), "1 - - - - - - - - - - - - - - - - -"},
        {CALL(BDS_IfPortTypeSwitch, 17U, Out32()), "1 -"},
        {CALL(IFPDT_GetPortType, 13U), "NONE"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 10U), "38"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 13U), "101"},  // not 1, although its low byte is 1
        {CALL(IF_INTF_GetPhyTypeByIndex, 2U), "101"},
    });
    ForgetTypes();
}

// The table is built once, and no thread sees an incomplete one. A second build would be a leak.
TEST_F(Interface, TypeTableIsBuiltOnceByManyThreads)
{
    support::WatchPlatform(false);
    for (int round = 0; round < 200; round++) {
        ForgetTypes();
        const BDS_IF_TYPE_INFO_S* seen[4] = {};
        std::latch start(std::ssize(seen));
        std::vector<std::jthread> threads;
        for (const BDS_IF_TYPE_INFO_S*& table : seen) {
            threads.emplace_back([&table, &start] {
                uint32_t portType = 0;
                start.arrive_and_wait();
                EXPECT_EQ(BDS_IfPortTypeSwitch(16, &portType), 0U);
                EXPECT_EQ(portType, 1U);
                table = TypeTable();
            });
        }
        threads.clear();
        EXPECT_EQ(std::ranges::count(seen, TypeTable()), std::ssize(seen));
    }
}

TEST_F(Interface, StateFollowsLinkAndRouteAndClassFollowsIndex)
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
        {CALL(IF_INIF_IsAPtunnleByIfIndex, 0x5FFFFFFFU), "0"},
        {CALL(IF_INIF_IsAPtunnleByIfIndex, 0x60000000U), "1"},
        {CALL(IF_INIF_IsAPtunnleByIfIndex, 0x60FFFFFFU), "1"},
        {CALL(IF_INIF_IsVapByIfIndex, 0x60FFFFFFU), "0"},
        {CALL(IF_INIF_IsVapByIfIndex, 0x61FFFFFFU), "1"},
        {CALL(IF_INIF_IsVapByIfIndex, 0x62000000U), "0"},
        // Functions with a fixed result accept null.
        {CALL(IF_INTF_GetSlotByIfName, nullptr), "0"},
        {CALL(BDS_TrunkGetTrunkIndex, 1U, nullptr), "1"},
        {CALL(BDS_QINQ_INTF_GetEthType, 1U, nullptr), "1"},
    });
}

// Names of 63 characters fill the field, 64 do not fit. The last argument is the buffer's size.
// clang-format off
TEST_F(Interface, NamesUpToTheFieldSizeAreFoundAndCopied)
{
    static const std::string longest(63, '7');
    static const std::string tooLong(64, '7');
    Load(R"({"if_base": [{"if_index": 7, "if_name": ")" + longest + R"(", "simple_name": ")" + longest + R"(", "if_type": 8}]})");
    Expect({
        {CALL(IF_INTF_GetIfByFullName, longest.c_str()), "7"},
        {CALL(IF_INTF_GetIfIndexByFullName, longest.c_str()), "7"},
        {CALL(BDS_Ifname2IfGetIndexByname, longest.c_str(), Out32()), "0 7"},
        {CALL(IF_INTF_GetSimpleName, longest.c_str(), OutText()), "0 " + longest},
        {CALL(BDS_IfnetGetIfNameByIfIndex, 7U, OutText()), "0 " + longest},
        {CALL(IF_INTF_GetNameByIfName, OutText(), longest.c_str()), "0 " + longest},
        {CALL(IF_INTF_GetIfByFullName, tooLong.c_str()), "NONE"},
        {CALL(IF_INTF_GetIfIndexByFullName, tooLong.c_str()), "NONE"},
        {CALL(BDS_Ifname2IfGetIndexByname, tooLong.c_str(), Out32()), "1 -"},
        {CALL(IF_INTF_GetSimpleName, tooLong.c_str(), OutText()), R"(1 - | strcpy_s failed\n)"},
        {CALL(IF_INTF_GetNameByIfName, OutText(), tooLong.c_str()), R"(1 "")"},
        {CALL(BDS_IfnetGetNumStrFromName, "Eth0/0:1.2", OutText(), 9U), "7 0/0:1.2"},
        {CALL(BDS_IfnetGetNumStrFromName, "Eth0/0:1.2", OutText(), 8U), "0 -"},
        {CALL(BDS_IfnetGetNumStrFromName, "E1", OutText(), 9U), "0 -"},
        {CALL(BDS_IfnetGetNumStrFromName, "Et1", OutText(), 9U), "1 1"},
        {CALL(BDS_IfnetGetNumStrFromName, "123", OutText(), 9U), "0 -"},
        {CALL(BDS_IfnetGetNumStrFromName, "Ethernet", OutText(), 9U), "0 -"},
        {CALL(IF_GetSlotStrBySlotId, INT32_MIN, OutText()), "0 -2147483648"},
        {CALL(BDS_IfnetGetSlotIdBySlotStr, "-2147483648"), "128.0.0.0"},
        {CALL(BDS_IfnetGetSlotIdBySlotStr, longest.c_str()), "NONE"},
        {CALL(BDS_IfnetGetSlotIdBySlotStr, "a1"), "0"},
    });
}
// clang-format on

}  // namespace

}  // namespace calls
