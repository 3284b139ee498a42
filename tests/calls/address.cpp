// IPv4 addresses. Interface 1 has 10.0.0.1/24 of type 6 and 10.0.0.2/25 of type 1,
// interface 4 an empty list.
#include <tarnd_qrb/ipv4_address.h>

#include "calls/calls.h"

namespace calls {

namespace {

constexpr uint32_t IF_INDEX = 1;
constexpr uint32_t SECOND   = 0x0A000002;

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

// clang-format off
// The calls that count the addresses in a first session and read them in a second.
constexpr char COUNTING[] = R"(
    memory    $memory | Failed to calloc fetched addrs\n
    reporter  SYSAPI_GetIp4AddrNumByIf
    close@1!  = | Failed to fetch DB, ret=%\n | SYSAPI_GetIp4AllAddrByIf: Failed to fetch DB, ret=%\n | $caller: Failed to get all addresses by if, ifIndex=1, ret=1\n
    close@1   = | Failed to fetch DB, ret=%\n
    behind    $quiet
    within    SYSAPI_GetIp4AddrNumByIf@1 $none
    reporter  SYSAPI_GetIp4AllAddrByIf
    behind    Failed to get all addresses by if, ifIndex=1, ret=1\n
    value#4   = | DB error: %\n
    value#2-3 $half | DB error: %\n
    item#2    $half | DB error: %\n
    session   $unread; =)";

}  // namespace

