// IPv4 addresses.
#include <tarnd_qrb/ipv4_address.h>

#include "support/example_calls.h"

namespace calls {

namespace {

constexpr uint32_t IF_INDEX = 1;

using OutItem = Out<BDS_IPV4_ADDR_ITEM_S, 1, &BDS_IPV4_ADDR_ITEM_S::address,
                    &BDS_IPV4_ADDR_ITEM_S::masklen, &BDS_IPV4_ADDR_ITEM_S::type>;
using OutAddresses =
    Out<SYSAPI_IP4_ADDR_S, 2, &SYSAPI_IP4_ADDR_S::address, &SYSAPI_IP4_ADDR_S::masklen>;

void OnItem()
{
    ORM_NODE list = 0;
    EXPECT_EQ(BDS_IPGetIpv4AddrTblByIfIndex(&session, &IF_INDEX), 0U);
    EXPECT_EQ(OrmNodeGetChild(session, 0, "ipv4_address_list", &list), 0U);
    EXPECT_EQ(OrmNodeGetItemByIdx(list, 0, &node), 0U);
}

}  // namespace

// clang-format off
Calls AddressCalls()
{
    return {
        {"BDS_IPGetIpv4AddrTblByIfIndex", "", [] {
             session            = 0;
             const uint32_t ret = BDS_IPGetIpv4AddrTblByIfIndex(&session, &IF_INDEX);
             session            = ret == 0 ? session : 0;
             return Text(ret);
         }, "0", {}, Closed},
        {CALL(BDS_IPGetIpv4AddrTblItem, node, OutItem()), "0 10.0.0.1 24 6", OnItem, Closed},
        {CALL(BDS_IPGetMainIpByIfIndex, 1U, Out32(), Out32()), "0 10.0.0.2 25"},

        {CALL(IP_GetMainIpAddr, 1U, Out32(), Out32()), "0 10.0.0.2 25"},
        {CALL(IP_GetMask, 1U, 0x0A000002U, Out32()), "0 255.255.255.128"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 1U, 0x0A000009U, Out32(), Out32(), Out32()), "0 25 10.0.0.0 10.0.0.2"},
        {CALL_AS(", no address", BDS_IPGetIFBestMatchIpAddr, 4U, 0x0A000009U, Out32(), Out32(), Out32()), "1 - - - | There is no ip address on interface!"},
        {CALL(BDS_IPv6GetValidGlobalAddrByIfIndex, 1U, Out8()), "1 -"},
        {CALL(IP6_Addr_GetValidGlobalAddrOnIf, 1U, Out8()), "0 -"},

        {CALL(SYSAPI_GetIp4AddrNumByIf, 1U), "2"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 1U, OutAddresses(), 2U), "0 10.0.0.1 24 10.0.0.2 25"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 1U, 0x0A000002U), "1"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 1U, Out<uint32_t, 2>(), 2U, Out32()), "0 10.0.0.1 10.0.0.2 2"},
        {CALL(BDS_IPGetFirstIpByIfIndex, 1U, Out32()), "0 10.0.0.1"},

        {CALL(IP_GetIfindexbyIpAddr, 0x0A000002U, 0U, Out32()), "0 1"},
        {CALL(BDS_IPGetIfindexbyIpAddr, 0x0A000002U, 0U, Out32()), "0 1"},
        {CALL(BDS_IPIsLocalIfAddr, 0x0A000002U, 0U), "1"},
    };
}
// clang-format on

namespace {

using Ipv4Address = DeviceTest;

TEST_F(Ipv4Address, NoMatchIsAFailure)
{
    Load(R"({"am_ipv4_address": [
        {"if_index": 3, "ipv4_address_list": [{"address": "10.0.0.1", "masklen": 24, "type": 6}]}]})");
    Expect({
        {CALL(BDS_IPGetMainIpByIfIndex, 3U, Out32(), Out32()),
         R"(NONE - - | get main ipv4 fail, ret=0, ifIndex=3\n)"},
        {CALL(BDS_IPGetMainIpByIfIndex, 4U, Out32(), Out32()),
         R"(NONE - - | get main ipv4 get addr list len is zero ret=0, ifIndex=4\n)"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 1U, Out32(), 0U, Out32()), "0 - 0"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 1U, OutAddresses(), 0U),
         R"(1 - - - - | Null value provided\n)"},
        {CALL(BDS_IPv6GetValidGlobalAddrByIfIndex, 1U, nullptr), "1"},
        {CALL(IP6_Addr_GetValidGlobalAddrOnIf, 1U, nullptr), "0"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 4U, 0U), R"(0 | Interface 4 without addresses passed\n)"},
    });
}

