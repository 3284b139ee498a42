// Database access: log lines, sessions, the generic keyed read and scan, literals.
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/log.h>
#include <tarnd_qrb/vlan.h>

#include "support/example_calls.h"

namespace calls {

namespace {

constexpr uint32_t KNOWN_IF_INDEX = 1;

uint32_t SetIfIndex(ORM_SESSION in, const void* key)
{
    const uint32_t named = OrmSetKeyName(in, "primary_key");
    return named != 0 ? named : OrmSetIndexKeyValue(in, 0, QRB_KEY_TYPE_U32, key, 4);
}

uint32_t GetSlot(ORM_SESSION in, void* slot)
{
    return OrmGetField(in, "slot_id", slot, 4);
}

uint32_t Unscoped(ORM_SESSION in, void* /*context*/)
{
    return OrmSetScanCond(in, "vlan_scope0 = 0");
}

}  // namespace

// clang-format off
Calls DatabaseCalls()
{
    return {
        {CALL(Tarn_QRB_Log_Printf, 3U, "Tarn_QRB_Log_Printf", 1U, "%u\n", 5U), R"(done | 5\n)"},
        {CALL(QRB_DB_InitOrm), "0"},
        {CALL(QRB_CreatDbSession, "if_base", QRB_ORM_OP_SCAN, OutSession()), "1 open", {}, Closed},
        {CALL(QRB_DB_SESSION_SetKey, session, QRB_ORM_OP_READ, "if_phy", &KNOWN_IF_INDEX, SetIfIndex), "0", Opened, Closed},
        {CALL(QRB_DB_SESSION_Get, session, "if_phy", &KNOWN_IF_INDEX, Out32(), SetIfIndex, GetSlot), "0 1.2.3.4", Opened, Closed},
        {CALL(QRB_DB_Get, "if_phy", &KNOWN_IF_INDEX, Out32(), SetIfIndex, GetSlot), "0 1.2.3.4"},
        {CALL_AS(", condition given", QRB_DB_SESSION_Scan, session, "vlan", Out16(), 10U, L2IF_DB_ScanVlanId, Out32(),
              "vlan_scope0 = 0", nullptr), "0 10 2", Opened, Closed},
        {CALL_AS(", condition set by a callback", QRB_DB_SESSION_Scan, session, "vlan", Out16(), 10U, L2IF_DB_ScanVlanId, Out32(),
              nullptr, Unscoped), "0 10 2", Opened, Closed},
        {CALL(QRB_DB_Scan, "vlan", Out16(), 10U, L2IF_DB_ScanVlanId, Out32(), nullptr, nullptr), "0 10 2"},
        {CALL(QRB_DB_TransStringToHexNumString, "ab", OutText(), 2), "0 0x6162"},
    };
}
// clang-format on

namespace {

using Log = support::PlatformTest;
using Database = support::PlatformTest;

TEST_F(Log, WritesErrorsAndWorseUpToTheBufferSize)
{
    for (uint32_t priority = 0; priority < 8; priority++) {
        Tarn_QRB_Log_Printf(priority, "Function", 7, "value %u\n", priority);
        const auto lines = support::TakeLog();
        ASSERT_EQ(lines.size(), priority <= 3 ? 1U : 0U) << priority;
        if (!lines.empty()) {
            EXPECT_EQ(lines[0].priority, static_cast<int>(priority));
            EXPECT_EQ(lines[0].text,
                      "[TARND_QRB][Function:7] value " + std::to_string(priority) + "\n");
        }
    }
    const std::string longest(511, 'x');
    Tarn_QRB_Log_Printf(3, nullptr, 7, "%s", longest.c_str());
    EXPECT_EQ(support::TakeLog().at(0).text, "[TARND_QRB] " + longest);
    Tarn_QRB_Log_Printf(3, "Function", 7, "%s", "");
    EXPECT_EQ(support::TakeLog().at(0).text, "[TARND_QRB][Function:7] ");
    Tarn_QRB_Log_Printf(3, nullptr, 7, "%s", "");
    EXPECT_EQ(support::TakeLog().at(0).text, "[TARND_QRB] ");
    Tarn_QRB_Log_Printf(3, nullptr, 7, "%sx", longest.c_str());
    EXPECT_TRUE(support::TakeLog().empty());
}

// Keeps the last row's number and the VLAN's id.
uint32_t Keep(ORM_SESSION in, void* kept, uint32_t number)
{
    auto* const both = static_cast<uint32_t*>(kept);
    both[0] = number;
    both[1] = 0;
    return OrmGetFieldById(in, 2, &both[1], 2);
}

uint32_t ScopeOne(ORM_SESSION in, void* /*context*/)
{
    return OrmSetScanCond(in, "vlan_scope0 = 1");
}

// clang-format off
TEST_F(Database, ScanReturnsMatchingRowsUpToTheLimit)
{
    using Kept = Out<uint32_t, 2>;
    Expect({{CALL(QRB_DB_Scan, "vlan", Kept(), 10U, Keep, Out32(), nullptr, nullptr), "0 - - 0"}});
    Load(R"({"vlan": [
        {"vlan_id": 1, "vlan_scope0": 1, "vlan_scope1": 0}, {"vlan_id": 2, "vlan_scope0": 0, "vlan_scope1": 0},
        {"vlan_id": 3, "vlan_scope0": 1, "vlan_scope1": 0}, {"vlan_id": 4, "vlan_scope0": 0, "vlan_scope1": 0}]})");
    Expect({
        {CALL(QRB_DB_Scan, "vlan", Kept(), UINT32_MAX, Keep, Out32(), nullptr, nullptr), "0 3 4 4"},
        {CALL(QRB_DB_Scan, "vlan", Kept(), 10U, Keep, nullptr, nullptr, nullptr), "0 3 4"},
        {CALL(QRB_DB_Scan, "vlan", Kept(), 3U, Keep, Out32(), nullptr, nullptr), "0 2 3 3"},
        {CALL(QRB_DB_Scan, "vlan", Kept(), 0U, Keep, Out32(), nullptr, nullptr), "0 0 1 1"},
        {CALL(QRB_DB_Scan, "vlan", Kept(), 10U, Keep, Out32(), nullptr, ScopeOne), "0 1 3 2"},
        {CALL(QRB_DB_Scan, "vlan", Kept(), 10U, Keep, Out32(), "vlan_scope0 = 0", ScopeOne), "0 1 4 2"},
        {CALL(QRB_DB_Scan, "vlan", Kept(), 10U, Keep, Out32(), "vlan_scope0 = 1 and vlan_id = 3", nullptr), "0 0 3 1"},
        {CALL(QRB_DB_Scan, "vlan", nullptr, 1U, nullptr, nullptr, "vlan_id = 9", nullptr), "0"},
        {CALL(QRB_CreatDbSession, nullptr, QRB_ORM_OP_SCAN, OutSession()), "0 closed"},
        {CALL(QRB_CreatDbSession, "vlan", QRB_ORM_OP_SCAN, nullptr), "0"},
        {CALL(QRB_DB_TransStringToHexNumString, "x", OutText(), -1), "1 -"},
        {CALL(QRB_DB_TransStringToHexNumString, "x", OutText(), 0), "0 0x"},
    });
}
// clang-format on

}  // namespace

}  // namespace calls
