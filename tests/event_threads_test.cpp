// The registries under several threads: concurrent registration, removal, teardown and publication,
// and the wait of a removal for running callbacks.
#include <array>
#include <atomic>
#include <barrier>
#include <functional>
#include <latch>
#include <random>
#include <thread>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/subscription.h>

#include "support/recorded_events.h"
#include "support/test_rows.h"
#include "support/test_system.h"

namespace {

constexpr uint32_t THREAD_EVENT = L2IF_EVT_COUNT - 1;
constexpr size_t NUMBERS = 16;

// Called by the callbacks of every registry, with the callback's number.
std::function<void(size_t number)> onCall;

template <typename Function>
Function* Callback(size_t number)
{
    return [=]<size_t... N>(std::index_sequence<N...>) {
        Function* const all[] = {[](auto...) {
            onCall(N);
            return 0U;
        }...};
        return all[number];
    }(std::make_index_sequence<NUMBERS>());
}

struct Registry {
    const char* name;
    uint32_t (*add)(size_t number);
    uint32_t (*remove)(size_t number);
    void (*tearDown)();
    void (*publish)();
    uint64_t (*count)();

    friend void PrintTo(const Registry& registry, std::ostream* out) { *out << registry.name; }
};

const Registry LAYER2 = {
    "Layer2",
    [](size_t n) {
        return L2IF_SH_EvtCbFuncReg("m", THREAD_EVENT, 1, Callback<L2IF_SH_EVT_CB_FUNC>(n));
    },
    [](size_t n) {
        return L2IF_SH_EvtCbFuncUnReg("m", THREAD_EVENT, 1, Callback<L2IF_SH_EVT_CB_FUNC>(n));
    },
    L2IF_SH_EvtCbRegTbl_Deinit,
    [] { L2IF_SH_EvtPublishEvent(THREAD_EVENT, nullptr, 0, nullptr); },
    [] { return g_qrbL2IFEventCallbacks[THREAD_EVENT].count; },
};

// Published by the library when a route state goes up.
const Registry INTERFACE = {
    "Interface",
    [](size_t n) {
        return IF_INTF_RegEvtCb(IF_EVT_STATE, IF_SUB_EVT_ROUTE_STATE, Callback<IF_EVT_CB_FUNC>(n),
                                0, 1);
    },
    [](size_t n) {
        return IF_INTF_UnRegEvtCb(IF_EVT_STATE, IF_SUB_EVT_ROUTE_STATE, Callback<IF_EVT_CB_FUNC>(n),
                                  0);
    },
    IF_EvtDeInit,
    [] {
        const QRB_IF_ROUTE_S down = {};
        QRB_IF_ROUTE_S up = down;
        up.route_state = 1;
        QRB_EVENT_IfRouteUpdate(&down, &up);
    },
    [] {
        UTIL_LIST_NODE_S* first = nullptr;
        uint64_t count = 0;
        IF_SH_EvtPublishEventGetEventNode(IF_EVT_STATE, IF_SUB_EVT_ROUTE_STATE, &first, &count);
        return count;
    },
};

const Registry NOTIFICATION = {
    "Notification",
    [](size_t n) { return IF_RegNotifyFunc(1, Callback<IF_NOTIFY_FUNC>(n)); },
    [](size_t n) { return IF_UnRegNotifyFunc(1, Callback<IF_NOTIFY_FUNC>(n)); },
    IF_NotifyFuncRegTbl_Deinit,
    [] { IF_NotifyAll(1, 2, 0, 0); },
    [] { return g_pstIfNotifyFunc.count; },
};

void RunTogether(const std::vector<std::function<void()>>& bodies)
{
    std::barrier start(static_cast<ptrdiff_t>(bodies.size()));
    std::vector<std::jthread> threads;
    for (const auto& body : bodies) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            body();
        });
    }
}

class EventThreads : public support::EventTest, public testing::WithParamInterface<Registry> {
protected:
    void SetUp() override
    {
        EventTest::SetUp();
        support::WatchPlatform(false);
        IF_NotifyFuncRegTbl_Init();
        onCall = [](size_t) {};
    }
    void TearDown() override
    {
        EventTest::TearDown();
        onCall = nullptr;
    }

    const Registry& registry = GetParam();
};

TEST_P(EventThreads, KeepAllEntriesOfTwoRegisteringThreads)
{
    constexpr size_t EACH = 20000;
    const auto add = [&](size_t number) {
        for (size_t i = 0; i < EACH; i++) {
            EXPECT_EQ(registry.add(number), 0U);
        }
    };
    std::atomic<size_t> calls = 0;
    onCall = [&](size_t) { calls++; };
    RunTogether({[&] { add(0); }, [&] { add(1); }});
    EXPECT_EQ(registry.count(), 2 * EACH);
    registry.publish();
    EXPECT_EQ(calls, 2 * EACH);

    const auto remove = [&](size_t number) {
        for (size_t i = 0; i < EACH / 100; i++) {
            EXPECT_EQ(registry.remove(number), 0U);
        }
    };
    RunTogether({[&] { remove(0); }, [&] { remove(1); }});
    EXPECT_EQ(registry.count(), 2 * EACH - 2 * EACH / 100);
}

