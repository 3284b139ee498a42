// The walks over interfaces, ports and VLANs: every case for each of the three.
#include <tarnd_qrb/table_walk.h>

#include "calls/calls.h"

namespace {

using support::TakeLog;

struct Walk {
    uint32_t (*first)(uint32_t*);
    uint32_t (*next)(uint32_t*);
    uint32_t (*finish)();
    const char* row;
};

// Each value under a key of its own.
constexpr Walk WALKS[] = {
    {QRB_GetFirstIfIndex, QRB_GetNextIfIndex, QRB_ScanIfIndexFinish,
     R"({"if_base": [{"if_index": $, "if_name": "$"}]})"},
    {QRB_GetFirstPort, QRB_GetNextPort, QRB_ScanPortFinish,
     R"({"port": [{"if_index": $, "port_index": $}]})"},
    {QRB_GetFirstVlan, QRB_GetNextVlan, QRB_ScanVlanFinish,
     R"({"vlan": [{"vlan_scope0": $, "vlan_scope1": 0, "vlan_id": $}]})"},
};

using TableWalk = support::PlatformTest;

TEST_F(TableWalk, YieldsEveryRowOnceAndIsLeftAloneByASecondFirst)
{
    uint32_t value = 0;
    for (const Walk& walk : WALKS) {
        for (const char* row : {"101", "102", "103"}) {
            calls::Load(calls::Fill(walk.row, {{"$", row}}));
        }
        ASSERT_EQ(walk.first(&value), 0U);
    }
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.row);
        support::ResetPlatform();
        EXPECT_EQ(walk.first(&value), 1U);
        EXPECT_TRUE(support::PlatformCalls().empty());
        support::FailCall("OrmScanNext", 1, 9);
        EXPECT_EQ(walk.next(&value), 1U);
        EXPECT_EQ(TakeLog().size(), 1U);
        for (const uint32_t expected : {102U, 103U}) {
            EXPECT_EQ(walk.next(&value), 0U);
            EXPECT_EQ(value, expected);
        }
        EXPECT_EQ(walk.next(&value), 1U);
        EXPECT_EQ(walk.finish(), 0U);
        EXPECT_TRUE(TakeLog().empty());
    }
}

TEST_F(TableWalk, OfAnEmptyTableClosesItself)
{
    uint32_t value  = 77;
    uint16_t narrow = 77;
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.row);
        for (int again = 0; again < 2; again++) {
            EXPECT_EQ(walk.first(&value), 1U);
            EXPECT_EQ(support::PlatformCalls().back(), "OrmCloseSession");
            support::ResetPlatform();
        }
    }
    EXPECT_EQ(value, 77U);
    EXPECT_EQ(L2IF_GetFirstVlan(&narrow), 1U);
    EXPECT_EQ(narrow, 0U);
    EXPECT_TRUE(TakeLog().empty());
}

}  // namespace
