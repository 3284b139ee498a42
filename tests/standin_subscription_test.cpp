// Subscriptions of the stand-in: every committed change that matches a definition is delivered
// once, in order, with the rows before and after.
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <new>
#include <thread>

#include <gtest/gtest.h>

#include <standin/deliveries.h>
#include <tarnd_platform/orm_subscription.h>

#include "support/recorded_changes.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

thread_local unsigned allocationsLeft = 0;  // 0: no limit
std::atomic<int> blocksInUse = 0;

}  // namespace

void* operator new(size_t size)
{
    void* block = allocationsLeft > 0 && --allocationsLeft == 0 ? nullptr : std::malloc(size);
    blocksInUse += block != nullptr ? 1 : 0;
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    blocksInUse -= block != nullptr ? 1 : 0;
    std::free(block);
}

void operator delete(void* block, size_t /*size*/) noexcept
{
    operator delete(block);
}

namespace {

using standin::Transaction;
using support::OpenSubscriptions;
using support::Phy;
using namespace support::writes;
using Lines = std::vector<std::string>;

std::vector<uint32_t> operations;  // on the descriptor
std::function<void(ORM_MESSAGE, uint32_t)> onMessage;
int descriptor = -1;

int32_t Control(uint32_t watched, uint32_t operation)
{
    operations.push_back(operation);
    descriptor = static_cast<int>(watched);
    return 0;
}

uint32_t Subscribe(ORM_SESSION session)
{
    return support::SubscribeTo(
        session, "if_phy", [](ORM_MESSAGE message, uint32_t event) { onMessage(message, event); });
}

bool IsReadable()
{
    pollfd ready = {descriptor, POLLIN, 0};
    return poll(&ready, 1, 0) == 1;
}

// One object of the current row as "index:speed", or "-".
std::string Object(ORM_MESSAGE message, uint32_t object)
{
    uint32_t index = 0;
    uint32_t speed = 0;
    if (OrmSubExtractData(message, object, 0) == ORM_NO_RECORD) {
        return "-";
    }
    EXPECT_EQ(OrmGetField(message, "if_index", &index, 4), 0U);
    EXPECT_EQ(OrmGetField(message, "speed", &speed, 4), 0U);
    return std::to_string(index) + ":" + std::to_string(speed);
}

// A delivery as text: the operation's first letter, then each row's old and new object.
std::string Described(ORM_MESSAGE message, uint32_t event)
{
    std::string text(1, "idur"[event]);
    EXPECT_NE(OrmSubExtractData(message, ORM_OBJECT_NEW, 0), 0U);
    for (uint8_t end = 0;;) {
        EXPECT_EQ(OrmSubFetchNext(message, &end), 0U);
        if (end != 0) {
            EXPECT_NE(OrmSubExtractData(message, ORM_OBJECT_NEW, 0), 0U);
            return text;
        }
        text += " " + Object(message, ORM_OBJECT_OLD) + ">" + Object(message, ORM_OBJECT_NEW);
    }
}

class StandinSubscription : public testing::Test {
protected:
    void SetUp() override
    {
        standin::Reset();
        onMessage = [this](ORM_MESSAGE message, uint32_t event) {
            seen_.push_back(Described(message, event));
        };
        operations.clear();
        session_ = OpenSubscriptions(Control);
        EXPECT_EQ(Subscribe(session_), 0U);
    }
    void TearDown() override
    {
        OrmCloseSession(session_);
        standin::Reset();
    }
    // The deliveries that the callbacks received.
    Lines Deliver()
    {
        EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
        return std::exchange(seen_, {});
    }

