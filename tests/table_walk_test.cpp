// The walks over interfaces, ports and VLANs: every case for each of the three.
#include <tarnd_qrb/table_walk.h>

#include "calls/calls.h"

namespace {

using standin::Row;
using support::TakeLog;

using Values = std::vector<uint32_t>;

struct Walk {
    uint32_t (*first)(uint32_t*);
    uint32_t (*next)(uint32_t*);
    uint32_t (*finish)();
    const char* table;
    const char* key;
    const char* value;  // the field that is yielded
};

const Walk WALKS[] = {
    {QRB_GetFirstIfIndex, QRB_GetNextIfIndex, QRB_ScanIfIndexFinish, "if_base", "if_index",
     "if_index"},
    {QRB_GetFirstPort, QRB_GetNextPort, QRB_ScanPortFinish, "port", "if_index", "port_index"},
    {QRB_GetFirstVlan, QRB_GetNextVlan, QRB_ScanVlanFinish, "vlan", "vlan_scope0", "vlan_id"},
};

class TableWalk : public support::PlatformTest {
protected:
    // Rows with the values 101, 102, ... under the keys that go with them.
    static void Fill(const Walk& walk, uint32_t from, uint32_t to)
    {
        for (uint32_t value = from; value <= to; value++) {
            Row row(walk.table);
            row.Set(walk.key, value);
            if (row.Description().name == "if_base") {
                row.Set("if_name", std::to_string(value));
            }
            calls::Insert({row.Set(walk.value, value)});
        }
    }

    static Values Rest(const Walk& walk)
    {
        Values   values;
        uint32_t value = 0;
        while (walk.next(&value) == 0) {
            values.push_back(value);
        }
        return values;
    }
};

TEST_F(TableWalk, YieldsEveryRowOnceAndIsLeftAloneByASecondFirst)
{
    uint32_t value = 0;
    for (const Walk& walk : WALKS) {
        Fill(walk, 101, 104);
        ASSERT_EQ(walk.first(&value), 0U);
    }
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        support::ResetPlatform();
        EXPECT_EQ(walk.first(&value), 1U);
        EXPECT_TRUE(support::PlatformCalls().empty());
        support::FailCall("OrmScanNext", 1, 9);
        EXPECT_EQ(walk.next(&value), 1U);
        EXPECT_EQ(TakeLog().size(), 1U);
        EXPECT_EQ(Rest(walk), (Values{102, 103, 104}));
        EXPECT_EQ(walk.next(&value), 1U);
        EXPECT_EQ(walk.finish(), 0U);
        EXPECT_TRUE(TakeLog().empty());
    }
}

TEST_F(TableWalk, OfAnEmptyTableClosesItself)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        uint32_t value = 77;
        for (int again = 0; again < 2; again++) {
            EXPECT_EQ(walk.first(&value), 1U);
            EXPECT_EQ(support::PlatformCalls().back(), "OrmCloseSession");
            support::ResetPlatform();
        }
        EXPECT_EQ(value, 77U);
        EXPECT_TRUE(TakeLog().empty());
    }
    uint16_t narrow = 77;
    EXPECT_EQ(L2IF_GetFirstVlan(&narrow), 1U);
    EXPECT_EQ(narrow, 0U);
}

TEST_F(TableWalk, GoesOnWhileOthersWrite)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        Fill(walk, 101, 140);
        uint32_t value = 0;
        ASSERT_EQ(walk.first(&value), 0U);
        Fill(walk, 141, 200);
        standin::Transaction change;
        change.Delete(Row(walk.table).Set(walk.key, 101).Set(walk.value, 101));
        change.Commit();

        const Values rest = Rest(walk);
        ASSERT_GE(rest.size(), 39U);
        for (size_t i = 0; i < rest.size(); i++) {
            EXPECT_EQ(rest[i], 102 + i);
        }
        EXPECT_EQ(walk.finish(), 0U);
    }
}

}  // namespace
