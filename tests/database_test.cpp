// The frame: log lines, sessions, the generic keyed read and scan, hexadecimal literals.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/log.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailCall;
using support::PlatformTest;
using support::TakeLog;
using support::TakeMessages;
using testing::Test;

using Messages = std::vector<std::string>;
using Calls    = std::vector<std::string>;

class Log : public PlatformTest {};
class Database : public PlatformTest {};

TEST_F(Log, WritesOnlyErrorsAndWorse)
{
    for (uint32_t priority = 0; priority < 8; priority++) {
        Tarn_QRB_Log_Printf(priority, "Function", 7, "value %u\n", priority);
        const auto lines = TakeLog();
        ASSERT_EQ(lines.size(), priority <= 3 ? 1U : 0U) << priority;
        if (!lines.empty()) {
            EXPECT_EQ(lines[0].priority, static_cast<int>(priority));
            EXPECT_EQ(lines[0].text,
                      "[TARND_QRB][Function:7] value " + std::to_string(priority) + "\n");
        }
    }
    Tarn_QRB_Log_Printf(3, nullptr, 7, "short form");
    EXPECT_EQ(TakeLog().at(0).text, "[TARND_QRB] short form");
}

TEST_F(Log, LosesOnlyALineThatDoesNotFitOrHasNoMemory)
{
    const std::string longest(511, 'x');
    Tarn_QRB_Log_Printf(3, nullptr, 0, "%s", longest.c_str());
    EXPECT_EQ(TakeLog().at(0).text, "[TARND_QRB] " + longest);
    Tarn_QRB_Log_Printf(3, nullptr, 0, "%sx", longest.c_str());
    EXPECT_TRUE(TakeLog().empty());

    support::FailAllocation(1);
    Tarn_QRB_Log_Printf(3, "Function", 1, "lost");
    EXPECT_TRUE(TakeLog().empty());
    Tarn_QRB_Log_Printf(3, "Function", 1, "kept");
    EXPECT_EQ(TakeLog().size(), 1U);
}

TEST_F(Database, StartUpReportsTheLayersCode)
{
    EXPECT_EQ(QRB_DB_InitOrm(), 0U);
    FailCall("OrmInit", 1, 77);
    EXPECT_EQ(QRB_DB_InitOrm(), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"QRB_DB_InitOrm: [Error]: Orm init failed, ret=77\n"});
}

TEST_F(Database, CreatedSessionIsOpenAndPreparedOrNotThere)
{
    ORM_SESSION session = 5;
    EXPECT_EQ(QRB_CreatDbSession("if_base", QRB_ORM_OP_SCAN, &session), 1U);
    EXPECT_NE(session, 0U);
    EXPECT_EQ(OrmCloseSession(session), 0U);

    EXPECT_EQ(QRB_CreatDbSession(nullptr, QRB_ORM_OP_SCAN, &session), 0U);
    EXPECT_EQ(QRB_CreatDbSession("if_base", QRB_ORM_OP_SCAN, nullptr), 0U);
    EXPECT_TRUE(TakeLog().empty());

    EXPECT_EQ(QRB_CreatDbSession("no_such_table", QRB_ORM_OP_SCAN, &session), 0U);
    EXPECT_EQ(session, 0U);
    EXPECT_EQ(TakeMessages(),
              Messages{"QRB_CreatDbSession: Database error, info: prepare session failed\n"});
    FailCall("OrmOpenSessionByDefault", 1, 9);
    EXPECT_EQ(QRB_CreatDbSession("if_base", QRB_ORM_OP_SCAN, &session), 0U);
    EXPECT_EQ(TakeMessages(),
              Messages{"QRB_CreatDbSession: Database error, info: open session failed\n"});
}

uint32_t SetIfIndex(ORM_SESSION session, const void* key)
{
    const uint32_t named = OrmSetKeyName(session, "primary_key");
    return named != 0 ? named : OrmSetIndexKeyValue(session, 0, QRB_KEY_TYPE_U32, key, 4);
}

uint32_t GetSlot(ORM_SESSION session, void* slot)
{
    return OrmGetField(session, "slot_id", slot, 4);
}

uint32_t ReadSlot(uint32_t ifIndex, uint32_t* slot)
{
    return QRB_DB_Get("if_phy", &ifIndex, slot, SetIfIndex, GetSlot);
}

TEST_F(Database, KeyedReadPassesEveryStepsOwnCodeThrough)
{
    standin::Transaction fill;
    fill.Insert(standin::Row("if_phy").Set("if_index", 4).Set("slot_id", 3));
    fill.Commit();
    uint32_t slot = 0;
    EXPECT_EQ(ReadSlot(4, &slot), 0U);
    EXPECT_EQ(slot, 3U);
    EXPECT_TRUE(TakeLog().empty());

    EXPECT_EQ(ReadSlot(5, &slot), ORM_NO_RECORD);
    EXPECT_EQ(TakeMessages(), Messages{"QRB_DB_SESSION_SetKey: Table: if_phy execute failed."});

    const struct {
        const char* operation;
        Messages    messages;
    } steps[] = {
        {"OrmOpenSessionByDefault", {"QRB_DB_Get: Table: if_phy open session failed."}},
        {"OrmPrepare", {"QRB_DB_SESSION_SetKey: Table: if_phy prepare failed."}},
        {"OrmSetIndexKeyValue", {"QRB_DB_SESSION_SetKey: Table: if_phy set key failed."}},
        {"OrmExecute", {"QRB_DB_SESSION_SetKey: Table: if_phy execute failed."}},
        {"OrmGetField", {"QRB_DB_SESSION_Get: Table: if_phy get fields failed."}},
        {"OrmCloseSession", {}},
    };
    for (const auto& step : steps) {
        FailCall(step.operation, 1, 4711);
        EXPECT_EQ(ReadSlot(4, &slot), 4711U) << step.operation;
        EXPECT_EQ(TakeMessages(), step.messages);
    }
}