// Two threads publish, two register and remove outside callbacks, and callbacks register, remove
// and publish. A callback that was removed outside callbacks is not called again.
TEST_P(EventThreads, ShareARegistry)
{
    constexpr size_t OUTSIDE = 8;  // numbers below are removed outside callbacks only
    constexpr int ROUNDS = 4000;
    constexpr size_t CALLS = 10000;
    std::array<std::atomic<bool>, OUTSIDE> registered = {};
    std::atomic<bool> stop = false;
    std::atomic<size_t> calls = 0;
    onCall = [&](size_t number) {
        thread_local std::minstd_rand random(
            static_cast<unsigned>(std::hash<std::thread::id>()(std::this_thread::get_id())));
        thread_local int depth = 0;
        EXPECT_TRUE(number >= OUTSIDE || registered[number]) << number;
        calls++;
        depth++;
        const size_t other = OUTSIDE + random() % (NUMBERS - OUTSIDE);
        switch (random() % 16) {
            case 0:
                registry.add(other);
                break;
            case 1:
            case 2:
            case 3:
                registry.remove(other);
                break;
            case 4:
                if (depth < 3) {
                    registry.publish();
                }
                break;
            default:
                break;
        }
        depth--;
        EXPECT_TRUE(number >= OUTSIDE || registered[number]) << number;
    };
    const auto publish = [&] {
        while (!stop) {
            registry.publish();
        }
    };
    std::atomic<int> busy = 2;
    const auto change = [&](size_t first) {
        for (int round = 0; round < ROUNDS || calls < CALLS; round++) {
            const size_t number = first + static_cast<size_t>(round) % (OUTSIDE / 2);
            if (registered[number]) {
                EXPECT_EQ(registry.remove(number), 0U);
                registered[number] = false;
            } else {
                registered[number] = true;
                EXPECT_EQ(registry.add(number), 0U);
            }
            if (round % 16 == 0) {
                registry.add(OUTSIDE + number);
            }
        }
        if (--busy == 0) {
            stop = true;
        }
    };
    RunTogether({publish, publish, [&] { change(0); }, [&] { change(OUTSIDE / 2); }});
}

TEST_P(EventThreads, TearDownARegistryInUse)
{
    std::atomic<bool> stop = false;
    const auto use = [&](size_t number) {
        while (!stop) {
            registry.add(number);
            registry.publish();
            registry.remove(number);
        }
    };
    RunTogether({[&] { use(0); }, [&] { use(1); },
                 [&] {
                     for (int round = 0; round < 500; round++) {
                         registry.tearDown();
                     }
                     stop = true;
                 }});
    registry.tearDown();
    registry.add(0);
    EXPECT_EQ(registry.count(), 1U);
}

TEST_P(EventThreads, ARemovalWaitsForItsRunningCallbackOnly)
{
    std::latch entered(1);
    std::atomic<bool> release = false;
    std::atomic<bool> returned = false;
    std::atomic<bool> removed = false;
    std::atomic<int> calls = 0;
    onCall = [&](size_t number) {
        if (number != 0 || calls++ != 0) {
            return;
        }
        entered.count_down();
        while (!release) {
            std::this_thread::yield();
        }
        returned = true;
    };
    registry.add(0);
    std::jthread publisher(registry.publish);
    entered.wait();
    std::jthread remover([&] {
        EXPECT_EQ(registry.remove(0), 0U);
        EXPECT_TRUE(returned);
        removed = true;
    });
    // After the entry is unlinked, a publication does not call it, and other threads don't wait.
    EXPECT_TRUE(support::Eventually([&] {
        const int before = calls;
        registry.publish();
        return calls == before;
    }));
    EXPECT_EQ(registry.remove(0), 1U);
    EXPECT_EQ(registry.add(1), 0U);
    EXPECT_EQ(registry.remove(1), 0U);
    EXPECT_FALSE(removed);
    release = true;
    remover.join();
    EXPECT_TRUE(removed);
}

TEST_P(EventThreads, ACallbackMayWaitForAThreadThatRegistersAndRemovesOthers)
{
    bool removed = false;
    onCall = [&](size_t number) {
        EXPECT_FALSE(number == 1 && removed);
        if (number == 0) {
            std::jthread([&] {
                EXPECT_EQ(registry.remove(1), 0U);
                EXPECT_EQ(registry.remove(1), 0U);
                EXPECT_EQ(registry.add(2), 0U);
            }).join();
            removed = true;
        }
    };
    registry.add(1);  // called before 0 ...
    registry.add(0);
    registry.add(1);  // ... and after it, in either order of calls
    registry.publish();
    EXPECT_TRUE(removed);
    EXPECT_EQ(registry.count(), 2U);
}

// Each callback removes the other while both run: neither may wait for the other.
TEST_P(EventThreads, CallbacksThatRemoveEachOtherDoNotDeadlock)
{
    std::barrier<> both(2);
    thread_local size_t own = 0;
    onCall = [&](size_t number) {
        if (number != own) {
            return;
        }
        both.arrive_and_wait();
        EXPECT_EQ(registry.remove(1 - number), 0U);
    };
    registry.add(0);
    registry.add(1);
    const auto publish = [&](size_t number) {
        own = number;
        registry.publish();
    };
    RunTogether({[&] { publish(0); }, [&] { publish(1); }});
    EXPECT_EQ(registry.count(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Of, EventThreads, testing::Values(LAYER2, INTERFACE, NOTIFICATION),
                         [](const auto& of) { return of.param.name; });

using StartUp = support::EventTest;

// Several threads start the library: every change is delivered once, also after another start and
// after the session was lost.
TEST_F(StartUp, SubscribesOnceFromSeveralThreads)
{
    using namespace support::writes;
    using support::Base;
    support::WatchPlatform(false);
    const auto start = [] { EXPECT_EQ(BDS_InitStart(), 0U); };
    support::RecordEvents();
    RunTogether({start, start, start, start});
    start();
    Write(Insert, {Base(7)});
    EXPECT_EQ(support::AwaitEvents(), support::Events{"notify 0 if 7"});

    support::StopListener();
    start();
    Write(Delete, {Base(7)});
    EXPECT_EQ(support::AwaitEvents(), support::Events{"notify 1 if 7"});
}

}  // namespace
