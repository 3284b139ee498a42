// IPv4 addresses of interfaces.
#include <array>

#include "calls/records.h"

namespace {

using namespace calls;
using standin::Row;

constexpr uint32_t Ip(uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return a << 24 | b << 16 | c << 8 | d;
}

using Item = std::array<uint64_t, 3>;  // address, prefix length, type

class Ipv4Address : public support::PlatformTest {
protected:
    static void Has(uint32_t ifIndex, const std::vector<Item>& items, uint32_t instance = 0)
    {
        Row row("am_ipv4_address");
        row.Set("if_index", ifIndex).Set("instance_id", instance).MakeList("ipv4_address_list");
        for (const Item& item : items) {
            row.AddItem("ipv4_address_list", item);
        }
        Insert({row});
    }
};

// By one rule the first that is not of type 6, by another the first of type 1.
TEST_F(Ipv4Address, MainAddress)
{
    Has(1, {{Ip(10, 0, 0, 1), 24, 6},
            {Ip(10, 0, 0, 2), 25, 2},
            {Ip(10, 0, 0, 3), 26, 1},
            {Ip(10, 0, 0, 4), 27, 1}});
    Has(2, {{Ip(10, 0, 0, 1), 24, 6}});
    Has(3, {});
    Expect({
        {CALL(BDS_IPGetMainIpByIfIndex, 1U, Out32(), Out32()), "0 10.0.0.2 25"},
        {CALL(BDS_IPGetMainIpByIfIndex, 2U, Out32(), Out32()),
         R"(NONE - - | get main ipv4 fail, ret=0, ifIndex=2\n)"},
        {CALL(BDS_IPGetMainIpByIfIndex, 3U, Out32(), Out32()),
         R"(NONE - - | get main ipv4 get addr list len is zero ret=0, ifIndex=3\n)"},
        {CALL(IP_GetMainIpAddr, 1U, Out32(), Out32()), "0 10.0.0.3 26"},
        {CALL(IP_GetMainIpAddr, 2U, Out32(), Out32()), "1 - -"},
        {CALL(IP_GetMainIpAddr, 3U, Out32(), Out32()), "1 - -"},
    });
}

TEST_F(Ipv4Address, WholeList)
{
    Has(1, {{Ip(10, 0, 0, 1), 24, 6}, {Ip(0, 0, 0, 0), 0, 1}, {Ip(10, 0, 0, 1), 32, 1}});
    Has(2, {});
    Expect({
        {CALL(SYSAPI_GetIp4AddrNumByIf, 1U), "3"},
        {CALL(SYSAPI_GetIp4AddrNumByIf, 2U), "0"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 1U, OutAddresses(), 1U), "0 10.0.0.1 24 - -"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 1U, OutAddresses(), 2U), "0 10.0.0.1 24 0 0"},
        {CALL(SYSAPI_GetIp4AllAddrByIf, 2U, OutAddresses(), 2U), "0 - - - -"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 1U, Out32(), 0U, Out32()), "0 - 0"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 1U, Out32(), 1U, Out32()), "0 10.0.0.1 1"},
        {CALL(BDS_IPIFGetThisIfIpAddr, 2U, Out32(), 1U, Out32()), "0 - 0"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 1U, 0U), "1"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 1U, Ip(10, 0, 0, 2)), "0"},
        {CALL(BDS_IPIFIsThisIfIpAddr, 2U, 0U), R"(0 | Interface 2 without addresses passed\n)"},
        {CALL(BDS_IPGetFirstIpByIfIndex, 2U, Out32()), "1 -"},
    });
}

TEST_F(Ipv4Address, Owner)
{
    Has(5, {{1, 24, 1}, {2, 24, 1}}, 7);
    Has(4, {{9, 24, 1}, {1, 24, 6}}, 8);
    Has(3, {{1, 24, 1}}, 8);
    Expect({
        {CALL(IP_GetIfindexbyIpAddr, 1U, 8U, Out32()), "0 4"},
        {CALL(IP_GetIfindexbyIpAddr, 9U, 7U, Out32()), "1 NONE"},
        {CALL(BDS_IPIsLocalIfAddr, 9U, 7U), "0"},
        {CALL(IP_GetIfindexbyIpAddr, 1U, 7U, Out32()), "0 5"},
    });
    // The match ends the walk over the list, and the scan one row later.
    EXPECT_EQ(support::PlatformCalls(),
              (Lines{"OrmOpenSessionByDefault", "OrmPrepare", "OrmScanStart", "OrmScanNext",
                     "OrmGetFieldById", "OrmGetFieldById", "OrmNodeGetChild", "OrmNodeGetSize",
                     "OrmNodeGetItemByIdx", "OrmNodeGetFieldById", "OrmScanNext", "OrmScanEnd",
                     "OrmCloseSession"}));
}

}  // namespace
