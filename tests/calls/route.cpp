// Route inquiry. The second forwarding entry covers the destination and leads to group 1, of which
// the second and the third member are; the first of them has the second next hop, and the other way
// round.
#include <tarnd_qrb/route.h>

#include "calls/calls.h"

namespace calls {

namespace {

constexpr uint32_t     DESTINATION = 0x0A010203;
constexpr FIB_KEY_S    KEY         = {{0, 0}, DESTINATION};
constexpr FIB_PREFIX_S PREFIX      = {0x0A000000, 8};
constexpr FIB_PREFIX_S PROBE       = {DESTINATION, 32};

using OutIndexes  = Out<uint32_t, 2>;
using OutNextHops = Out<FIB_NHP_S, 2, &FIB_NHP_S::firstValue, &FIB_NHP_S::secondValue>;

// clang-format off
// An inquiry up to the group's members, in its first two sessions.
constexpr char TO_MEMBERS[] = R"(
    end       =
    close     =
    behind    [$inquiry] FIB ScanNHPGroupNode $failing
    field#5@1 $failed | FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0
    within    FIB_ScanNhpGroupNode@2 $failed
    behind    [$inquiry] FIB ScanIp4Forward failed
    within    FIB_ScanIp4Forward@1 $failed
    reporter  FIB_ScanNhpStd
    behind    -)";

}  // namespace

Calls RouteCalls()
{
    return {
        // Whether the group's id or the next hop's values can be read, nobody asks.
        {CALL(FIB_ScanIp4Forward, DESTINATION, Out32()), R"(0 1
            next      NONE 0 | OrmScanNext ret:%, isEof:0
            field#5   0 0
            field     NONE 0
            end       =
            close     =
            any       1 -)"},
        {CALL(FIB_ScanNhpGroupNodeValidate, OutSession(), OutScan()), R"(0 open open
            any       1 closed closed)", {}, Closed},
        {CALL(FIB_ScanNhpGroupNode, 1U, OutIndexes(), uint8_t{0}, Out32()), R"(0 101 - -
            next      NONE - - - | OrmScanNext ret:%, isEof:0. session: 0, scan: 0
            field#3   NONE - - - | Ormg Fib Config Nhp Group Node Get Primary NhpId ret:%
            field     NONE - - - | Ormg Fib Config Nhp Group Node Get Nhp GroupId ret:%
            end       =
            close     =
            any       1 - - - | scan nhp group node failed)"},
        {CALL(FIB_ScanNhpGroupNode, 1U, OutIndexes(), uint8_t{1}, Out32{0}), R"(0 101 102 2 | OrmScanNext ret:0, isEof:1. session: 0, scan: 0
            next#1-2  NONE - - 0     | OrmScanNext ret:%, isEof:0. session: 0, scan: 0
            next#3    NONE 101 - 1   | OrmScanNext ret:%, isEof:0. session: 0, scan: 0
            next#4    NONE 101 102 2 | OrmScanNext ret:%, isEof:0. session: 0, scan: 0
            field#3   NONE - - 0     | Ormg Fib Config Nhp Group Node Get Primary NhpId ret:%
            field#4   NONE 101 - 1   | Ormg Fib Config Nhp Group Node Get Nhp GroupId ret:%
            field#5   NONE 101 - 1   | Ormg Fib Config Nhp Group Node Get Primary NhpId ret:%
            field     NONE - - 0     | Ormg Fib Config Nhp Group Node Get Nhp GroupId ret:%
            end       =
            close     =
            any       1 - - 0 | scan nhp group node failed)"},
        {CALL(FIB_ScanNhpStd, 101U, Out32(), Out32()), R"(0 1001 1
            next      NONE 0 0 | OrmScanNext ret:%, isEof:0
            field#3   0 0 1
            field#4   0 1001 0
            field     NONE 0 0 | Ormg Fib Config Nhp Standard Get NhpIndex ret:%
            end       =
            close     =
            any       1 - -)"},
        {CALL(FIB_InquiryRoute, &KEY, OutNextHops()), "0 1001 1 - -" + Fill(TO_MEMBERS, {
            {"$inquiry", "FIB Inquiry Route"}, {"$failing", "single failed"}, {"$failed", "1 - - - -"}}) + R"(
            field#3   0 0 1 - -
            field#4   0 1001 0 - -
            behind    [FIB Inquiry Route] FIB ScanNhpStd failed
            next      1 0 0 - - | OrmScanNext ret:%, isEof:0
            field     1 0 0 - - | Ormg Fib Config Nhp Standard Get NhpIndex ret:%
            any       1 - - - -)"},
        // The end of the members is logged, so it stands before what fails in the sessions behind.
        {CALL(FIB_InquiryRoutes, &KEY, OutNextHops(), Out32{3}), Fill(
            R"(0 1001 1 1002 2 2 | $ended
            field#5@2 $failed | FIB_ScanNhpGroupNode: Ormg Fib Config Nhp Group Node Get Primary NhpId ret:% | [$inquiry] FIB ScanNHPGroupNode $failing)" + std::string(TO_MEMBERS) + R"(
            field#3@3 0 0 1 1002 2 2    | $ended
            field#4@3 0 1001 0 1002 2 2 | $ended
            field#2@4 0 1001 1 0 2 2    | $ended
            field#3@4 0 1001 1 1002 0 2 | $ended
            behind    [FIB Inquiry Routes] FIB ScanNhpStd all failed
            next@3    1 0 0 - - 2       | $ended | OrmScanNext ret:%, isEof:0
            field@3   1 0 0 - - 2       | $ended | Ormg Fib Config Nhp Standard Get NhpIndex ret:%
            any@3     1 - - - - 2       | $ended
            next@4    1 1001 1 0 0 2    | $ended | OrmScanNext ret:%, isEof:0
            field@4   1 1001 1 0 0 2    | $ended | Ormg Fib Config Nhp Standard Get NhpIndex ret:%
            any@4     1 1001 1 - - 2    | $ended)", {
            {"$ended", "FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
            {"$inquiry", "FIB Inquiry Routes"}, {"$failing", "failed"}, {"$failed", "1 - - - - 3"}})},
        {CALL(FIB_AM_PrefixMatch, &PREFIX, &PROBE), "1"},
        {CALL(FIB6_InquiryRe6, nullptr, nullptr), "0 | STUB for FIB6_InquiryRe6\\n"},
    };
}
// clang-format on

namespace {

using Route = DeviceTest;

// clang-format off
TEST_F(Route, EndsAndNullAreLoggedAndMembersGatheredBehindThoseThere)
{
    for (const char* member : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
        Load(Fill(R"({"Fib.ConfigNhpGroupNode": [{"nhpGroupId": 2, "primaryNhpId": 20$}]})", {{"$", member}}));
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
