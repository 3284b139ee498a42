// Route inquiry: prefix match against a slow model, the three scans, and what joins them.
#include <tarnd_qrb/route.h>

#include <random>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t NONE = 0xFFFFFFFF;

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
    static void Insert(const standin::Row& row)
    {
        standin::Transaction write;
        write.Insert(row);
        write.Commit();
    }

    static void Forward(uint32_t address, uint32_t prefixLen, uint32_t group)
    {
        Insert(standin::Row("Fib.ConfigIpv4Fwd")
                   .Set("destAddr", address)
                   .Set("prefixLen", prefixLen)
                   .Set("nhpGroupId", group));
    }

    static void Member(uint32_t group, uint32_t nhpIndex)
    {
        Insert(standin::Row("Fib.ConfigNhpGroupNode")
                   .Set("nhpGroupId", group)
                   .Set("primaryNhpId", nhpIndex));
    }

    static void NextHop(uint32_t nhpIndex, uint32_t first, uint32_t second)
    {
        Insert(standin::Row("Fib.ConfigNhpStandard")
                   .Set("nhpIndex", nhpIndex)
                   .Set("next_hop", first)
                   .Set("out_if_index", second));
    }

    // A group whose members, and their next hops, are 100 * group + 1 and on.
    static void Group(uint32_t group, uint32_t members)
    {
        for (uint32_t i = 1; i <= members; i++) {
            Member(group, 100 * group + i);
            NextHop(100 * group + i, 1000 * group + i, i);
        }
    }

    static uint32_t GroupOf(uint32_t destination)
    {
        uint32_t       group = 77;
        const uint32_t ret   = FIB_ScanIp4Forward(destination, &group);
        EXPECT_EQ(ret, group != 0 ? 0 : NONE);
        return group;
    }
};

