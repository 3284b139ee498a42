// IPv4 addresses of interfaces.
#include <tarnd_qrb/ipv4_address.h>

#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/results.h"

namespace shell {
namespace {

constexpr uint32_t most = 64;  // addresses that one call can give

// The record is open as long as the call lasts.
uint32_t OpenRecord(uint32_t ifIndex)
{
    ORM_SESSION session = 0;
    const uint32_t ret = BDS_IPGetIpv4AddrTblByIfIndex(&session, &ifIndex);
    if (ret == 0) {
        OrmCloseSession(session);
    }
    return ret;
}

uint32_t ReadItem(uint32_t ifIndex, uint32_t number, BDS_IPV4_ADDR_ITEM_S* item)
{
    ORM_SESSION session = 0;
    ORM_NODE list = 0;
    ORM_NODE node = 0;
    uint32_t ret = BDS_IPGetIpv4AddrTblByIfIndex(&session, &ifIndex);
    if (ret != 0) {
        return ret;
    }
    OrmNodeGetChild(session, 0, "ipv4_address_list", &list);
    OrmNodeGetItemByIdx(list, number, &node);
    ret = BDS_IPGetIpv4AddrTblItem(node, item);
    OrmCloseSession(session);
    return ret;
}

// clang-format off
constexpr Argument addresses  {.name = "addresses", .form = Form::Ipv4, .size = most};
constexpr Argument capacity   {.name = "capacity", .highest = most, .fallback = "64"};
constexpr Argument instanceId = {.name = "instanceId", .table = "am_ipv4_address", .field = "instance_id", .fallback = "0"};
constexpr Argument peer       = {.name = "peer", .form = Form::Ipv4};
constexpr Argument mask       = {.name = "mask", .form = Form::Ipv4};
constexpr Argument network    = {.name = "network", .form = Form::Ipv4};
constexpr Argument address6   = {.name = "address", .size = 16};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> AddressFunctions()
{
    using namespace arguments;
    constexpr auto table = "am_ipv4_address";
    return {
        Define("BDS_IPGetIpv4AddrTblByIfIndex", OpenRecord, okOrAllOnes, table, "Opens a session on the address record of an interface; here, closes it too.", ifIndex),
        Define("BDS_IPGetIpv4AddrTblItem", ReadItem, okOrAllOnes, table, "One item of an interface's address list, counted from 0.", ifIndex, Number("number"), Number("item")),
        FUNCTION(BDS_IPGetMainIpByIfIndex, okOrAllOnes, table, "The main address: the first that is not of type 6.", ifIndex, address, masklen),
        FUNCTION(IP_GetMainIpAddr, okOr1, table, "The main address: the first of type 1.", ifIndex, address, masklen),
        FUNCTION(SYSAPI_GetIp4AddrNumByIf, value, table, "How many addresses an interface has.", ifIndex),
        FUNCTION(SYSAPI_GetIp4AllAddrByIf, okOr1, table, "The addresses of an interface.", ifIndex, addresses, capacity),
        FUNCTION(BDS_IPIFIsThisIfIpAddr, oneIsYes, table, "Whether an address is one of an interface's.", ifIndex, address),
        FUNCTION(BDS_IPIFGetThisIfIpAddr, okOr1, table, "The addresses of an interface, without prefix lengths.", ifIndex, addresses, capacity, count),
        FUNCTION(BDS_IPGetFirstIpByIfIndex, okOr1, table, "The first address of an interface.", ifIndex, address),
        FUNCTION(BDS_IPGetIFBestMatchIpAddr, okOr1, table, "The address of an interface that fits a peer.", ifIndex, peer, masklen, network, address),
        FUNCTION(IP_GetMask, okOr1, table, "The mask of one of an interface's addresses.", ifIndex, address, mask),
        FUNCTION(IP_GetIfindexbyIpAddr, okOr1, table, "The interface that owns an address.", address, instanceId, ifIndex),
        FUNCTION(BDS_IPGetIfindexbyIpAddr, okOr1, table, "The interface that owns an address.", address, instanceId, ifIndex),
        FUNCTION(BDS_IPIsLocalIfAddr, oneIsYes, table, "Whether an address has an owner.", address, instanceId),
        FUNCTION(BDS_IPv6GetValidGlobalAddrByIfIndex, okOr1, "", "A global IPv6 address of an interface: always a failure.", ifIndex, address6),
        FUNCTION(IP6_Addr_GetValidGlobalAddrOnIf, okOr1, "", "A global IPv6 address of an interface: always 0, and none.", ifIndex, address6),
    };
}
// clang-format on

}  // namespace shell
