// Route inquiry.
#include <tarnd_qrb/route.h>

#include "support/example_calls.h"
#include "support/test_writes.h"

namespace calls {

namespace {

constexpr uint32_t DESTINATION = 0x0A010203;
constexpr FIB_KEY_S KEY = {{0, 0}, DESTINATION};
constexpr FIB_PREFIX_S PREFIX = {0x0A000000, 8};
constexpr FIB_PREFIX_S PROBE = {DESTINATION, 32};

using OutIndexes = Out<uint32_t, 2>;
using OutNextHops = Out<FIB_NHP_S, 2, &FIB_NHP_S::firstValue, &FIB_NHP_S::secondValue>;

}  // namespace

// clang-format off
Calls RouteCalls()
{
    return {
        {CALL(FIB_ScanIp4Forward, DESTINATION, Out32()), "0 1"},
        {CALL(FIB_ScanNhpGroupNodeValidate, OutSession(), OutScan()), "0 open open", {}, Closed},
        {CALL_AS(", first member", FIB_ScanNhpGroupNode, 1U, OutIndexes(), uint8_t{0}, Out32()), "0 101 - -"},
        {CALL_AS(", all members", FIB_ScanNhpGroupNode, 1U, OutIndexes(), uint8_t{1}, Out32{0}), "0 101 102 2 | OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
        {CALL(FIB_ScanNhpStd, 101U, Out32(), Out32()), "0 1001 1"},
        {CALL(FIB_InquiryRoute, &KEY, OutNextHops()), "0 1001 1 - -"},
        {CALL(FIB_InquiryRoutes, &KEY, OutNextHops(), Out32{3}), "0 1001 1 1002 2 2 | FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
        {CALL(FIB_AM_PrefixMatch, &PREFIX, &PROBE), "1"},
        {CALL(FIB6_InquiryRe6, nullptr, nullptr), R"(0 | STUB for FIB6_InquiryRe6\n)"},
    };
}
// clang-format on

namespace {

using Route = DeviceTest;
using support::writes::Insert;
using support::writes::Write;

// clang-format off
TEST_F(Route, EndsAndNullAreLoggedAndMembersGatheredBehindThoseThere)
{
    for (uint64_t member = 201; member < 209; member++) {
        Write(Insert, {standin::Row("Fib.ConfigNhpGroupNode").Set("nhpGroupId", 2).Set("primaryNhpId", member)});
    }
    Expect({
        {CALL(FIB_ScanIp4Forward, 0x0B000000U, Out32()), "NONE 0 | OrmScanNext ret:0, isEof:1"},
        {CALL(FIB_ScanNhpStd, 1U, Out32(), Out32()), "NONE 0 0 | OrmScanNext ret:0, isEof:1"},
        {CALL(FIB_InquiryRoute, nullptr, OutNextHops()), "1 - - - - | [FIB Inquiry Route] parameter failed"},
        {CALL(FIB_InquiryRoute, &KEY, nullptr), "1 | [FIB Inquiry Route] parameter failed"},
        {CALL(FIB_InquiryRoutes, nullptr, OutNextHops(), Out32{1}), "1 - - - - 1 | [FIB Inquiry Routes] parameter failed, pstFibKey:1, pstFibNhp:0, count:0"},
        {CALL(FIB_InquiryRoutes, &KEY, nullptr, Out32{1}), "1 1 | [FIB Inquiry Routes] parameter failed, pstFibKey:0, pstFibNhp:1, count:0"},
        {CALL(FIB_InquiryRoutes, &KEY, OutNextHops(), nullptr), "1 - - - - | [FIB Inquiry Routes] parameter failed, pstFibKey:0, pstFibNhp:0, count:1"},
        {CALL(FIB_InquiryRoutes, &KEY, OutNextHops(), Out32{0}), "1 - - - - 0 | [FIB Inquiry Routes] parameter failed, pstFibKey:0, pstFibNhp:0, count:0"},
        {CALL(FIB_ScanNhpGroupNode, 2U, Out<uint32_t, 9>(), uint8_t{1}, Out32{2}), "0 - - 201 202 203 204 205 206 - 8 | OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
        {CALL(FIB_ScanNhpGroupNode, 3U, OutIndexes(), uint8_t{0}, Out32{0}), "NONE - - 0 | OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
        {CALL(FIB_ScanNhpGroupNode, 3U, OutIndexes(), uint8_t{1}, Out32{0}), "NONE - - 0 | OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
    });
}
// clang-format on

}  // namespace

}  // namespace calls
