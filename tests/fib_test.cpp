// Route inquiry.
#include <tarnd_qrb/route.h>

#include "support/example_calls.h"
#include "support/test_rows.h"

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

using RouteInquiry = DeviceTest;
using support::writes::Insert;
using support::writes::Write;

// clang-format off
TEST_F(RouteInquiry, LogsEndsAndNullAndAppendsMembers)
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

using RouteTables = support::PlatformTest;

// Group 2 has ten members, of which eight are used; next hop 112 is missing. Only the low byte of a
// prefix length is used.
TEST_F(RouteTables, FirstCoveringEntryWins)
{
    Load(R"({
        "Fib.ConfigIpv4Fwd": [
            {"destAddr": "10.1.2.3", "prefixLen": 33, "nhpGroupId": 9},
            {"destAddr": "10.1.2.2", "prefixLen": 32, "nhpGroupId": 9},
            {"destAddr": "10.1.0.0", "prefixLen": 16, "nhpGroupId": 1},
            {"destAddr": "10.1.2.3", "prefixLen": 32, "nhpGroupId": 9},
            {"destAddr": "11.0.0.0", "prefixLen": 264, "nhpGroupId": 3},
            {"destAddr": "12.0.0.0", "prefixLen": 31, "nhpGroupId": 4},
            {"destAddr": "0.0.0.0", "prefixLen": 0, "nhpGroupId": 2}],
        "Fib.ConfigNhpGroupNode": [
            {"nhpGroupId": 1, "primaryNhpId": 101}, {"nhpGroupId": 3, "primaryNhpId": 112}, {"nhpGroupId": 1, "primaryNhpId": 112}, {"nhpGroupId": 1, "primaryNhpId": 102},
            {"nhpGroupId": 2, "primaryNhpId": 101}, {"nhpGroupId": 2, "primaryNhpId": 102}, {"nhpGroupId": 2, "primaryNhpId": 103}, {"nhpGroupId": 2, "primaryNhpId": 104},
            {"nhpGroupId": 2, "primaryNhpId": 105}, {"nhpGroupId": 2, "primaryNhpId": 106}, {"nhpGroupId": 2, "primaryNhpId": 107}, {"nhpGroupId": 2, "primaryNhpId": 108},
            {"nhpGroupId": 2, "primaryNhpId": 109}, {"nhpGroupId": 2, "primaryNhpId": 110}],
        "Fib.ConfigNhpStandard": [
            {"nhpIndex": 101, "next_hop": "0.0.0.1", "out_if_index": 1}, {"nhpIndex": 102, "next_hop": "0.0.0.2", "out_if_index": 2}, {"nhpIndex": 103, "next_hop": "0.0.0.3", "out_if_index": 3},
            {"nhpIndex": 104, "next_hop": "0.0.0.4", "out_if_index": 4}, {"nhpIndex": 105, "next_hop": "0.0.0.5", "out_if_index": 5}, {"nhpIndex": 106, "next_hop": "0.0.0.6", "out_if_index": 6},
            {"nhpIndex": 107, "next_hop": "0.0.0.7", "out_if_index": 7}, {"nhpIndex": 108, "next_hop": "0.0.0.8", "out_if_index": 8}, {"nhpIndex": 109, "next_hop": "0.0.0.9", "out_if_index": 9}]})");
    static constexpr FIB_KEY_S low = {{0, 0}, 0x0B020304};
    static constexpr FIB_KEY_S other = {{0, 0}, 0x0D000001};
    using OutTenNextHops = Out<FIB_NHP_S, 10, &FIB_NHP_S::secondValue>;
    Expect({
        {CALL(FIB_ScanIp4Forward, DESTINATION, Out32()), "0 1"},
        {CALL(FIB_ScanIp4Forward, 0x0B020304U, Out32()), "0 3"},
        {CALL(FIB_ScanIp4Forward, 0x0C000001U, Out32()), "0 4"},
        {CALL(FIB_ScanIp4Forward, 0x0C000002U, Out32()), "0 2"},
        {CALL(FIB_InquiryRoute, &KEY, OutNextHops()), "0 1 1 - -"},
        {CALL(FIB_InquiryRoute, &low, OutNextHops()), "1 0 0 - - | FIB_ScanNhpStd: OrmScanNext ret:0, isEof:1 | [FIB Inquiry Route] FIB ScanNhpStd failed"},
        {CALL(FIB_InquiryRoutes, &KEY, OutTenNextHops(), Out32{10}), "1 1 0 - - - - - - - - 3 | FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0 | FIB_ScanNhpStd: OrmScanNext ret:0, isEof:1 | [FIB Inquiry Routes] FIB ScanNhpStd all failed"},
        {CALL(FIB_InquiryRoutes, &KEY, OutTenNextHops(), Out32{1}), "0 1 - - - - - - - - - 1 | FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
        {CALL(FIB_InquiryRoutes, &other, OutTenNextHops(), Out32{10}), "0 1 2 3 4 5 6 7 8 - - 8 | FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
        {CALL(FIB_InquiryRoutes, &other, OutTenNextHops(), Out32{3}), "0 1 2 3 - - - - - - - 3 | FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
    });
}

TEST_F(RouteTables, PrefixMatchComparesTheLeadingBitsOfTheShorterPrefix)
{
    const struct {
        FIB_PREFIX_S prefix;
        FIB_PREFIX_S probe;
        bool matches;
    } rows[] = {
        {{0x0A010203, 0}, {0xF5FEFDFC, 0}, true},    {{0x0A010203, 32}, {0x0A010203, 32}, true},
        {{0x0A010203, 32}, {0x0A010202, 32}, false}, {{0x0A010203, 31}, {0x0A010202, 32}, true},
        {{0x0A010203, 31}, {0x0A010201, 32}, false}, {{0x0A010203, 33}, {0x0A010203, 33}, false},
        {{0x0A010203, 255}, {0x0A010203, 255}, false}, {{0x0A010203, 24}, {0x0A010203, 23}, false},
        {{0x0A010203, 1}, {0x8A010203, 32}, false},  {{0x0A010203, 8}, {0x0A800000, 255}, true},
    };
    for (const auto& [prefix, probe, matches] : rows) {
        EXPECT_EQ(FIB_AM_PrefixMatch(&prefix, &probe) != 0, matches)
            << Text(prefix.address) << "/" << +prefix.prefixLen << ", " << Text(probe.address);
    }
}
// clang-format on

}  // namespace

}  // namespace calls
