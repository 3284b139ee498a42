// Subscriptions of the stand-in: every committed change that a definition covers comes once, in
// order, with its rows before and after.
#include <fcntl.h>
#include <poll.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <standin/changes.h>
#include <standin/database.h>

namespace {

thread_local unsigned allocationsLeft = 0;  // 0: all that there are
std::atomic<int>      blocksInUse     = 0;

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

using standin::Row;
using standin::Transaction;

const char* const everything =
    R"({"label_name":"if_phy","events":[{"type":"insert"},{"type":"delete"},{"type":"update"},{"type":"replace"}]})";

std::vector<std::pair<uint32_t, uint32_t>> controls;  // descriptor, operation
std::function<void(ORM_MESSAGE, uint32_t)> onMessage;
int                                        descriptor    = -1;
int32_t                                    controlAnswer = 0;

int32_t Control(uint32_t watched, uint32_t operation)
{
    controls.emplace_back(watched, operation);
    descriptor = static_cast<int>(watched);
    return controlAnswer;
}

void Callback(ORM_MESSAGE message, uint32_t event)
{
    onMessage(message, event);
}

ORM_SESSION Open(ORM_FD_CONTROL control)
{
    ORM_SESSION_PARAM param   = 0;
    ORM_SESSION       session = 0;
    EXPECT_EQ(OrmCreateSessionParam("channel:", "osc", &param), 0U);
    EXPECT_EQ(OrmSessionParamSetConnName(param, "port"), 0U);
    EXPECT_EQ(OrmOpenSubSession(param, control, &session) == 0, controlAnswer == 0);
    OrmDestroySessionParam(param);
    return session;
}

uint32_t Subscribe(ORM_SESSION session, const char* definition)
{
    return OrmSubscribe(session, "test", definition, Callback, nullptr, "test");
}

bool IsReadable()
{
    pollfd ready = {descriptor, POLLIN, 0};
    return poll(&ready, 1, 0) == 1;
}

Row Phy(uint32_t index, uint32_t speed = 0)
{
    return Row("if_phy").Set("if_index", index).Set("speed", speed);
}

// One object of the current row as "index:speed", or "-".
std::string Object(ORM_MESSAGE message, uint32_t object)
{
    const uint32_t extracted = OrmSubExtractData(message, object, 0);
    if (extracted == ORM_NO_RECORD) {
        return "-";
    }
    std::array<uint8_t, 79> record{};
    uint32_t                index = 0;
    uint32_t                speed = 0;
    EXPECT_EQ(extracted, 0U);
    EXPECT_EQ(OrmGetFieldById(message, 0, &index, 4), 0U);
    EXPECT_EQ(OrmGetField(message, "speed", &speed, 4), 0U);
    EXPECT_EQ(OrmgIfPhyGetAllFieldsInner(message, record.data(), 79), 0U);
    EXPECT_EQ(std::memcmp(record.data(), &index, 4), 0);
    return std::to_string(index) + ":" + std::to_string(speed);
}

// A delivery in words: the operation's first letter, then each row's old and new object.
std::string Described(ORM_MESSAGE message, uint32_t event)
{
    std::string text(1, "idur"[event]);
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
        controls.clear();
        controlAnswer = 0;
        onMessage     = [this](ORM_MESSAGE message, uint32_t event) {
            seen_.push_back(Described(message, event));
        };
        session_ = Open(Control);
    }
    void TearDown() override
    {
        if (session_ != 0) {
            EXPECT_EQ(OrmCloseSession(session_), 0U);
        }
        standin::Reset();
    }
    static void Commit(const std::function<void(Transaction&)>& fill)
    {
        Transaction transaction;
        fill(transaction);
        transaction.Commit();
    }

    ORM_SESSION              session_ = 0;
    std::vector<std::string> seen_;
};

TEST_F(StandinSubscription, TellsWhenAChangeWasCommittedAndWhenAllAreDelivered)
{
    using namespace std::chrono_literals;
    using Clock = std::chrono::steady_clock;
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    EXPECT_TRUE(standin::AwaitDeliveries(0ms));
    const auto        before   = Clock::now();
    std::atomic<bool> returned = false;
    onMessage                  = [&](ORM_MESSAGE, uint32_t) {
        EXPECT_GE(standin::CommitTime(), before);
        EXPECT_LE(standin::CommitTime(), Clock::now());
        std::this_thread::sleep_for(20ms);
        returned = true;
    };
    Commit([](Transaction& t) { t.Insert(Phy(1)); });
    EXPECT_FALSE(standin::AwaitDeliveries(1ms));
    const std::jthread listener([] { DbcHandleEvent(descriptor); });
    EXPECT_TRUE(standin::AwaitDeliveries(10s));
    EXPECT_TRUE(returned);
    standin::BetweenDeliveries([] { EXPECT_EQ(standin::CommitTime(), Clock::time_point()); });
}

