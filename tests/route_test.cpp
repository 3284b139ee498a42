// Route inquiry, beside what the model of the joined tables tells: what is logged where nothing
// covers, and members behind those that are there.
#include "calls/records.h"

namespace {

using namespace calls;

using Route = DeviceTest;

TEST_F(Route, TheEndOfATableIsLogged)
{
    Expect({
        {CALL(FIB_ScanIp4Forward, 0x0B000000U, Out32()), "NONE 0 | OrmScanNext ret:0, isEof:1"},
        {CALL(FIB_ScanNhpStd, 1U, Out32(), Out32()), "NONE 0 0 | OrmScanNext ret:0, isEof:1"},
    });
}

TEST_F(Route, GroupMembersAreGatheredBehindThoseThere)
{
    for (const char* member : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
        Load(Fill(R"({"Fib.ConfigNhpGroupNode": [{"nhpGroupId": 2, "primaryNhpId": 20$}]})",
                  {{"$", member}}));
    }
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
