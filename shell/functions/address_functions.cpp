// IPv4 addresses of interfaces.
#include <tarnd_qrb/ipv4_address.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

constexpr uint32_t MOST_ADDRESSES = 64;  // maximum number of addresses per call

// The record stays open during the call.
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

constexpr Argument ADDRESSES{.name = "addresses", .form = Form::Ipv4, .size = MOST_ADDRESSES};
constexpr Argument CAPACITY{.name = "capacity", .highest = MOST_ADDRESSES, .fallback = "64"};
constexpr Argument INSTANCE_ID{
    .name = "instanceId", .table = "am_ipv4_address", .field = "instance_id", .fallback = "0"};
constexpr Argument PEER{.name = "peer", .form = Form::Ipv4};
constexpr Argument MASK{.name = "mask", .form = Form::Ipv4};
constexpr Argument NETWORK{.name = "network", .form = Form::Ipv4};
constexpr Argument ADDRESS6{.name = "address", .size = 16};

}  // namespace

// clang-format off
std::vector<Function> AddressFunctions()
{
    using namespace arguments;
    constexpr auto TABLE = "am_ipv4_address";
    return {
        Define("BDS_IPGetIpv4AddrTblByIfIndex", OpenRecord, OK_OR_ALL_ONES, TABLE, "Opens a session on the address record of an interface; the shell closes it again.", IF_INDEX),
        Define("BDS_IPGetIpv4AddrTblItem", ReadItem, OK_OR_ALL_ONES, TABLE, "One item of an interface's address list, counted from 0.", IF_INDEX, Number("number"), Number("item")),
        FUNCTION(BDS_IPGetMainIpByIfIndex, OK_OR_ALL_ONES, TABLE, "The main address: the first that is not of type 6.", IF_INDEX, ADDRESS, MASKLEN),
        FUNCTION(IP_GetMainIpAddr, OK_OR1, TABLE, "The main address: the first of type 1.", IF_INDEX, ADDRESS, MASKLEN),
        FUNCTION(SYSAPI_GetIp4AddrNumByIf, VALUE, TABLE, "The number of addresses of an interface.", IF_INDEX),
        FUNCTION(SYSAPI_GetIp4AllAddrByIf, OK_OR1, TABLE, "The addresses of an interface.", IF_INDEX, ADDRESSES, CAPACITY),
        FUNCTION(BDS_IPIFIsThisIfIpAddr, ONE_IS_YES, TABLE, "Whether an address is one of an interface's.", IF_INDEX, ADDRESS),
        FUNCTION(BDS_IPIFGetThisIfIpAddr, OK_OR1, TABLE, "The addresses of an interface, without prefix lengths.", IF_INDEX, ADDRESSES, CAPACITY, COUNT),
        FUNCTION(BDS_IPGetFirstIpByIfIndex, OK_OR1, TABLE, "The first address of an interface.", IF_INDEX, ADDRESS),
        FUNCTION(BDS_IPGetIFBestMatchIpAddr, OK_OR1, TABLE, "The address of an interface that is in the same network as a peer.", IF_INDEX, PEER, MASKLEN, NETWORK, ADDRESS),
        FUNCTION(IP_GetMask, OK_OR1, TABLE, "The mask of one of an interface's addresses.", IF_INDEX, ADDRESS, MASK),
        FUNCTION(IP_GetIfindexbyIpAddr, OK_OR1, TABLE, "The interface that owns an address.", ADDRESS, INSTANCE_ID, IF_INDEX),
        FUNCTION(BDS_IPGetIfindexbyIpAddr, OK_OR1, TABLE, "The interface that owns an address.", ADDRESS, INSTANCE_ID, IF_INDEX),
        FUNCTION(BDS_IPIsLocalIfAddr, ONE_IS_YES, TABLE, "Whether an interface owns an address.", ADDRESS, INSTANCE_ID),
        FUNCTION(BDS_IPv6GetValidGlobalAddrByIfIndex, OK_OR1, "", "A global IPv6 address of an interface: always a failure.", IF_INDEX, ADDRESS6),
        FUNCTION(IP6_Addr_GetValidGlobalAddrOnIf, OK_OR1, "", "A global IPv6 address of an interface: always 0, and none.", IF_INDEX, ADDRESS6),
    };
}
// clang-format on

}  // namespace shell
