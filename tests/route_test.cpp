// Route inquiry, beside what the model of the joined tables tells: entries and members.
#include <tarnd_qrb/route.h>

#include "calls/calls.h"

namespace {

using namespace calls;
using standin::Row;

constexpr uint32_t Address(uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return a << 24 | b << 16 | c << 8 | d;
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

    static void Group(uint32_t group, uint32_t members)
    {
        for (uint32_t i = 1; i <= members; i++) {
            Insert({Row("Fib.ConfigNhpGroupNode")
                        .Set("nhpGroupId", group)
                        .Set("primaryNhpId", 100 * group + i)});
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

}  // namespace
