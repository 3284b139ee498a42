// Route inquiry: prefix match against a slow model, and what the joined scans come to.
#include <tarnd_qrb/route.h>

#include <random>

#include "calls/calls.h"

namespace {

using namespace calls;
using standin::Row;

constexpr uint32_t Address(uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return a << 24 | b << 16 | c << 8 | d;
}

// Bit by bit, from the left.
bool SlowMatch(const FIB_PREFIX_S& prefix, const FIB_PREFIX_S& probe)
{
    if (prefix.prefixLen > 32 || probe.prefixLen < prefix.prefixLen) {
        return false;
    }
    for (int bit = 0; bit < prefix.prefixLen; bit++) {
        const uint32_t mask = 0x80000000U >> bit;
        if ((prefix.address & mask) != (probe.address & mask)) {
            return false;
        }
    }
    return true;
}

TEST(PrefixMatch, AgreesWithTheSlowModel)
{
    constexpr unsigned seed = 20261124;
    std::mt19937       random(seed);
    const auto below   = [&](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
    int        matches = 0;
    for (int i = 0; i < 200000; i++) {
        // Addresses that share at least their first bits, and lengths around that number.
        const uint32_t     shared  = below(33);
        const uint32_t     address = static_cast<uint32_t>(random());
        const uint32_t     tail    = shared == 32 ? 0 : static_cast<uint32_t>(random()) >> shared;
        const uint32_t     spread  = below(4) == 0 ? 256 : 34;
        const FIB_PREFIX_S prefix  = {address, static_cast<uint8_t>(below(spread))};
        const FIB_PREFIX_S probe   = {address ^ tail,
                                      static_cast<uint8_t>(below(2) == 0 ? 32 : below(spread))};
        ASSERT_EQ(FIB_AM_PrefixMatch(&prefix, &probe), SlowMatch(prefix, probe) ? 1U : 0U)
            << std::hex << "seed " << seed << ": " << prefix.address << "/" << +prefix.prefixLen
            << " " << probe.address << "/" << +probe.prefixLen;
        matches += SlowMatch(prefix, probe) ? 1 : 0;
    }
    EXPECT_GT(matches, 20000);
}

class Route : public support::PlatformTest {
protected:
    static void Forward(uint32_t address, uint32_t prefixLen, uint32_t group)
    {
        Insert({Row("Fib.ConfigIpv4Fwd")
                    .Set("destAddr", address)
                    .Set("prefixLen", prefixLen)
                    .Set("nhpGroupId", group)});
    }

    static void Member(uint32_t group, uint32_t nhpIndex)
    {
        Insert(
            {Row("Fib.ConfigNhpGroupNode").Set("nhpGroupId", group).Set("primaryNhpId", nhpIndex)});
    }

    // A group whose members, and their next hops, are 100 * group + 1 and on.
    static void Group(uint32_t group, uint32_t members)
    {
        for (uint32_t i = 1; i <= members; i++) {
            Member(group, 100 * group + i);
            Insert({Row("Fib.ConfigNhpStandard")
                        .Set("nhpIndex", 100 * group + i)
                        .Set("next_hop", 1000 * group + i)
                        .Set("out_if_index", i)});
        }
    }
};

constexpr char NO_ENTRY[] = "NONE 0 | OrmScanNext ret:0, isEof:1";

TEST_F(Route, FirstCoveringEntryWins)
{
    Forward(Address(192, 168, 0, 0), 40, 1);
    Forward(Address(10, 0, 0, 0), 8, 2);
    Forward(Address(10, 1, 0, 0), 16, 3);
    Forward(Address(172, 16, 0, 0), 0x100 + 12, 4);  // only the low byte counts
    Expect({
        {CALL(FIB_ScanIp4Forward, Address(10, 1, 2, 3), Out32()), "0 2"},
        {CALL(FIB_ScanIp4Forward, Address(172, 31, 0, 1), Out32()), "0 4"},
        {CALL(FIB_ScanIp4Forward, Address(192, 168, 0, 0), Out32()), NO_ENTRY},
        {CALL(FIB_ScanNhpStd, 1U, Out32(), Out32()), "NONE 0 0 | OrmScanNext ret:0, isEof:1"},
    });
    Forward(0, 0, 5);
    Forward(Address(192, 168, 0, 0), 24, 6);
    Expect({{CALL(FIB_ScanIp4Forward, Address(192, 168, 0, 1), Out32()), "0 5"}});
}

TEST_F(Route, GroupMembersAreGatheredBehindThoseThere)
{
    Group(1, 2);
    Group(2, 10);
    uint32_t indexes[9] = {};
    uint32_t count      = 0;
    EXPECT_EQ(FIB_ScanNhpGroupNode(1, indexes, 1, &count), 0U);
    EXPECT_EQ(FIB_ScanNhpGroupNode(2, indexes, 1, &count), 0U);
    EXPECT_EQ(count, 8U);
    EXPECT_EQ(std::vector<uint32_t>(indexes, indexes + 9),
              (std::vector<uint32_t>{101, 102, 201, 202, 203, 204, 205, 206, 0}));
    for (const uint8_t multiple : {uint8_t{0}, uint8_t{1}}) {
        EXPECT_EQ(FIB_ScanNhpGroupNode(3, indexes, multiple, &count), UINT32_MAX);
    }
}

// By destination, capacity and expected number.
TEST_F(Route, InquiriesFindAsManyAsThereAreUpToTheCapacityAndEight)
{
    Forward(Address(10, 0, 0, 0), 8, 1);
    Forward(Address(20, 0, 0, 0), 8, 2);
    Forward(Address(30, 0, 0, 0), 8, 3);
    Forward(Address(40, 0, 0, 0), 8, 4);
    Group(1, 10);
    Group(2, 3);
    Group(3, 1);
    Member(3, 999);
    const struct {
        uint32_t    destination;
        uint32_t    capacity;
        uint32_t    result;
        uint32_t    count;
        uint32_t    filled;
        const char* line;
    } cases[] = {
        {Address(10, 0, 0, 1), 16, 0, 8, 8,
         "FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0"},
        {Address(20, 0, 0, 1), 2, 0, 2, 2, nullptr},
        {Address(20, 0, 0, 1), 3, 0, 3, 3, nullptr},
        {Address(30, 0, 0, 1), 3, 1, 2, 1,
         "FIB_InquiryRoutes: [FIB Inquiry Routes] FIB ScanNhpStd all failed"},
        {Address(40, 0, 0, 1), 3, 1, 3, 0,
         "FIB_InquiryRoutes: [FIB Inquiry Routes] FIB ScanNHPGroupNode failed"},
        {Address(50, 0, 0, 1), 3, 1, 3, 0,
         "FIB_InquiryRoutes: [FIB Inquiry Routes] FIB ScanIp4Forward failed"},
    };
    for (const auto& c : cases) {
        const FIB_KEY_S key          = {{1, 2}, c.destination};
        FIB_NHP_S       nextHops[16] = {};
        for (FIB_NHP_S& nextHop : nextHops) {
            nextHop = {7, 7, {7, 7, 7, 7, 7}};
        }
        uint32_t       count = c.capacity;
        const uint32_t group = (c.destination >> 24) / 10;
        EXPECT_EQ(FIB_InquiryRoutes(&key, nextHops, &count), c.result);
        EXPECT_EQ(count, c.count);
        for (uint32_t i = 0; i < 16; i++) {
            const bool missing = i == 1 && group == 3;
            EXPECT_EQ(nextHops[i].firstValue, i < c.filled ? 1000 * group + i + 1
                                              : missing    ? 0
                                                           : 7);
            EXPECT_EQ(nextHops[i].secondValue, i < c.filled ? i + 1 : missing ? 0 : 7);
            EXPECT_EQ(nextHops[i].reserved_8[i % 5], 7U);
        }
        const Lines lines = support::TakeMessages();
        EXPECT_TRUE(c.line == nullptr || lines.back() == c.line) << c.line;

        EXPECT_EQ(FIB_InquiryRoute(&key, nextHops), group == 3 ? 0 : c.result);
        support::TakeMessages();
    }
}

}  // namespace