void FillVlans(uint16_t count)
{
    standin::Transaction fill;
    for (uint16_t id = 1; id <= count; id++) {
        fill.Insert(standin::Row("vlan").Set("vlan_id", id).Set("vlan_scope0", id % 2));
    }
    fill.Commit();
}

// Collects VLAN ids; refuses the record with the number that failAt says.
struct Collector {
    std::vector<uint16_t> ids    = {};
    uint32_t              failAt = UINT32_MAX;
};

uint32_t Collect(ORM_SESSION session, void* context, uint32_t index)
{
    Collector& collector = *static_cast<Collector*>(context);
    if (index == collector.failAt) {
        return 55;
    }
    collector.ids.push_back(0);
    return OrmGetFieldById(session, 2, &collector.ids.back(), 2);
}

uint32_t OnlyOdd(ORM_SESSION session, void* /*context*/)
{
    return OrmSetScanCond(session, "vlan_scope0 = 1");
}

TEST_F(Database, ScanDeliversWhatTheConditionAndTheLimitAllow)
{
    Collector none;
    uint32_t  count = 99;
    EXPECT_EQ(QRB_DB_Scan("vlan", &none, 10, Collect, &count, nullptr, nullptr), 0U);
    EXPECT_EQ(count, 0U);

    FillVlans(5);
    const struct {
        uint32_t               maxCount;
        const char*            condition;
        QRB_SET_CONDITION_FUNC setCondition;
        std::vector<uint16_t>  ids;
    } cases[] = {
        {UINT32_MAX, nullptr, nullptr, {1, 2, 3, 4, 5}},
        {3, nullptr, nullptr, {1, 2, 3}},
        {1, nullptr, nullptr, {1}},
        {0, nullptr, nullptr, {1}},
        {UINT32_MAX, nullptr, OnlyOdd, {1, 3, 5}},
        {UINT32_MAX, "vlan_scope0 = 0", OnlyOdd, {2, 4}},
        {UINT32_MAX, "vlan_scope0 = 1 and vlan_id = 3", nullptr, {3}},
    };
    for (const auto& c : cases) {
        Collector collector;
        EXPECT_EQ(QRB_DB_Scan("vlan", &collector, c.maxCount, Collect, &count, c.condition,
                              c.setCondition),
                  0U);
        EXPECT_EQ(collector.ids, c.ids);
        EXPECT_EQ(count, c.ids.size());
    }
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(Database, FailingEntryEndsTheScanAndLeavesTheCount)
{
    FillVlans(5);
    support::ResetPlatform();
    Collector collector{.failAt = 2};
    uint32_t  count = 99;
    EXPECT_EQ(QRB_DB_Scan("vlan", &collector, 10, Collect, &count, nullptr, nullptr), 1U);
    EXPECT_EQ(collector.ids, (std::vector<uint16_t>{1, 2}));
    EXPECT_EQ(count, 99U);
    const Calls calls = support::PlatformCalls();
    ASSERT_GE(calls.size(), 2U);
    EXPECT_EQ(Calls(calls.end() - 2, calls.end()), (Calls{"OrmScanEnd", "OrmCloseSession"}));
    EXPECT_EQ(TakeMessages(),
              (Messages{"QRB_DB_SESSION_ProcessScanEntries: Failed to fetch DB, ret=55\n",
                        "QRB_DB_Scan: DB error: 1\n"}));
}

TEST_F(Database, FailingScanEndLeavesTheCount)
{
    FillVlans(2);
    FailCall("OrmScanEnd", 1, 66);
    Collector collector;
    uint32_t  count = 99;
    EXPECT_EQ(QRB_DB_Scan("vlan", &collector, 10, Collect, &count, nullptr, nullptr), 1U);
    EXPECT_EQ(count, 99U);
    EXPECT_EQ(TakeMessages(), (Messages{"QRB_DB_SESSION_Scan: Failed to fetch DB, ret=66\n",
                                        "QRB_DB_Scan: DB error: 1\n"}));
}

TEST_F(Database, HexadecimalLiteralPadsCutsAndRefuses)
{
    const struct {
        const char* text;
        int32_t     size;
        const char* literal;
    } cases[] = {
        {"ab", 4, "0x61620000"}, {"\xFF", 1, "0xff"}, {"abcdef", 3, "0x616263"},
        {"", 2, "0x0000"},       {"x", 0, "0x"},
    };
    for (const auto& c : cases) {
        std::string output(static_cast<size_t>(2 * c.size + 3), '?');
        EXPECT_EQ(QRB_DB_TransStringToHexNumString(c.text, output.data(), c.size), 0U);
        EXPECT_STREQ(output.c_str(), c.literal);
    }
    char output[8];
    EXPECT_EQ(QRB_DB_TransStringToHexNumString("a", output, -1), 1U);
    support::FailAllocation(1);
    EXPECT_EQ(QRB_DB_TransStringToHexNumString("a", output, 1), 1U);
    FailCall("strcat_s", 1, 34);
    EXPECT_EQ(QRB_DB_TransStringToHexNumString("a", output, 1), 1U);
}

}  // namespace
