// Every query from several threads, while others write, iterate and receive notifications.
#include <atomic>
#include <thread>

#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/subscription.h>
#include <tarnd_qrb/table_walk.h>

#include "support/example_calls.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

using namespace calls;
using support::PhyState, support::Port;
using namespace support::writes;
using standin::Row;
using standin::Transaction;

using Threads = DeviceTest;

// Inserts and deletes rows that no query reads, and replaces other rows by equal ones.
void Write(const std::atomic<bool>& stop)
{
    for (uint32_t round = 0; !stop; round++) {
        const Writing write = round % 2 == 0 ? Replace : Delete;
        Transaction transaction;
        for (uint32_t index = 50; index < 60; index++) {
            write(transaction, PhyState(index, round / 2 % 2));
            write(transaction, Port(index, 1, round / 2 % 2));
        }
        for (const char* table : {"if_base", "vlan", "am_ipv4_address", "Fib.ConfigNhpStandard"}) {
            standin::ForEachRow(*standin::FindTable(table),
                                [&](const Row& row) { transaction.Replace(row); });
        }
        transaction.Commit();
    }
}

void WalkInterfaces(const std::atomic<bool>& stop)
{
    while (!stop) {
        uint32_t index = 0;
        EXPECT_EQ(QRB_GetFirstIfIndex(&index), 0U);
        EXPECT_EQ(index, 1U);
        EXPECT_EQ(QRB_GetNextIfIndex(&index), 0U);
        EXPECT_EQ(QRB_GetNextIfIndex(&index), 1U);
        EXPECT_EQ(QRB_ScanIfIndexFinish(), 0U);
    }
}

TEST_F(Threads, QueriesReturnTheSameDuringWritesWalksAndNotifications)
{
    static std::atomic<uint32_t> notified;
    notified = 0;
    support::WatchPlatform(false);
    IF_RegNotifyFunc(1, [](auto...) { return ++notified; });
    ASSERT_EQ(BDS_InitStart(), 0U);
    Calls calls = QueryCalls();
    // A prepared session would be shared by all threads.
    std::erase_if(calls, [](const Call& call) { return call.before || call.after; });
    ASSERT_GT(calls.size(), 80U);

    std::atomic<bool> stop = false;
    std::vector<std::jthread> others;
    others.emplace_back(Write, std::cref(stop));
    others.emplace_back(WalkInterfaces, std::cref(stop));
    std::vector<std::jthread> readers;
    for (int reader = 0; reader < 3; reader++) {
        readers.emplace_back([&] {
            for (int round = 0; round < 50; round++) {
                for (const Call& call : calls) {
                    const std::string& expected = call.expected;
                    EXPECT_EQ(call.run(), expected.substr(0, expected.find(" | "))) << call.name;
                }
            }
        });
    }
    readers.clear();
    stop = true;
    others.clear();
    EXPECT_TRUE(support::Eventually([] { return notified > 0; }));
}

}  // namespace