TEST_F(StandinSubscription, DeliversNeighboursTogetherAndEachChangeOnce)
{
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    EXPECT_FALSE(IsReadable());
    Commit([](Transaction& t) {
        t.Insert(Phy(1, 10));
        t.Insert(Phy(2, 20));
        t.Insert(Row("if_link").Set("if_index", 1));
        t.Insert(Phy(3, 30));
        t.Update(Phy(1, 11));
        t.Replace(Phy(2, 21));
        t.Replace(Phy(4, 40));
        t.Delete(Phy(3));
    });
    EXPECT_TRUE(IsReadable());
    Transaction refused;
    refused.Update(Phy(2, 99));
    refused.Insert(Phy(2));
    EXPECT_THROW(refused.Commit(), standin::Error);
    Commit([](Transaction& t) { t.Delete(Phy(1)); });

    EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
    EXPECT_FALSE(IsReadable());
    EXPECT_EQ(seen_, (std::vector<std::string>{"i ->1:10 ->2:20", "i ->3:30", "u 1:10>1:11",
                                               "r 2:20>2:21 ->4:40", "d 3:30>-", "d 1:11>-"}));
    EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
    EXPECT_EQ(seen_.size(), 6U);
}

TEST_F(StandinSubscription, DeliversOnlyWhatADefinitionLists)
{
    const char* const refused[] = {
        "",
        "no json",
        "[]",
        R"({"label_name":"if_phy"})",
        R"({"label_name":"if_phy","events":[]})",
        R"({"label_name":"no_table","events":[{"type":"insert"}]})",
        R"({"label_name":"if_phy","events":[{"type":"insert"},{"type":"upsert"}]})",
        R"({"label_name":7,"events":[{"type":"insert"}]})",
        R"({"label_name":"if_phy","events":["insert"]})",
    };
    for (const char* definition : refused) {
        EXPECT_NE(Subscribe(session_, definition), 0U) << definition;
    }
    ASSERT_EQ(Subscribe(session_, R"({"label_name":"if_phy","events":[{"type":"delete"}]})"), 0U);
    Commit([](Transaction& t) {
        t.Insert(Phy(1));
        t.Update(Phy(1));
    });
    EXPECT_FALSE(IsReadable());
    Commit([](Transaction& t) { t.Delete(Phy(1)); });
    EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
    EXPECT_EQ(seen_, std::vector<std::string>{"d 1:0>-"});
}

// Memory runs out at the first allocation, then at the second, and so on until there is enough.
TEST_F(StandinSubscription, WithoutMemoryATransactionIsUndoneAndNotTold)
{
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    Commit([](Transaction& t) { t.Insert(Phy(1, 1)); });
    DbcHandleEvent(descriptor);
    unsigned attempts = 0;
    for (bool committed = false; !committed; attempts++) {
        seen_.clear();
        Transaction transaction;
        transaction.Update(Phy(1, 2));
        transaction.Insert(Phy(2, 2));
        transaction.Delete(Phy(1));
        allocationsLeft = attempts + 1;
        try {
            transaction.Commit();
            committed = true;
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(standin::Find(Phy(1)) == Phy(1, 1));
        }
        allocationsLeft = 0;
        EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
        EXPECT_EQ(seen_, committed ? (std::vector<std::string>{"u 1:1>1:2", "i ->2:2", "d 1:2>-"})
                                   : std::vector<std::string>{});
        EXPECT_EQ(standin::Find(Phy(2)).has_value(), committed);
    }
    EXPECT_GT(attempts, 10U);
}

TEST_F(StandinSubscription, GivesBackWhatChangesTookThatWait)
{
    constexpr int changes = 1000;
    const auto    update  = [] { Commit([](Transaction& t) { t.Update(Phy(1)); }); };
    onMessage             = [](ORM_MESSAGE, uint32_t) {};
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    Commit([](Transaction& t) { t.Insert(Phy(1)); });
    update();
    DbcHandleEvent(descriptor);
    const int before = blocksInUse;
    for (int round = 0; round < 2; round++) {
        for (int i = 0; i < changes; i++) {
            update();
        }
        EXPECT_LE(blocksInUse, before + 3 * changes);
        if (round == 0) {
            DbcHandleEvent(descriptor);
            EXPECT_EQ(blocksInUse, before);
        }
    }
    EXPECT_EQ(OrmCloseSession(std::exchange(session_, 0)), 0U);
    EXPECT_LT(blocksInUse, before);
}

TEST_F(StandinSubscription, MessageDiesWithItsCallback)
{
    ORM_MESSAGE kept = 0;
    onMessage        = [&](ORM_MESSAGE message, uint32_t) {
        uint8_t end = 0;
        kept        = message;
        EXPECT_NE(OrmSubExtractData(message, ORM_OBJECT_NEW, 0), 0U);
        EXPECT_EQ(OrmSubFetchNext(message, &end), 0U);
        EXPECT_NE(OrmSubExtractData(message, 2, 0), 0U);
        EXPECT_NE(OrmCloseSession(message), 0U);
        EXPECT_NE(OrmExecute(message), 0U);
    };
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    Commit([](Transaction& t) { t.Insert(Phy(1)); });
    EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
    uint8_t  end   = 0;
    uint32_t index = 0;
    EXPECT_NE(OrmSubFetchNext(kept, &end), 0U);
    EXPECT_NE(OrmGetFieldById(kept, 0, &index, 4), 0U);
    EXPECT_NE(OrmSubFetchNext(session_, &end), 0U);
}