    ORM_SESSION session_ = 0;
    Lines seen_;
};

TEST_F(StandinSubscription, ReportsCommitTimeAndCompletedDeliveries)
{
    using namespace std::chrono_literals;
    using Clock = std::chrono::steady_clock;
    const auto before = Clock::now();
    std::atomic<bool> returned = false;
    onMessage = [&](ORM_MESSAGE, uint32_t) {
        EXPECT_GE(standin::CommitTime(), before);
        EXPECT_LE(standin::CommitTime(), Clock::now());
        std::this_thread::sleep_for(20ms);
        returned = true;
    };
    EXPECT_TRUE(standin::AwaitDeliveries(0ms));
    Write(Insert, {Phy(1)});
    EXPECT_FALSE(standin::AwaitDeliveries(1ms));
    const std::jthread listener([] { DbcHandleEvent(descriptor); });
    EXPECT_TRUE(standin::AwaitDeliveries(1h));
    EXPECT_TRUE(returned);
    EXPECT_EQ(standin::CommitTime(), Clock::time_point());
}

TEST_F(StandinSubscription, DeliversConsecutiveRowsTogetherAndEachChangeOnce)
{
    EXPECT_FALSE(IsReadable());
    Transaction transaction;
    transaction.Insert(Phy(1, 10));
    transaction.Insert(Phy(2, 20));
    transaction.Insert(standin::Row("if_link").Set("if_index", 1));
    transaction.Insert(Phy(3, 30));
    transaction.Update(Phy(1, 11));
    transaction.Replace(Phy(2, 21));
    transaction.Replace(Phy(4, 40));
    transaction.Delete(Phy(3));
    transaction.Commit();
    EXPECT_TRUE(IsReadable());
    EXPECT_THROW(Write(Insert, {Phy(2)}), standin::Error);
    Write(Delete, {Phy(1)});
    EXPECT_EQ(Deliver(), (Lines{"i ->1:10 ->2:20", "i ->3:30", "u 1:10>1:11", "r 2:20>2:21 ->4:40",
                                "d 3:30>-", "d 1:11>-"}));
    EXPECT_FALSE(IsReadable());
    eventfd_write(descriptor, 1);  // after the deliveries were taken
    EXPECT_EQ(Deliver(), Lines());
    EXPECT_FALSE(IsReadable());
}

// The first allocation fails, then the second, and so on until none fails.
TEST_F(StandinSubscription, WithoutMemoryATransactionIsRolledBackAndNotDelivered)
{
    Write(Insert, {Phy(1)});
    Deliver();
    unsigned attempts = 0;
    for (bool committed = false; !committed; attempts++) {
        Transaction transaction;
        transaction.Update(Phy(1, 2));
        transaction.Insert(Phy(2, 2));
        transaction.Delete(Phy(1));
        allocationsLeft = attempts + 1;
        committed = support::RefusalOf([&] { transaction.Commit(); }).empty();
        allocationsLeft = 0;
        EXPECT_TRUE(committed || standin::Find(Phy(1)) == Phy(1));
        EXPECT_EQ(Deliver(), committed ? (Lines{"u 1:0>1:2", "i ->2:2", "d 1:2>-"}) : Lines());
        EXPECT_EQ(standin::Find(Phy(2)).has_value(), committed);
    }
    EXPECT_GT(attempts, 10U);
}

TEST_F(StandinSubscription, FreesTheMemoryOfDeliveredChanges)
{
    int blocks[3];
    Write(Insert, {Phy(1)});
    for (int& afterwards : blocks) {
        Write(Update, {Phy(1)});
        Deliver();
        afterwards = blocksInUse;
    }
    EXPECT_EQ(blocks[0], blocks[2]);
}

TEST_F(StandinSubscription, CallbackMayWriteAndMayClose)
{
    ORM_MESSAGE kept = 0;
    onMessage = [&](ORM_MESSAGE message, uint32_t event) {
        seen_.push_back(Described(message, event));
        kept = message;
        EXPECT_NE(DbcHandleEvent(descriptor), 0U);
        EXPECT_NE(OrmCloseSession(message), 0U);
        if (event == ORM_EVENT_INSERT) {
            Write(Update, {Phy(1, 2)});
        } else {
            EXPECT_EQ(OrmCloseSession(session_), 0U);
        }
    };
    Write(Insert, {Phy(1)});
    EXPECT_EQ(Deliver(), Lines{"i ->1:0"});
    EXPECT_TRUE(IsReadable());
    uint8_t end = 0;
    EXPECT_NE(OrmSubFetchNext(kept, &end), 0U);

    // Pending deliveries are dropped, and the descriptor is removed.
    Write(Insert, {Phy(2)});
    EXPECT_EQ(Deliver(), Lines{"u 1:0>1:2"});
    EXPECT_EQ(operations, (std::vector<uint32_t>{0, 1}));
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    EXPECT_NE(DbcHandleEvent(descriptor), 0U);
    EXPECT_EQ(OrmCloseSession(session_), 2002U);

    const auto refuse = [](uint32_t watched, uint32_t) { return Control(watched, 0) - 1; };
    EXPECT_EQ(OpenSubscriptions(refuse), 0U);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(StandinSubscription, WithoutAControlFunctionAThreadServesUntilACallbackCloses)
{
    std::atomic<bool> closed = false;
    const ORM_SESSION served = OpenSubscriptions(nullptr);
    onMessage = [&](ORM_MESSAGE, uint32_t) {
        EXPECT_EQ(OrmCloseSession(served), 0U);
        closed = true;
    };
    ASSERT_EQ(Subscribe(served), 0U);
    Write(Insert, {Phy(1)});
    while (!closed) {
        std::this_thread::yield();
    }
    EXPECT_EQ(OrmCloseSession(served), 2002U);
}

}  // namespace
