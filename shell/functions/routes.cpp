// Route inquiry.
#include <tarnd_qrb/route.h>

#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/results.h"

namespace shell {
namespace {

constexpr uint32_t mostHops = 16;

uint32_t Inquire6()
{
    return FIB6_InquiryRe6(nullptr, nullptr);
}

// The scan is open as long as the call lasts.
uint32_t StartGroupScan()
{
    ORM_SESSION session = 0;
    ORM_SCAN scan = 0;
    const uint32_t ret = FIB_ScanNhpGroupNodeValidate(&session, &scan);
    OrmScanEnd(session, scan);
    OrmCloseSession(session);
    return ret;
}

// clang-format off
constexpr Argument destination {.name = "destination", .form = Form::Ipv4, .table = "Fib.ConfigIpv4Fwd", .field = "destAddr"};
constexpr Argument nextHop     {.name = "nextHop"};
constexpr Argument nextHops    {.name = "nextHops", .size = mostHops};
constexpr Argument hopCount    {.name = "count", .highest = mostHops, .fallback = "8"};
constexpr Argument prefix      {.name = "prefix", .form = Form::Ipv4};
constexpr Argument groupId     {.name = "groupId", .table = "Fib.ConfigNhpGroupNode", .field = "nhpGroupId"};
constexpr Argument nhpIndex    {.name = "nhpIndex", .table = "Fib.ConfigNhpStandard", .field = "nhpIndex"};
constexpr Argument nhpIndexes  {.name = "nhpIndexes", .size = FIB_GROUP_MEMBERS_MAX};
constexpr Argument firstValue  {.name = "firstValue", .form = Form::Ipv4};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> RouteFunctions()
{
    using namespace arguments;
    constexpr auto all = "Fib.ConfigIpv4Fwd, Fib.ConfigNhpGroupNode, Fib.ConfigNhpStandard";
    return {
        FUNCTION(FIB_InquiryRoute, okOr1, all, "One next hop of a destination.", destination, nextHop),
        FUNCTION(FIB_InquiryRoutes, okOr1, all, "The next hops of a destination; count: how many are wanted.", destination, nextHops, hopCount),
        Define("FIB6_InquiryRe6", Inquire6, okOr1, "", "The next hop of an IPv6 destination: a stub, always 0."),
        FUNCTION(FIB_AM_PrefixMatch, oneIsYes, "", "Whether a prefix covers another.", prefix, Named("probe", prefix)),
        FUNCTION(FIB_ScanIp4Forward, okNoneOr1, "Fib.ConfigIpv4Fwd", "The next-hop group of a destination.", destination, groupId),
        Define("FIB_ScanNhpGroupNodeValidate", StartGroupScan, okOr1, "Fib.ConfigNhpGroupNode", "Starts a scan of group members; here, ends it too."),
        FUNCTION(FIB_ScanNhpGroupNode, okNoneOr1, "Fib.ConfigNhpGroupNode", "The next-hop indexes of a group: the first, or with multiple 1 all.", groupId, nhpIndexes, Optional("multiple", "1"), Optional("count", "0")),
        FUNCTION(FIB_ScanNhpStd, okNoneOr1, "Fib.ConfigNhpStandard", "The two values of a next hop: its address and its interface.", nhpIndex, firstValue, Named("secondValue", ifIndex)),
    };
}
// clang-format on

}  // namespace shell