TEST_F(Route, FirstCoveringEntryWins)
{
    Forward(Address(192, 168, 0, 0), 40, 1);
    Forward(Address(10, 0, 0, 0), 8, 2);
    Forward(Address(10, 1, 0, 0), 16, 3);
    Forward(Address(172, 16, 0, 0), 0x100 + 12, 4);  // only the low byte counts
    EXPECT_EQ(GroupOf(Address(10, 1, 2, 3)), 2U);
    EXPECT_EQ(GroupOf(Address(172, 31, 0, 1)), 4U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(GroupOf(Address(192, 168, 0, 0)), 0U);
    EXPECT_EQ(TakeMessages(), Messages{"FIB_ScanIp4Forward: OrmScanNext ret:0, isEof:1"});
    Forward(0, 0, 5);
    Forward(Address(192, 168, 0, 0), 24, 6);
    EXPECT_EQ(GroupOf(Address(192, 168, 0, 1)), 5U);
}

TEST_F(Route, ForwardScanStopsSilentlyOnAFieldAndIgnoresTheGroupsOwnRead)
{
    Forward(Address(10, 0, 0, 0), 8, 2);
    Forward(0, 0, 3);
    constexpr uint32_t destination = Address(10, 1, 1, 1);
    for (const unsigned field : {1U, 2U}) {
        FailCall("OrmGetFieldById", field, 9);
        EXPECT_EQ(GroupOf(destination), 0U);
    }
    uint32_t group = 77;
    FailCall("OrmGetFieldById", 3, 9);
    EXPECT_EQ(FIB_ScanIp4Forward(destination, &group), 0U);
    EXPECT_EQ(group, 0U);
    EXPECT_TRUE(TakeLog().empty());
    FailCall("OrmScanNext", 1, 9);
    EXPECT_EQ(GroupOf(destination), 0U);
    EXPECT_EQ(TakeMessages(), Messages{"FIB_ScanIp4Forward: OrmScanNext ret:9, isEof:0"});
}

TEST_F(Route, ScansThatCannotStartAnswerOneAndWriteNothing)
{
    for (const char* operation : {"OrmOpenSessionByDefault", "OrmPrepare", "OrmScanStart"}) {
        uint32_t first  = 77;
        uint32_t second = 78;
        uint32_t count  = 0;
        FailCall(operation, 1, 9);
        EXPECT_EQ(FIB_ScanIp4Forward(1, &first), 1U);
        FailCall(operation, 1, 9);
        EXPECT_EQ(FIB_ScanNhpStd(1, &first, &second), 1U);
        EXPECT_TRUE(TakeLog().empty());
        FailCall(operation, 1, 9);
        EXPECT_EQ(FIB_ScanNhpGroupNode(1, &first, 1, &count), 1U);
        EXPECT_EQ(TakeMessages(), Messages{"FIB_ScanNhpGroupNode: scan nhp group node failed"});
        EXPECT_EQ(first, 77U);
        EXPECT_EQ(second, 78U);

        ORM_SESSION session = 5;
        ORM_SCAN    scan    = 5;
        FailCall(operation, 1, 9);
        EXPECT_EQ(FIB_ScanNhpGroupNodeValidate(&session, &scan), 1U);
        EXPECT_EQ(session, 0U);
        EXPECT_EQ(scan, 0U);
    }
    ORM_SESSION session = 0;
    ORM_SCAN    scan    = 0;
    ASSERT_EQ(FIB_ScanNhpGroupNodeValidate(&session, &scan), 0U);
    EXPECT_EQ(OrmScanEnd(session, scan), 0U);
    EXPECT_EQ(OrmCloseSession(session), 0U);
}

TEST_F(Route, GroupMembersAreGatheredBehindThoseThere)
{
    const std::string end = "FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0";
    Group(1, 2);
    Group(2, 10);
    uint32_t indexes[9] = {};
    uint32_t count      = 0;
    EXPECT_EQ(FIB_ScanNhpGroupNode(2, indexes, 0, &count), 0U);
    EXPECT_EQ(indexes[0], 201U);
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(TakeLog().empty());

    EXPECT_EQ(FIB_ScanNhpGroupNode(1, indexes, 1, &count), 0U);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(FIB_ScanNhpGroupNode(2, indexes, 1, &count), 0U);
    EXPECT_EQ(count, 8U);
    EXPECT_EQ(indexes[1], 102U);
    EXPECT_EQ(indexes[2], 201U);
    EXPECT_EQ(indexes[7], 206U);
    EXPECT_EQ(indexes[8], 0U);
    EXPECT_EQ(TakeMessages(), Messages(2, end));

    for (const uint8_t multiple : {uint8_t{0}, uint8_t{1}}) {
        EXPECT_EQ(FIB_ScanNhpGroupNode(3, indexes, multiple, &count), NONE);
        EXPECT_EQ(TakeMessages(), Messages{end});
    }
}

TEST_F(Route, AGroupScanThatStopsOnAnErrorKeepsWhatItFound)
{
    Group(1, 3);
    const std::string self       = "FIB_ScanNhpGroupNode: ";
    uint32_t          indexes[8] = {};
    uint32_t          count      = 0;
    FailCall("OrmGetFieldById", 3, 9);
    EXPECT_EQ(FIB_ScanNhpGroupNode(1, indexes, 1, &count), NONE);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(indexes[0], 101U);
    FailCall("OrmGetFieldById", 2, 9);
    EXPECT_EQ(FIB_ScanNhpGroupNode(1, indexes, 0, &count), NONE);
    FailCall("OrmScanNext", 1, 9);
    EXPECT_EQ(FIB_ScanNhpGroupNode(1, indexes, 0, &count), NONE);
    EXPECT_EQ(TakeMessages(),
              (Messages{self + "Ormg Fib Config Nhp Group Node Get Nhp GroupId ret:9",
                        self + "Ormg Fib Config Nhp Group Node Get Primary NhpId ret:9",
                        self + "OrmScanNext ret:9, isEof:0. session: 0, scan: 0"}));
}

TEST_F(Route, NextHopByIndex)
{
    NextHop(1, 11, 12);
    NextHop(2, 21, 22);
    uint32_t first  = 77;
    uint32_t second = 78;
    EXPECT_EQ(FIB_ScanNhpStd(2, &first, &second), 0U);
    EXPECT_EQ(first, 21U);
    EXPECT_EQ(second, 22U);
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(FIB_ScanNhpStd(3, &first, &second), NONE);
    EXPECT_EQ(first, 0U);
    EXPECT_EQ(second, 0U);
    FailCall("OrmGetFieldById", 1, 9);
    EXPECT_EQ(FIB_ScanNhpStd(2, &first, &second), NONE);
    EXPECT_EQ(TakeMessages(),
              (Messages{"FIB_ScanNhpStd: OrmScanNext ret:0, isEof:1",
                        "FIB_ScanNhpStd: Ormg Fib Config Nhp Standard Get NhpIndex ret:9"}));
}

TEST_F(Route, OneNextHopOfADestination)
{
    Forward(Address(10, 0, 0, 0), 8, 1);
    Forward(Address(20, 0, 0, 0), 8, 2);
    Forward(Address(30, 0, 0, 0), 8, 3);
    Group(1, 2);
    Member(2, 999);

    FIB_KEY_S key     = {{1, 2}, Address(10, 9, 9, 9)};
    FIB_NHP_S nextHop = {7, 7, {7, 7, 7, 7, 7}};
    EXPECT_EQ(FIB_InquiryRoute(&key, &nextHop), 0U);
    EXPECT_EQ(nextHop.firstValue, 1001U);
    EXPECT_EQ(nextHop.secondValue, 1U);
    for (const uint32_t untouched : nextHop.reserved_8) {
        EXPECT_EQ(untouched, 7U);
    }
    EXPECT_TRUE(TakeLog().empty());

    key.destAddr = Address(20, 0, 0, 1);
    EXPECT_EQ(FIB_InquiryRoute(&key, &nextHop), 1U);
    EXPECT_EQ(nextHop.firstValue, 0U);
    EXPECT_EQ(nextHop.secondValue, 0U);
    key.destAddr = Address(30, 0, 0, 1);
    EXPECT_EQ(FIB_InquiryRoute(&key, &nextHop), 1U);
    key.destAddr = Address(40, 0, 0, 1);
    EXPECT_EQ(FIB_InquiryRoute(&key, &nextHop), 1U);
    EXPECT_EQ(FIB_InquiryRoute(nullptr, &nextHop), 1U);
    EXPECT_EQ(FIB_InquiryRoute(&key, nullptr), 1U);
    const std::string self = "FIB_InquiryRoute: [FIB Inquiry Route] ";
    EXPECT_EQ(
        TakeMessages(),
        (Messages{"FIB_ScanNhpStd: OrmScanNext ret:0, isEof:1", self + "FIB ScanNhpStd failed",
                  "FIB_ScanNhpGroupNode: OrmScanNext ret:0, isEof:1. session: 0, scan: 0",
                  self + "FIB ScanNHPGroupNode single failed",
                  "FIB_ScanIp4Forward: OrmScanNext ret:0, isEof:1",
                  self + "FIB ScanIp4Forward failed", self + "parameter failed",
                  self + "parameter failed"}));
}

TEST_F(Route, SeveralNextHopsUpToTheCapacityAndEight)
{
    Forward(Address(10, 0, 0, 0), 8, 1);
    Forward(Address(20, 0, 0, 0), 8, 2);
    Group(1, 10);
    Group(2, 3);
    const auto inquire = [](uint32_t destination, uint32_t capacity) {
        const FIB_KEY_S        key = {{0, 0}, destination};
        std::vector<FIB_NHP_S> nextHops(capacity + 1, FIB_NHP_S{7, 7, {7, 7, 7, 7, 7}});
        uint32_t               count = capacity;
        EXPECT_EQ(FIB_InquiryRoutes(&key, nextHops.data(), &count), 0U);
        EXPECT_EQ(nextHops[count].firstValue, 7U);
        nextHops.resize(count);
        return nextHops;
    };
    const auto eight = inquire(Address(10, 0, 0, 1), 16);
    ASSERT_EQ(eight.size(), 8U);
    for (uint32_t i = 0; i < 8; i++) {
        EXPECT_EQ(eight[i].firstValue, 1001U + i);
        EXPECT_EQ(eight[i].secondValue, 1U + i);
        EXPECT_EQ(eight[i].reserved_8[0], 7U);
    }
    EXPECT_EQ(inquire(Address(20, 0, 0, 1), 2).size(), 2U);
    EXPECT_EQ(inquire(Address(20, 0, 0, 1), 3).size(), 3U);
}

TEST_F(Route, SeveralNextHopsFailWithTheFirstMissingOne)
{
    Forward(Address(10, 0, 0, 0), 8, 1);
    Forward(Address(20, 0, 0, 0), 8, 2);
    Group(1, 1);
    Member(1, 999);
    FIB_KEY_S key         = {{0, 0}, Address(10, 0, 0, 1)};
    FIB_NHP_S nextHops[3] = {};
    uint32_t  count       = 3;
    EXPECT_EQ(FIB_InquiryRoutes(&key, nextHops, &count), 1U);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(nextHops[0].firstValue, 1001U);
    const std::string self = "FIB_InquiryRoutes: [FIB Inquiry Routes] ";
    EXPECT_EQ(TakeMessages().back(), self + "FIB ScanNhpStd all failed");
    key.destAddr = Address(20, 0, 0, 1);
    EXPECT_EQ(FIB_InquiryRoutes(&key, nextHops, &count), 1U);
    EXPECT_EQ(TakeMessages().back(), self + "FIB ScanNHPGroupNode failed");
    key.destAddr = Address(30, 0, 0, 1);
    EXPECT_EQ(FIB_InquiryRoutes(&key, nextHops, &count), 1U);
    EXPECT_EQ(TakeMessages().back(), self + "FIB ScanIp4Forward failed");

    uint32_t none = 0;
    EXPECT_EQ(FIB_InquiryRoutes(&key, nextHops, &none), 1U);
    EXPECT_EQ(FIB_InquiryRoutes(nullptr, nextHops, &count), 1U);
    EXPECT_EQ(FIB_InquiryRoutes(&key, nullptr, nullptr), 1U);
    EXPECT_EQ(TakeMessages(),
              (Messages{self + "parameter failed, pstFibKey:0, pstFibNhp:0, count:0",
                        self + "parameter failed, pstFibKey:1, pstFibNhp:0, count:0",
                        self + "parameter failed, pstFibKey:0, pstFibNhp:1, count:1"}));
}

TEST_F(Route, Ipv6IsAStub)
{
    EXPECT_EQ(FIB6_InquiryRe6(nullptr, nullptr), 0U);
    EXPECT_EQ(TakeMessages(), Messages{"FIB6_InquiryRe6: STUB for FIB6_InquiryRe6\n"});
}

}  // namespace
