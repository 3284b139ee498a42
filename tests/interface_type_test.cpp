// Port types and physical types, and the one-time build of the type table.
#include <barrier>
#include <cstdlib>
#include <thread>

#include <tarnd_qrb/interface_type.h>

#include "calls/calls.h"

namespace {

using namespace calls;
using standin::Row;

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
    }
};

TEST_F(InterfaceType, FromCodeToType)
{
    for (const uint32_t type : {0U, 3U, 8U, 16U, 257U, 300U}) {
        Insert({Row("if_base")
                    .Set("if_index", type)
                    .Set("if_name", std::to_string(type))
                    .Set("if_type", type)});
    }
    ASSERT_EQ(BDS_InitIfTypeInfo(), 0U);
    Expect({
        {CALL(BDS_IfPortTypeSwitch, 0U, Out32()), "0 25"},
        {CALL(BDS_IfPortTypeSwitch, 3U, Out32()), "0 0"},
        {CALL(BDS_IfPortTypeSwitch, 6U, Out32()), "0 0"},
        {CALL(BDS_IfPortTypeSwitch, 9U, Out32()), "0 11"},
        {CALL(BDS_IfPortTypeSwitch, 10U, Out32()), "0 41"},
        {CALL(BDS_IfPortTypeSwitch, 16U, Out32()), "0 1"},
        {CALL(BDS_IfPortTypeSwitch, 17U, Out32()), "1 -"},
        {CALL(BDS_IfPortTypeSwitch, UINT32_MAX, Out32()), "1 -"},
        {CALL(IFPDT_GetPortType, 3U), "0"},
        {CALL(IFPDT_GetPortType, 16U), "1"},
        {CALL(IFPDT_GetPortType, 300U), "NONE"},
        {CALL(BDS_IfnetGetPortType, 300U, Out32()), "1 -"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 0U), "38"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 3U), "101"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 8U), "101"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 16U), "1"},
        {CALL(IF_INTF_GetPhyTypeByIndex, 257U), "101"},  // not 1, though its low byte is
        {CALL(IF_INTF_GetPhyTypeByIndex, 300U), "101"},
    });
}

TEST_F(InterfaceType, OnlyAnExplicitBuildReplacesATable)
{
    uint32_t portType = 0;
    EXPECT_EQ(BDS_IfPortTypeSwitch(1, &portType), 0U);
    auto* const first = const_cast<BDS_IF_TYPE_INFO_S*>(Published());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(BDS_IfPortTypeSwitch(16, &portType), 0U);
    EXPECT_EQ(Published(), first);
    EXPECT_EQ(BDS_InitIfTypeInfo(), 0U);
    EXPECT_NE(Published(), first);
    EXPECT_EQ(first[15].third_value, 72);  // whoever still reads an old table may
    free(first);
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
