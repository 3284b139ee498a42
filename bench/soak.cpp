// Load test of a given duration: writers, readers, a walk that is kept open, and callbacks on the
// listener thread. Prints counters; fails if a notification is lost or out of order, if a reader
// sees a partial write, or if memory grows.
//
//   soak [SECONDS [ROWS]]     default: a minute, a million rows
#include <malloc.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <standin/store.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/subscription.h>
#include <tarnd_qrb/table_walk.h>

namespace {

using namespace std::chrono_literals;
using standin::Row;
using standin::Transaction;
using Clock = std::chrono::steady_clock;

constexpr uint32_t WRITER_COUNT = 2;
constexpr size_t MAX_PENDING = 1000;  // notifications of one writer that have not arrived

std::atomic<bool> running = true;
std::atomic<uint64_t> writes = 0;
std::atomic<uint64_t> reads = 0;
std::atomic<uint64_t> steps = 0;  // of walks
std::atomic<uint64_t> walks = 0;
std::atomic<uint64_t> wrong = 0;  // query results

// Written by the listener thread, read after it has ended.
uint64_t notified = 0;
uint64_t unexpected = 0;
Clock::duration longest = {};  // from write to callback

// Each interface has two rows: one in "if_base" and one in "if_phy".
uint32_t interfaces = 0;

std::string NameOf(uint32_t ifIndex)
{
    return "Eth" + std::to_string(ifIndex);
}

Row Base(uint32_t ifIndex)
{
    return Row("if_base").Set("if_index", ifIndex).Set("if_name", NameOf(ifIndex));
}

// The value is stored in two fields, so that a reader can detect a partial write.
Row Physical(uint32_t ifIndex, uint32_t state, uint32_t value)
{
    return Row("if_phy")
        .Set("if_index", ifIndex)
        .Set("phy_state", state)
        .Set("slot_id", value)
        .Set("port_id", value);
}

void Fill()
{
    for (uint32_t next = 0; next < interfaces;) {
        Transaction transaction;
        for (uint32_t left = 1000; left > 0 && next < interfaces; left--, next++) {
            transaction.Insert(Base(next));
            transaction.Insert(Physical(next, 0, 0));
        }
        transaction.Commit();
    }
}

// The notifications expected from one writer's changes, in order.
class Awaited {
public:
    void Add(uint32_t ifIndex, uint32_t command)
    {
        const std::lock_guard lock(mutex_);
        pending_.push_back({ifIndex, command, Clock::now()});
    }
    void Receive(uint32_t ifIndex, uint32_t command)
    {
        const std::lock_guard lock(mutex_);
        if (pending_.empty() || pending_.front().ifIndex != ifIndex ||
            pending_.front().command != command) {
            unexpected++;
            return;
        }
        notified++;
        longest = std::max(longest, Clock::now() - pending_.front().when);
        pending_.pop_front();
    }
    size_t Size()
    {
        const std::lock_guard lock(mutex_);
        return pending_.size();
    }

private:
    struct AwaitedChange {
        uint32_t ifIndex;
        uint32_t command;
        Clock::time_point when;
    };

