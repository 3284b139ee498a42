// The walks over interfaces, ports and VLANs: every case for each of the three.
#include <tarnd_qrb/table_walk.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;
using Values   = std::vector<uint32_t>;

struct Walk {
    uint32_t (*first)(uint32_t*);
    uint32_t (*next)(uint32_t*);
    uint32_t (*finish)();
    ORM_SESSION* session;
    ORM_SCAN*    scan;
    const char*  firstName;
    const char*  nextName;
    const char*  finishName;
    const char*  table;
    const char*  key;
    const char*  value;  // the field that is yielded
    const char*  opened;
    const char*  prepared;
    const char*  started;
    const char*  reader;
    const char*  read;

    bool Open() const { return *session != 0 && *scan != 0; }
    bool Closed() const { return *session == 0 && *scan == 0; }
};

const Walk WALKS[] = {
    {QRB_GetFirstIfIndex, QRB_GetNextIfIndex, QRB_ScanIfIndexFinish, &g_ScanIndexSession,
     &g_IndexScanHandle, "QRB_GetFirstIfIndex: ", "QRB_GetNextIfIndex: ", "QRB_ScanIfIndexFinish: ",
     "if_base", "if_index", "if_index", "Database error: 9, open index g_ScanIndexSession fail",
     "Database error: 9, OrmPrepare index fail", "Database error: 9, OrmScanStart index fail",
     "OrmgIfBaseGetAllFieldsInner", "OrmgIfBaseGetAllFields fail ret:9"},
    {QRB_GetFirstPort, QRB_GetNextPort, QRB_ScanPortFinish, &g_ScanPortSession, &g_PortScanHandle,
     "QRB_GetFirstPort: ", "QRB_GetNextPort: ", "QRB_ScanPortFinish: ", "port", "if_index",
     "port_index", "Database error: 9, open port g_ScanPortSession fail",
     "Database error: 9, OrmPrepare port fail", "Database error: 9, OrmScanStart port fail",
     "OrmgPortGetAllFieldsInner", "OrmgportGetAllFields fail ret:9"},
    {QRB_GetFirstVlan, QRB_GetNextVlan, QRB_ScanVlanFinish, &g_ScanVlanSession, &g_VlanScanHandle,
     "QRB_GetFirstVlan: ", "QRB_GetNextVlan: ", "QRB_ScanVlanFinish: ", "vlan", "vlan_scope0",
     "vlan_id", "Database error: 9, open vlan g_ScanVlanSession fail",
     "Database error: 9, OrmPrepare vlan fail", "Database error: 9, OrmScanStart vlan fail",
     "OrmgVlanGetAllFieldsInner", "OrmgVlanGetAllFields fail ret:9"},
};

class TableWalk : public support::PlatformTest {
protected:
    // Rows with the values 101, 102, ... under the keys that go with them.
    static void Insert(const Walk& walk, uint32_t from, uint32_t to)
    {
        standin::Transaction fill;
        for (uint32_t value = from; value <= to; value++) {
            standin::Row row(walk.table);
            row.Set(walk.key, value);
            if (row.Description().name == "if_base") {
                row.Set("if_name", std::to_string(value));
            }
            fill.Insert(row.Set(walk.value, value));
        }
        fill.Commit();
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

TEST_F(TableWalk, YieldsEveryRowOnceAndStaysOpenUntilFinished)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        Insert(walk, 101, 103);
        uint32_t value = 0;
        ASSERT_EQ(walk.first(&value), 0U);
        EXPECT_EQ(value, 101U);
        EXPECT_TRUE(walk.Open());
        EXPECT_EQ(Rest(walk), (Values{102, 103}));
        EXPECT_EQ(walk.next(&value), 1U);
        EXPECT_TRUE(walk.Open());
        EXPECT_EQ(walk.finish(), 0U);
        EXPECT_TRUE(walk.Closed());
        EXPECT_TRUE(TakeLog().empty());
    }
}

TEST_F(TableWalk, OfAnEmptyTableClosesItself)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        uint32_t value = 77;
        EXPECT_EQ(walk.first(&value), 1U);
        EXPECT_EQ(value, 77U);
        EXPECT_TRUE(walk.Closed());
        EXPECT_TRUE(TakeLog().empty());
    }
}

TEST_F(TableWalk, FirstOnAnOpenWalkLeavesItAlone)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        Insert(walk, 101, 103);
        uint32_t value = 0;
        ASSERT_EQ(walk.first(&value), 0U);
        support::ResetPlatform();
        EXPECT_EQ(walk.first(&value), 1U);
        EXPECT_TRUE(support::PlatformCalls().empty());
        EXPECT_EQ(Rest(walk), (Values{102, 103}));
        EXPECT_EQ(walk.finish(), 0U);
        EXPECT_TRUE(TakeLog().empty());
    }
}

TEST_F(TableWalk, WithoutFirstHasNoNextAndAFailingFinish)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        uint32_t value = 77;
        support::ResetPlatform();
        EXPECT_EQ(walk.next(&value), 1U);
        EXPECT_EQ(value, 77U);
        EXPECT_TRUE(support::PlatformCalls().empty());
        EXPECT_TRUE(TakeLog().empty());

        EXPECT_EQ(walk.finish(), 1U);
        EXPECT_TRUE(walk.Closed());
        const Messages messages = TakeMessages();
        ASSERT_EQ(messages.size(), 1U);
        EXPECT_TRUE(messages[0].starts_with(walk.finishName + std::string("OrmScanEnd fail ret:")));
    }
}