Calls AddressCalls()
{
    return {
        {"BDS_IPGetIpv4AddrTblByIfIndex", [] {
             session            = 0;
             const uint32_t ret = BDS_IPGetIpv4AddrTblByIfIndex(&session, &IF_INDEX);
             session            = ret == 0 ? session : 0;
             return Text(ret);
         }, R"(0
            open      NONE | get main ipv4 addr create db session fail, ret=%\n
            prepare   NONE | get main ipv4 addr prepare am_ipv4_address fail, ret=%\n
            any       NONE | get main ipv4 addr set primary am_ipv4_address fail, ret=%\n)",
            {}, Closed},
        {CALL(BDS_IPGetIpv4AddrTblItem, node, OutItem()), R"(0 10.0.0.1 24 6
            value#1   NONE - - -          | get ipv4 addr item address fail, ret=%\n
            value#2   NONE 10.0.0.1 - -  | get ipv4 addr item masklen fail, ret=%\n
            value#3   NONE 10.0.0.1 24 - | get ipv4 addr item type fail, ret=%\n)",
            OnItem, Closed},
        {CALL(BDS_IPGetMainIpByIfIndex, 1U, Out32(), Out32()), R"(0 10.0.0.2 25
            list      NONE - - | get main ipv4 get addr list fail ret=%, ifIndex=1\n
            size      NONE - - | get main ipv4 get addr list len is zero ret=%, ifIndex=1\n
            item#1    = | get node item by index fail, ret=%\n
            item#2    NONE - - | get node item by index fail, ret=%\n | get main ipv4 fail, ret=%, ifIndex=1\n
            close     =
            reporter  BDS_IPGetIpv4AddrTblItem
            behind    get ipv4 address fail, ret=4294967295\n
            value#1   = | get ipv4 addr item address fail, ret=%\n
            value#2   = | get ipv4 addr item masklen fail, ret=%\n
            value#3   = | get ipv4 addr item type fail, ret=%\n
            behind    get ipv4 address fail, ret=4294967295\n | get main ipv4 fail, ret=4294967295, ifIndex=1\n
            value#4   NONE - - | get ipv4 addr item address fail, ret=%\n
            value#5   NONE - - | get ipv4 addr item masklen fail, ret=%\n
            value#6   NONE - - | get ipv4 addr item type fail, ret=%\n
            behind    get main ipv4 get db session fail ret=4294967295, ifIndex=1\n
            within    BDS_IPGetIpv4AddrTblByIfIndex NONE - -)"},

        {CALL(IP_GetMainIpAddr, 1U, Out32(), Out32()), R"(0 10.0.0.2 25
            session   1 - -)"},
        {CALL(IP_GetMask, 1U, SECOND, Out32()), R"(0 255.255.255.128
            session   1 -; 1 255.255.255.128)"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 1U, 0x0A000009U, Out32(), Out32(), Out32()), R"(0 25 10.0.0.0 10.0.0.2
            item#2    1 24 10.0.0.0 10.0.0.1 | DB error: %\n
            value#3-4 1 24 10.0.0.0 10.0.0.1 | DB error: %\n
            session   1 - - -; 1 25 10.0.0.0 10.0.0.2)"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 4U, 0x0A000009U, Out32(), Out32(), Out32()), R"(1 - - - | There is no ip address on interface!
            close     1 - - - | There is no ip address on interface! | Failed to fetch DB, ret=%\n
            session   1 - - -)"},
        {CALL(BDS_IPv6GetValidGlobalAddrByIfIndex, 1U, Out8()), "1 -"},
        {CALL(IP6_Addr_GetValidGlobalAddrOnIf, 1U, Out8()), "0 -"},

        {CALL(SYSAPI_GetIp4AddrNumByIf, 1U), R"(2
            execute=1001000  0
            session   0; 2)"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 1U, OutAddresses(), 2U), R"(0 10.0.0.1 24 10.0.0.2 25
            value#2   1 10.0.0.1 - - - | DB error: %\n
            item#2    1 10.0.0.1 24 - - | DB error: %\n
            value#3   1 10.0.0.1 24 - - | DB error: %\n
            value#4   1 10.0.0.1 24 10.0.0.2 - | DB error: %\n
            session   1 - - - -; 1 10.0.0.1 24 10.0.0.2 25)"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 1U, SECOND), "1" + Fill(COUNTING, {
            {"$caller", "BDS_IPIFIsThisIfIpAddr"}, {"$none", "0"}, {"$quiet", "Interface 1 without addresses passed\\n"},
            {"$memory", "0"}, {"$unread", "0"}, {"$half", "0"}})},
        {CALL(BDS_IPIFGetThisIfIpAddr, 1U, Out<uint32_t, 2>(), 2U, Out32()), "0 10.0.0.1 10.0.0.2 2" + Fill(COUNTING, {
            {"$caller", "BDS_IPIFGetThisIfIpAddr"}, {"$none", "0 - - 0"}, {"$quiet", "-"},
            {"$memory", "1 - - -"}, {"$unread", "0 0 0 2"}, {"$half", "0 10.0.0.1 0 2"}})},
        {CALL(BDS_IPGetFirstIpByIfIndex, 1U, Out32()), "0 10.0.0.1" + Fill(COUNTING, {
            {"$caller", "BDS_IPGetFirstIpByIfIndex"}, {"$none", "1 -"}, {"$quiet", "-"},
            {"$memory", "1 -"}, {"$unread", "0 0"}, {"$half", "="}})},

        {CALL(IP_GetIfindexbyIpAddr, SECOND, 0U, Out32()), R"(0 1
            session   1 -)"},
        {CALL(BDS_IPGetIfindexbyIpAddr, SECOND, 0U, Out32()), R"(0 1
            within    IP_GetIfindexbyIpAddr 1 -)"},
        {CALL(BDS_IPIsLocalIfAddr, SECOND, 0U), R"(1
            within    IP_GetIfindexbyIpAddr 0)"},
    };
}
// clang-format on

namespace {

using Ipv4Address = DeviceTest;

TEST_F(Ipv4Address, WhereNoneFitsIsSaid)
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

// A match ends the walk over the list, and the scan one row later.
TEST_F(Ipv4Address, OwnerIsTheFirst)
{
    Load(R"({"am_ipv4_address": [{"if_index": 3, "ipv4_address_list": []}]})");
    Expect({{CALL(IP_GetIfindexbyIpAddr, 0x0A000001U, 0U, Out32()), "0 1"}});
    EXPECT_EQ(support::FaultPoints().size(), 16U);
}

}  // namespace

}  // namespace calls