    std::mutex mutex_;
    std::deque<AwaitedChange> pending_;
};
Awaited awaited[WRITER_COUNT];

// Writer N changes the interfaces whose index modulo WRITER_COUNT is N.
uint32_t Notified(uint32_t ifIndex, uint32_t command, uint32_t, uint32_t)
{
    awaited[ifIndex % WRITER_COUNT].Receive(ifIndex, command);
    return 0;
}

void Commit(Transaction transaction)
{
    transaction.Commit();
    writes++;
}

// Turns random interfaces up and down, and repeatedly creates and deletes one more interface.
void WriteFor(uint32_t writer)
{
    std::mt19937 random(writer);
    std::vector<bool> up(interfaces);
    const uint32_t visitor = interfaces + writer;
    for (uint32_t round = 0; running; round++) {
        while (awaited[writer].Size() >= MAX_PENDING) {
            std::this_thread::sleep_for(100us);
        }
        Transaction transaction;
        for (uint32_t left = 1 + round % 8; left > 0; left--) {
            const auto chosen = static_cast<uint32_t>(random() % interfaces);
            const uint32_t ifIndex = chosen - chosen % WRITER_COUNT + writer;
            up[ifIndex] = !up[ifIndex];
            awaited[writer].Add(ifIndex, up[ifIndex] ? IF_NOTIFY_UP : IF_NOTIFY_DOWN);
            transaction.Update(Physical(ifIndex, up[ifIndex] ? 1 : 0, round));
        }
        Commit(std::move(transaction));
        if (round % 16 == 0) {
            const bool creates = round % 32 == 0;
            Transaction visit;
            creates ? visit.Insert(Base(visitor)) : visit.Delete(Base(visitor));
            awaited[writer].Add(visitor, creates ? IF_NOTIFY_CREATED : IF_NOTIFY_DELETED);
            Commit(std::move(visit));
        }
    }
}

void ReadFor(uint32_t reader)
{
    std::mt19937 random(100 + reader);
    while (running) {
        const uint32_t ifIndex = static_cast<uint32_t>(random() % interfaces);
        char name[QRB_IF_NAME_SIZE];
        uint8_t state = 2;
        QRB_IF_PHY_S row = {};
        wrong += IF_INTF_GetIfNameByIfIndex(name, ifIndex) != 0 || name != NameOf(ifIndex);
        wrong += IF_INTF_GetIfIndexByFullName(name) != ifIndex;
        wrong += BDS_IfnetGetIfPhyState(ifIndex, &state) != 0 || state > 1;
        wrong += OrmgIfPhyReadInner(&ifIndex, sizeof(ifIndex), &row, sizeof(row)) != 0 ||
                 row.slot_id != row.port_id;
        reads += 4;
    }
}

// Each walk must return every interface once, in order. The first walk stays open for half of the
// test's duration.
void WalkFor(Clock::duration half)
{
    const auto until = Clock::now() + half;
    while (running) {
        uint32_t ifIndex = 0;
        uint32_t expected = 0;
        uint32_t ret = QRB_GetFirstIfIndex(&ifIndex);
        for (; ret == 0; ret = QRB_GetNextIfIndex(&ifIndex), steps++) {
            wrong += ifIndex < interfaces && ifIndex != expected++;
            while (running && walks == 0 && expected == interfaces / 2 && Clock::now() < until) {
                std::this_thread::sleep_for(10ms);
            }
        }
        wrong += expected != interfaces || QRB_ScanIfIndexFinish() != 0;
        walks++;
    }
}

double ResidentMegabytes()
{
    std::ifstream statm("/proc/self/statm");
    double total = 0;
    double pages = 0;
    statm >> total >> pages;
    return pages * 4096 / 1e6;
}

// Waits until every notification has arrived, then stops the thread in the way a daemon does.
void StopListener()
{
    for (int left = 1000; left > 0 && awaited[0].Size() + awaited[1].Size() > 0; left--) {
        std::this_thread::sleep_for(10ms);
    }
    OrmCloseSession(g_dbListenerSubSession);
    std::atomic_ref(g_epollDbListenerThreadExit).store(1, std::memory_order_release);
    DbListenerEpollCtrl(static_cast<uint32_t>(eventfd(1, EFD_CLOEXEC)), 0);  // wakes the thread
    pthread_join(g_epollDbListenerThreadId, nullptr);
}

// Returns the exit status: 1 after any error.
int Report(std::chrono::seconds seconds, double before, double after)
{
    const size_t lost = awaited[0].Size() + awaited[1].Size();
    const auto print = [](const char* what, uint64_t count) {
        std::printf("%-14s %12" PRIu64 "\n", what, count);
    };
    print("transactions", writes);
    print("notifications", notified);
    print("  lost", lost);
    print("  unexpected", unexpected);
    print("reads", reads);
    print("steps of walks", steps);
    print("walks", walks);
    print("wrong results", wrong);
    std::printf("longest time from write to callback: %.3f ms\n",
                std::chrono::duration<double, std::milli>(longest).count());
    std::printf("memory: %.1f MB, at the end %.1f MB\n", before, after);
    // In a short run, caches and pools may still grow to their final size.
    const bool flat = seconds < 30s || after <= before * 1.01;
    return lost + unexpected + wrong == 0 && flat ? 0 : 1;
}

}  // namespace

int main(int count, char** words)
{
    const auto seconds = std::chrono::seconds(count > 1 ? std::strtoul(words[1], nullptr, 10) : 60);
    const auto rows = count > 2 ? std::strtoul(words[2], nullptr, 10) : 1000000;
    interfaces = static_cast<uint32_t>(rows / 2 / WRITER_COUNT * WRITER_COUNT);

    // With an arena for each thread, the writers' rows don't use the memory of the rows that they
    // replace, and the process grows until every row has been replaced once.
    mallopt(M_ARENA_MAX, 1);
    MEM_EX_Init();
    Fill();
    if (IF_RegNotifyFunc(1, Notified) != 0 || BDS_InitStart() != 0) {
        std::puts("The library failed to start.");
        return 1;
    }
    std::vector<std::thread> threads;
    for (uint32_t number = 0; number < WRITER_COUNT; number++) {
        threads.emplace_back(WriteFor, number);
        threads.emplace_back(ReadFor, number);
    }
    threads.emplace_back(WalkFor, seconds / 2);

    // Memory that is allocated once is in use after a fifth of the time.
    std::this_thread::sleep_for(seconds / 5);
    const double before = ResidentMegabytes();
    std::this_thread::sleep_for(seconds - seconds / 5);
    const double after = ResidentMegabytes();
    running = false;
    std::ranges::for_each(threads, [](std::thread& thread) { thread.join(); });
    StopListener();
    return Report(seconds, before, after);
}
