// IPv4 addresses of interfaces, beside what the model of the lists tells: log lines, and the end of
// a search.
#include "calls/records.h"

namespace {

using namespace calls;

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
        {CALL(IP_GetMainIpAddr, 3U, Out32(), Out32()), "1 - -"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 1U, OutAddresses(), 1U), "0 10.0.0.1 24 - -"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 4U, OutAddresses(), 2U), "0 - - - -"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 1U, Out32(), 0U, Out32()), "0 - 0"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 4U, Out32(), 1U, Out32()), "0 - 0"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 4U, 0U), R"(0 | Interface 4 without addresses passed\n)"},
        {CALL(BDS_IPGetFirstIpByIfIndex, 4U, Out32()), "1 -"},
        {CALL(BDS_IPGetIFBestMatchIpAddr, 4U, 0U, Out32(), Out32(), Out32()),
         "1 - - - | There is no ip address on interface!"},
        {CALL(IP_GetIfindexbyIpAddr, 9U, 0U, Out32()), "1 NONE"},
    });
}

// A match ends the walk over the list, and the scan one row later.
TEST_F(Ipv4Address, OwnerIsTheFirst)
{
    Load(R"({"am_ipv4_address": [{"if_index": 3, "ipv4_address_list": []}]})");
    Expect({{CALL(IP_GetIfindexbyIpAddr, 0x0A000001U, 0U, Out32()), "0 1"}});
    EXPECT_EQ(support::PlatformCalls(),
              (Lines{"OrmOpenSessionByDefault", "OrmPrepare", "OrmScanStart", "OrmScanNext",
                     "OrmGetFieldById", "OrmGetFieldById", "OrmScanNext", "OrmGetFieldById",
                     "OrmGetFieldById", "OrmNodeGetChild", "OrmNodeGetSize", "OrmNodeGetItemByIdx",
                     "OrmNodeGetFieldById", "OrmScanNext", "OrmScanEnd", "OrmCloseSession"}));
}

}  // namespace