TEST_F(StandinSubscription, CallbackMayWriteAndMayClose)
{
    onMessage = [&](ORM_MESSAGE message, uint32_t event) {
        seen_.push_back(Described(message, event));
        EXPECT_NE(DbcHandleEvent(descriptor), 0U);
        if (seen_.size() == 1) {
            Commit([](Transaction& t) { t.Update(Phy(1, 2)); });
        } else {
            EXPECT_EQ(OrmCloseSession(session_), 0U);
        }
    };
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    Commit([](Transaction& t) { t.Insert(Phy(1, 1)); });
    EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
    EXPECT_TRUE(IsReadable());
    Commit([](Transaction& t) { t.Insert(Phy(2)); });
    EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
    EXPECT_EQ(seen_, (std::vector<std::string>{"i ->1:1", "u 1:1>1:2"}));
    EXPECT_EQ(OrmCloseSession(session_), 2002U);
    session_ = 0;
}

TEST_F(StandinSubscription, CloseHandsTheDescriptorBack)
{
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    Commit([](Transaction& t) { t.Insert(Phy(1)); });
    const int closed = descriptor;
    EXPECT_EQ(OrmCloseSession(session_), 0U);
    ASSERT_EQ(controls.size(), 2U);
    EXPECT_EQ(controls[0], std::pair(static_cast<uint32_t>(closed), 0U));
    EXPECT_EQ(controls[1].first, static_cast<uint32_t>(closed));
    EXPECT_NE(controls[1].second, 0U);
    EXPECT_EQ(fcntl(closed, F_GETFD), -1);
    EXPECT_NE(DbcHandleEvent(closed), 0U);
    EXPECT_TRUE(seen_.empty());

    controlAnswer = -1;
    session_      = Open(Control);
    EXPECT_EQ(session_, 0U);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(StandinSubscription, WithoutAControlFunctionAThreadServes)
{
    std::atomic<int>  messages = 0;
    const ORM_SESSION served   = Open(nullptr);
    ORM_SESSION       closing  = Open(nullptr);
    onMessage                  = [&](ORM_MESSAGE, uint32_t event) {
        EXPECT_NE(std::this_thread::get_id(), std::thread::id());
        if (event == ORM_EVENT_DELETE) {
            EXPECT_EQ(OrmCloseSession(std::exchange(closing, 0)), 0U);
        }
        messages++;
    };
    ASSERT_EQ(Subscribe(served, R"({"label_name":"if_phy","events":[{"type":"insert"}]})"), 0U);
    ASSERT_EQ(Subscribe(closing, R"({"label_name":"if_phy","events":[{"type":"delete"}]})"), 0U);
    Commit([](Transaction& t) { t.Insert(Phy(1)); });
    Commit([](Transaction& t) { t.Delete(Phy(1)); });
    while (messages < 2) {
        std::this_thread::yield();
    }
    EXPECT_EQ(OrmCloseSession(served), 0U);
    Commit([](Transaction& t) { t.Insert(Phy(1)); });
    EXPECT_EQ(messages, 2);
}

// Two writers of one table each, one reader that dispatches: per table nothing is lost, doubled or
// out of order.
TEST_F(StandinSubscription, KeepsTheOrderUnderLoad)
{
    constexpr uint32_t      changes = 20000;
    std::array<uint32_t, 2> next{};  // the speed or the route state's row that must come next
    onMessage = [&](ORM_MESSAGE message, uint32_t) {
        for (uint8_t end = 0; OrmSubFetchNext(message, &end) == 0 && end == 0;) {
            uint32_t index = 0;
            ASSERT_EQ(OrmSubExtractData(message, ORM_OBJECT_NEW, 0), 0U);
            ASSERT_EQ(OrmGetFieldById(message, 0, &index, 4), 0U);
            std::array<uint8_t, 22> route;
            const bool isRoute = OrmgIfRouteGetAllFieldsInner(message, route.data(), 22) == 0;
            EXPECT_EQ(index, next[isRoute]++);
        }
    };
    ASSERT_EQ(Subscribe(session_, everything), 0U);
    ASSERT_EQ(Subscribe(session_, R"({"label_name":"if_route","events":[{"type":"insert"}]})"), 0U);

    std::atomic<int> writing = 2;
    const auto       write   = [&](const char* table) {
        for (uint32_t index = 0; index < changes;) {
            Transaction transaction;
            for (uint32_t rows = index % 3 + 1; rows > 0 && index < changes; rows--) {
                transaction.Insert(Row(table).Set("if_index", index++));
            }
            transaction.Commit();
        }
        writing--;
    };
    std::thread phy(write, "if_phy");
    std::thread route(write, "if_route");
    while (writing > 0 || IsReadable()) {
        EXPECT_EQ(DbcHandleEvent(descriptor), 0U);
    }
    phy.join();
    route.join();
    EXPECT_EQ(next, (std::array{changes, changes}));
}

}  // namespace
