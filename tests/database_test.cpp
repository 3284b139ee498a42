// The frame: log lines, sessions, the generic scan's limits and conditions, hexadecimal literals.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/log.h>

#include "calls/calls.h"

namespace {

using namespace calls;
using support::TakeLog;

using Log      = support::PlatformTest;
using Database = support::PlatformTest;

TEST_F(Log, WritesOnlyErrorsAndWorseThatFit)
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
    const std::string longest(511, 'x');
    Tarn_QRB_Log_Printf(3, nullptr, 7, "%s", longest.c_str());
    EXPECT_EQ(TakeLog().at(0).text, "[TARND_QRB] " + longest);
    Tarn_QRB_Log_Printf(3, "Function", 7, "%s", "");
    EXPECT_EQ(TakeLog().at(0).text, "[TARND_QRB][Function:7] ");
    Tarn_QRB_Log_Printf(3, nullptr, 7, "%s", "");
    EXPECT_EQ(TakeLog().at(0).text, "[TARND_QRB] ");
    Tarn_QRB_Log_Printf(3, nullptr, 7, "%sx", longest.c_str());
    EXPECT_TRUE(TakeLog().empty());
}

// Collects VLAN ids; refuses the record with the number that failAt says.
struct Collector {
    std::vector<uint16_t> ids    = {};
    uint32_t              failAt = UINT32_MAX;
};

uint32_t Collect(ORM_SESSION in, void* context, uint32_t index)
{
    Collector& collector = *static_cast<Collector*>(context);
    if (index == collector.failAt) {
        return 55;
    }
    collector.ids.push_back(0);
    return OrmGetFieldById(in, 2, &collector.ids.back(), 2);
}

uint32_t OnlyOdd(ORM_SESSION in, void* /*context*/)
{
    return OrmSetScanCond(in, "vlan_scope0 = 1");
}

TEST_F(Database, ScanDeliversWhatTheConditionAndTheLimitAllow)
{
    Collector none;
    uint32_t  count = 99;
    EXPECT_EQ(QRB_DB_Scan("vlan", &none, 10, Collect, &count, nullptr, nullptr), 0U);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(QRB_DB_Scan("vlan", &none, 10, Collect, nullptr, nullptr, nullptr), 0U);

    Load(R"({"vlan": [
        {"vlan_id": 1, "vlan_scope0": 1, "vlan_scope1": 0}, {"vlan_id": 2, "vlan_scope0": 0, "vlan_scope1": 0},
        {"vlan_id": 3, "vlan_scope0": 1, "vlan_scope1": 0}, {"vlan_id": 4, "vlan_scope0": 0, "vlan_scope1": 0}]})");
    const struct {
        uint32_t               maxCount;
        const char*            condition;
        QRB_SET_CONDITION_FUNC setCondition;
        std::vector<uint16_t>  ids;
    } cases[] = {
        {UINT32_MAX, nullptr, nullptr, {1, 2, 3, 4}},
        {3, nullptr, nullptr, {1, 2, 3}},
        {0, nullptr, nullptr, {1}},
        {UINT32_MAX, nullptr, OnlyOdd, {1, 3}},
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

    Collector failing{.failAt = 2};
    EXPECT_EQ(QRB_DB_Scan("vlan", &failing, 10, Collect, nullptr, nullptr, nullptr), 1U);
    EXPECT_EQ(failing.ids, (std::vector<uint16_t>{1, 2}));
}

TEST_F(Database, HexadecimalLiteralHasASize)
{
    Expect({
        {CALL(QRB_DB_TransStringToHexNumString, "x", OutText(), -1), "1 -"},
        {CALL(QRB_DB_TransStringToHexNumString, "x", OutText(), 0), "0 0x"},
    });
}

}  // namespace
