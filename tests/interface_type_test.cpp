// Port types and physical types, and the one-time build of the type table.
#include <barrier>
#include <cstdlib>
#include <thread>

#include <tarnd_qrb/interface_type.h>

#include <standin/database.h>

#include "support/platform.h"

namespace {

using support::FailAllocation;
using support::FailCall;
using support::TakeLog;
using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t NONE      = 0xFFFFFFFF;
constexpr uint32_t UNTOUCHED = 77;

const BDS_IF_TYPE_INFO_S* Published()
{
    return __atomic_load_n(&g_pstBDSIfTypeInfo, __ATOMIC_ACQUIRE);
}

// As if no table had been built yet.
void ForgetTable()
{
    free(const_cast<BDS_IF_TYPE_INFO_S*>(Published()));
    __atomic_store_n(&g_pstBDSIfTypeInfo, nullptr, __ATOMIC_RELEASE);
}

class InterfaceType : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        ForgetTable();
        standin::Transaction fill;
        for (const uint32_t type : {0U, 1U, 3U, 8U, 16U, 257U, 300U}) {
            fill.Insert(standin::Row("if_base")
                            .Set("if_index", INDEX_OF_TYPE + type)
                            .Set("if_name", "if" + std::to_string(type))
                            .Set("if_type", type));
        }
        fill.Commit();
    }

    static constexpr uint32_t INDEX_OF_TYPE = 1000;  // interface 1000 + t has type t
};