TEST_F(TableWalk, AFailingFirstSaysWhyAndClosesTheWalk)
{
    for (const Walk& walk : WALKS) {
        Insert(walk, 101, 101);
        const std::pair<const char*, const char*> steps[] = {
            {"OrmOpenSessionByDefault", walk.opened},
            {"OrmPrepare", walk.prepared},
            {"OrmScanStart", walk.started},
            {"OrmScanNext", "OrmScanNext ret:9, isEof:0"},
            {walk.reader, walk.read},
        };
        for (const auto& [operation, message] : steps) {
            SCOPED_TRACE(walk.table + std::string(" ") + operation);
            uint32_t value = 77;
            FailCall(operation, 1, 9);
            EXPECT_EQ(walk.first(&value), 1U);
            EXPECT_EQ(value, 77U);
            EXPECT_TRUE(walk.Closed());
            EXPECT_EQ(TakeMessages(), Messages{walk.firstName + std::string(message)});
        }
    }
}

TEST_F(TableWalk, AFailingNextLeavesTheWalkOpen)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        Insert(walk, 101, 104);
        uint32_t value = 0;
        ASSERT_EQ(walk.first(&value), 0U);
        FailCall("OrmScanNext", 1, 9);
        EXPECT_EQ(walk.next(&value), 1U);
        FailCall(walk.reader, 1, 9);
        EXPECT_EQ(walk.next(&value), 1U);
        EXPECT_EQ(value, 101U);
        EXPECT_TRUE(walk.Open());
        EXPECT_EQ(TakeMessages(),
                  (Messages{walk.nextName + std::string("OrmScanNext ret:9, isEof:0"),
                            walk.nextName + std::string(walk.read)}));
        EXPECT_EQ(Rest(walk), (Values{103, 104}));
        EXPECT_EQ(walk.finish(), 0U);
    }
}

TEST_F(TableWalk, AFailingFinishClosesTheWalkAllTheSame)
{
    for (const Walk& walk : WALKS) {
        Insert(walk, 101, 101);
        for (const std::string operation : {"OrmScanEnd", "OrmCloseSession"}) {
            SCOPED_TRACE(walk.table + (" " + operation));
            uint32_t value = 0;
            ASSERT_EQ(walk.first(&value), 0U);
            FailCall(operation, 1, 9);
            EXPECT_EQ(walk.finish(), 1U);
            EXPECT_TRUE(walk.Closed());
            EXPECT_EQ(TakeMessages(), Messages{walk.finishName + operation + " fail ret:9"});
        }
    }
}

TEST_F(TableWalk, GoesOnWhileOthersWrite)
{
    for (const Walk& walk : WALKS) {
        SCOPED_TRACE(walk.table);
        Insert(walk, 101, 140);
        uint32_t value = 0;
        ASSERT_EQ(walk.first(&value), 0U);
        Insert(walk, 141, 200);
        standin::Transaction change;
        change.Delete(standin::Row(walk.table).Set(walk.key, 101).Set(walk.value, 101));
        change.Commit();

        const Values rest = Rest(walk);
        ASSERT_GE(rest.size(), 39U);
        for (size_t i = 0; i < rest.size(); i++) {
            EXPECT_EQ(rest[i], 102 + i);
        }
        EXPECT_EQ(walk.finish(), 0U);
    }
}

TEST_F(TableWalk, WalksAreIndependent)
{
    uint32_t value = 0;
    for (const Walk& walk : WALKS) {
        Insert(walk, 101, 102);
        ASSERT_EQ(walk.first(&value), 0U);
    }
    EXPECT_EQ(WALKS[0].finish(), 0U);
    EXPECT_EQ(Rest(WALKS[1]), Values{102});
    EXPECT_EQ(WALKS[1].finish(), 0U);
    EXPECT_EQ(Rest(WALKS[2]), Values{102});
    EXPECT_EQ(WALKS[2].finish(), 0U);
}

TEST_F(TableWalk, OlderNamesWriteZeroWhereNothingIsYielded)
{
    Insert(WALKS[0], 101, 102);
    Insert(WALKS[1], 201, 202);
    Insert(WALKS[2], 301, 302);

    uint32_t wide = 77;
    EXPECT_EQ(IF_INTF_GetFirstIfIndex(&wide), 0U);
    EXPECT_EQ(wide, 101U);
    EXPECT_EQ(IF_INTF_GetNextIfIndex(999, &wide), 0U);
    EXPECT_EQ(wide, 102U);
    EXPECT_EQ(IF_INTF_GetNextIfIndex(0, &wide), 1U);
    EXPECT_EQ(wide, 0U);
    EXPECT_EQ(IF_INTF_ScanFinish(), 0U);

    EXPECT_EQ(L2IF_GetFirstPort(&wide), 0U);
    EXPECT_EQ(wide, 201U);
    EXPECT_EQ(L2IF_GetNextPort(&wide), 0U);
    EXPECT_EQ(wide, 202U);
    EXPECT_EQ(L2IF_GetNextPort(&wide), 1U);
    EXPECT_EQ(wide, 0U);
    EXPECT_EQ(L2IF_ScanFinish(), 0U);

    uint16_t narrow = 77;
    EXPECT_EQ(L2IF_GetFirstVlan(&narrow), 0U);
    EXPECT_EQ(narrow, 301U);
    EXPECT_EQ(L2IF_GetFirstVlan(&narrow), 1U);
    EXPECT_EQ(narrow, 0U);
    EXPECT_EQ(L2IF_GetNextVlan(&narrow), 0U);
    EXPECT_EQ(narrow, 302U);
    EXPECT_EQ(L2IF_ScanVlanFinish(), 0U);
    EXPECT_TRUE(TakeLog().empty());
}

}  // namespace