// An address of 0 matches no peer; masks longer than 32 bits are as long as 32.
// clang-format off
TEST_F(Ipv4Address, LastSubnetThatContainsThePeerWinsElseTheFirstAddress)
{
    Load(R"({"am_ipv4_address": [
        {"if_index": 5, "ipv4_address_list": [
            {"address": "10.0.0.1", "masklen": 24}, {"address": "10.0.0.2", "masklen": 24}, {"address": "10.0.0.3", "masklen": 16},
            {"address": "0.0.0.0", "masklen": 24}, {"address": "10.1.0.5", "masklen": 32}, {"address": "10.1.0.6", "masklen": 33}]},
        {"if_index": 6, "ipv4_address_list": [{"address": "10.0.0.1", "masklen": 31}, {"address": "10.0.0.1", "masklen": 0}]}]})");
    Expect({
        {CALL(BDS_IPGetIFBestMatchIpAddr, 5U, 0x0A000009U, Out32(), Out32(), Out32()), "0 16 10.0.0.0 10.0.0.3"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 5U, 0x0A000909U, Out32(), Out32(), Out32()), "0 16 10.0.0.0 10.0.0.3"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 5U, 0x0A010005U, Out32(), Out32(), Out32()), "0 32 10.1.0.5 10.1.0.5"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 5U, 0x0A010006U, Out32(), Out32(), Out32()), "0 33 10.1.0.6 10.1.0.6"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 5U, 0x0A010007U, Out32(), Out32(), Out32()), "0 24 10.0.0.0 10.0.0.1"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 5U, 0x00000009U, Out32(), Out32(), Out32()), "0 24 10.0.0.0 10.0.0.1"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 6U, 0x0A000000U, Out32(), Out32(), Out32()), "0 0 0 10.0.0.1"},
        {CALL(IP_GetMask, 5U, 0x0A010005U, Out32()), "0 NONE"},
        {CALL(IP_GetMask, 5U, 0x0A010006U, Out32()), "0 NONE"},
        {CALL(IP_GetMask, 5U, 0U, Out32()), "0 255.255.255.0"},
        {CALL(IP_GetMask, 5U, 0x0A000004U, Out32()), "1 -"},
        {CALL(IP_GetMask, 6U, 0x0A000001U, Out32()), "0 255.255.255.254"},
    });
}

TEST_F(Ipv4Address, MainAndFirstAreTheFirstCandidatesAndACapacityEndsTheLists)
{
    Load(R"({"am_ipv4_address": [
        {"if_index": 5, "ipv4_address_list": [
            {"address": "10.0.0.1", "type": 6}, {"address": "10.0.0.2", "type": 0, "masklen": 8}, {"address": "10.0.0.3", "type": 1, "masklen": 9},
            {"address": "10.0.0.4", "type": 1, "masklen": 10}]}]})");
    Expect({
        {CALL(BDS_IPGetMainIpByIfIndex, 5U, Out32(), Out32()), "0 10.0.0.2 8"},
        {CALL(IP_GetMainIpAddr, 5U, Out32(), Out32()), "0 10.0.0.3 9"},
        {CALL(IP_GetMainIpAddr, 4U, Out32(), Out32()), "1 - -"},
        {CALL(SYSAPI_GetIp4AddrNumByIf, 5U), "4"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 5U, OutAddresses(), 1U), "0 10.0.0.1 0 - -"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 4U, OutAddresses(), 2U), "0 - - - -"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 5U, Out<uint32_t, 5>(), 3U, Out32()), "0 10.0.0.1 10.0.0.2 10.0.0.3 - - 3"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 5U, Out<uint32_t, 5>(), 5U, Out32()), "0 10.0.0.1 10.0.0.2 10.0.0.3 10.0.0.4 - 4"},
        {CALL(BDS_IPGetFirstIpByIfIndex, 4U, Out32()), "1 -"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 5U, 0x0A000004U), "1"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 5U, 0x0A000005U), "0"},
        {CALL(IP_GetIfindexbyIpAddr, 0x0A000001U, 5U, Out32()), "0 2"},
        {CALL(IP_GetIfindexbyIpAddr, 0x0A000002U, 5U, Out32()), "1 NONE"},
        {CALL(BDS_IPIsLocalIfAddr, 0x0A000004U, 5U), "0"},
    });
}
// clang-format on

// A match ends the iteration over the list, and the scan one row later.
TEST_F(Ipv4Address, OwnerIsTheFirstMatch)
{
    Load(R"({"am_ipv4_address": [{"if_index": 3, "ipv4_address_list": []}]})");
    Expect({{CALL(IP_GetIfindexbyIpAddr, 0x0A000001U, 0U, Out32()), "0 1"}});
    EXPECT_EQ(support::FaultPoints().size(), 16U);
}

}  // namespace

}  // namespace calls