TEST_F(InterfaceType, PortTypeOfACode)
{
    const struct {
        uint32_t type;
        uint32_t portType;
    } cases[] = {{0, 25}, {3, 0}, {6, 0}, {9, 11}, {10, 41}, {16, 1}};
    for (const auto& c : cases) {
        uint32_t portType = UNTOUCHED;
        EXPECT_EQ(BDS_IfPortTypeSwitch(c.type, &portType), 0U);
        EXPECT_EQ(portType, c.portType) << c.type;
    }
    uint32_t portType = UNTOUCHED;
    EXPECT_EQ(BDS_IfPortTypeSwitch(17, &portType), 1U);
    EXPECT_EQ(BDS_IfPortTypeSwitch(NONE, &portType), 1U);
    EXPECT_EQ(portType, UNTOUCHED);
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(InterfaceType, PortTypeOfAnInterface)
{
    uint32_t portType = UNTOUCHED;
    EXPECT_EQ(BDS_IfnetGetPortType(INDEX_OF_TYPE + 8, &portType), 0U);
    EXPECT_EQ(portType, 41U);
    EXPECT_EQ(support::PlatformCalls(),
              (std::vector<std::string>{"OrmOpenSessionByDefault", "OrmPrepare", "OrmSetKeyName",
                                        "OrmSetIndexKeyValue", "OrmExecute", "OrmGetField",
                                        "OrmCloseSession"}));
    EXPECT_EQ(IFPDT_GetPortType(INDEX_OF_TYPE + 3), 0U);
    EXPECT_EQ(IFPDT_GetPortType(INDEX_OF_TYPE + 16), 1U);

    // A type that the table does not know is no news.
    portType = UNTOUCHED;
    EXPECT_EQ(BDS_IfnetGetPortType(INDEX_OF_TYPE + 300, &portType), 1U);
    EXPECT_EQ(IFPDT_GetPortType(INDEX_OF_TYPE + 300), NONE);
    EXPECT_TRUE(TakeLog().empty());

    EXPECT_EQ(IFPDT_GetPortType(9), NONE);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_IfnetGetPortType: DB error: 1001000\n"});
    EXPECT_EQ(BDS_IfnetGetPortType(INDEX_OF_TYPE, nullptr), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_IfnetGetPortType: Null value provided\n"});
    FailCall("OrmCloseSession", 1, 41);
    EXPECT_EQ(BDS_IfnetGetPortType(INDEX_OF_TYPE, &portType), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_IfnetGetPortType: Failed to fetch DB, ret=41\n"});
    EXPECT_EQ(portType, UNTOUCHED);
}

TEST_F(InterfaceType, PhysicalType)
{
    EXPECT_EQ(IF_INTF_GetPhyTypeByIndex(INDEX_OF_TYPE + 0), 38U);
    EXPECT_EQ(IF_INTF_GetPhyTypeByIndex(INDEX_OF_TYPE + 1), 6U);
    EXPECT_EQ(IF_INTF_GetPhyTypeByIndex(INDEX_OF_TYPE + 16), 1U);
    // 257 is not 1, though its low byte is.
    for (const uint32_t other : {3U, 8U, 257U, 300U}) {
        EXPECT_EQ(IF_INTF_GetPhyTypeByIndex(INDEX_OF_TYPE + other), QRB_PHY_TYPE_OTHER) << other;
    }
    EXPECT_TRUE(TakeLog().empty());
    EXPECT_EQ(IF_INTF_GetPhyTypeByIndex(9), QRB_PHY_TYPE_OTHER);
    EXPECT_EQ(TakeMessages(), Messages{"IF_INTF_GetPhyTypeByIndex: get phy tyep orm read "
                                       "ifIndex[9] failed, ret = 1001000.\n"});
}

TEST_F(InterfaceType, FirstQuestionBuildsAndLaterOnesDoNot)
{
    uint32_t portType = UNTOUCHED;
    FailAllocation(1);
    EXPECT_EQ(BDS_IfPortTypeSwitch(1, &portType), 1U);
    EXPECT_EQ(TakeMessages(), Messages{"BDS_InitIfTypeInfo: g_pstBDSIfTypeInfo malloc fail\n"});
    EXPECT_EQ(portType, UNTOUCHED);
    EXPECT_EQ(Published(), nullptr);

    EXPECT_EQ(BDS_IfPortTypeSwitch(1, &portType), 0U);
    const BDS_IF_TYPE_INFO_S* const built = Published();
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(BDS_IfPortTypeSwitch(16, &portType), 0U);
    EXPECT_EQ(Published(), built);
}

TEST_F(InterfaceType, EveryExplicitBuildReplacesTheTable)
{
    EXPECT_EQ(BDS_InitIfTypeInfo(), 0U);
    auto* const first = const_cast<BDS_IF_TYPE_INFO_S*>(Published());
    EXPECT_EQ(BDS_InitIfTypeInfo(), 0U);
    auto* const second = const_cast<BDS_IF_TYPE_INFO_S*>(Published());
    EXPECT_NE(first, second);
    FailAllocation(1);
    EXPECT_EQ(BDS_InitIfTypeInfo(), 1U);
    EXPECT_EQ(Published(), nullptr);
    EXPECT_EQ(first[15].third_value, 72);  // whoever still reads an old table may
    free(first);
    free(second);
}

TEST_F(InterfaceType, SecondGroupNeedsAWholeTable)
{
    BDS_IF_TYPE_INFO_S table[QRB_IF_TYPE_COUNT] = {};
    table[9].port_type                          = UNTOUCHED;
    EXPECT_EQ(BDS_InitNewIfTypeInfo(table, 16), 1U);
    EXPECT_EQ(table[10].port_type, 0);
    EXPECT_EQ(BDS_InitNewIfTypeInfo(table, 17), 0U);
    EXPECT_EQ(table[9].port_type, UNTOUCHED);
    EXPECT_EQ(table[10].port_type, 41);
    EXPECT_EQ(table[16].third_value, 12);
}

// Threads that ask first at the same time: one build, and no one sees a table that isn't full. A
// second build would also show as a leak.
TEST_F(InterfaceType, ManyThreadsAskFirst)
{
    constexpr int THREADS = 8;
    constexpr int ROUNDS  = 200;

    support::WatchPlatform(false);
    const BDS_IF_TYPE_INFO_S* seen[THREADS] = {};
    int                       wrong         = 0;
    const auto                endOfRound    = [&]() noexcept {
        for (const BDS_IF_TYPE_INFO_S* table : seen) {
            wrong += table == nullptr || table != seen[0] || table != Published() ? 1 : 0;
        }
        ForgetTable();
    };
    std::barrier round(THREADS, endOfRound);
    const auto   ask = [&](int thread) {
        for (int i = 0; i < ROUNDS; i++) {
            uint32_t portType = 0;
            if (thread % 2 == 0) {
                while (Published() == nullptr) {
                    std::this_thread::yield();
                }
                portType = Published()[16].port_type;
            } else if (BDS_IfPortTypeSwitch(16, &portType) != 0) {
                portType = 0;
            }
            seen[thread] = portType == 1 ? Published() : nullptr;
            round.arrive_and_wait();
        }
    };
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < THREADS; thread++) {
        threads.emplace_back(ask, thread);
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
