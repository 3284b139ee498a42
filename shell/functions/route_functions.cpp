// Route inquiry.
#include <tarnd_qrb/route.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

constexpr uint32_t MOST_HOPS = 16;

uint32_t Inquire6()
{
    return FIB6_InquiryRe6(nullptr, nullptr);
}

// The scan stays open during the call.
uint32_t StartGroupScan()
{
    ORM_SESSION session = 0;
    ORM_SCAN scan = 0;
    const uint32_t ret = FIB_ScanNhpGroupNodeValidate(&session, &scan);
    OrmScanEnd(session, scan);
    OrmCloseSession(session);
    return ret;
}

constexpr Argument DESTINATION{
    .name = "destination", .form = Form::Ipv4, .table = "Fib.ConfigIpv4Fwd", .field = "destAddr"};
constexpr Argument NEXT_HOP{.name = "nextHop"};
constexpr Argument NEXT_HOPS{.name = "nextHops", .size = MOST_HOPS};
constexpr Argument HOP_COUNT{.name = "count", .highest = MOST_HOPS, .fallback = "8"};
constexpr Argument PREFIX{.name = "prefix", .form = Form::Ipv4};
constexpr Argument GROUP_ID{
    .name = "groupId", .table = "Fib.ConfigNhpGroupNode", .field = "nhpGroupId"};
constexpr Argument NHP_INDEX{
    .name = "nhpIndex", .table = "Fib.ConfigNhpStandard", .field = "nhpIndex"};
constexpr Argument NHP_INDEXES{.name = "nhpIndexes", .size = FIB_GROUP_MEMBERS_MAX};
constexpr Argument NEXT_HOP_ADDRESS{.name = "nextHop", .form = Form::Ipv4};

}  // namespace

// clang-format off
std::vector<Function> RouteFunctions()
{
    using namespace arguments;
    constexpr auto ALL = "Fib.ConfigIpv4Fwd, Fib.ConfigNhpGroupNode, Fib.ConfigNhpStandard";
    return {
        FUNCTION(FIB_InquiryRoute, OK_OR1, ALL, "One next hop of a destination.", DESTINATION, NEXT_HOP),
        FUNCTION(FIB_InquiryRoutes, OK_OR1, ALL, "The next hops of a destination; count: the maximum number.", DESTINATION, NEXT_HOPS, HOP_COUNT),
        Define("FIB6_InquiryRe6", Inquire6, OK_OR1, "", "The next hop of an IPv6 destination: a stub, always 0."),
        FUNCTION(FIB_AM_PrefixMatch, ONE_IS_YES, "", "Whether a prefix contains another.", PREFIX, Named("probe", PREFIX)),
        FUNCTION(FIB_ScanIp4Forward, OK_NONE_OR1, "Fib.ConfigIpv4Fwd", "The next-hop group of a destination.", DESTINATION, GROUP_ID),
        Define("FIB_ScanNhpGroupNodeValidate", StartGroupScan, OK_OR1, "Fib.ConfigNhpGroupNode", "Starts a scan of group members; the shell ends it again."),
        FUNCTION(FIB_ScanNhpGroupNode, OK_NONE_OR1, "Fib.ConfigNhpGroupNode", "The next-hop indexes of a group: the first, or with multiple 1 all.", GROUP_ID, NHP_INDEXES, Optional("multiple", "1"), Optional("count", "0")),
        FUNCTION(FIB_ScanNhpStd, OK_NONE_OR1, "Fib.ConfigNhpStandard", "The address and the interface of a next hop.", NHP_INDEX, NEXT_HOP_ADDRESS, IF_INDEX),
    };
}
// clang-format on

}  // namespace shell
