// Registries: registration, order of calls, and changes made by callbacks.
#include <algorithm>
#include <array>
#include <atomic>
#include <random>
#include <thread>

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>

#include "support/example_calls.h"
#include "support/recorded_events.h"

namespace {

constexpr uint32_t EVENT = L2IF_EVT_COUNT - 1;

using EventRegistry = support::EventTest;

TEST_F(EventRegistry, PassesAllArguments)
{
    static const int data = 0;
    static int argument = 0;
    static std::string calls;
    calls.clear();
    for (int callback = 0; callback < 2; callback++) {
        L2IF_SH_EvtCbFuncReg("m", EVENT, 2, [](const void* d, uint32_t value, void* a, auto* word) {
            EXPECT_TRUE(d == &data && a == &argument && value == 5);
            calls += std::to_string((*word)++);
            return 1U;
        });
    }
    IF_RegNotifyFunc(3, [](uint32_t ifIndex, uint32_t command, uint32_t a, uint32_t b) {
        calls += " " + calls::Texts({ifIndex, command, a, b});
        return 1U;
    });
    EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, &data, 5, &argument), 0U);
    EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, &data, 5, &argument), 0U);
    EXPECT_EQ(IF_NotifyAll(9, IF_NOTIFY_DOWN, 7, 8), 0U);
    EXPECT_EQ(calls, "0101 9 4 7 8");
}

TEST_F(EventRegistry, ServesSeveralThreads)
{
    static std::atomic<uint32_t> calls;
    calls = 0;
    for (int i = 0; i < 3; i++) {
        L2IF_SH_EvtCbFuncReg("m", EVENT, 1, [](auto...) { return ++calls; });
    }
    std::array<std::jthread, 2> threads;
    for (std::jthread& thread : threads) {
        thread = std::jthread([] {
            for (int i = 0; i < 1000; i++) {
                EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, nullptr, 0, nullptr), 0U);
            }
        });
    }
    std::ranges::for_each(threads, &std::jthread::join);
    EXPECT_EQ(calls, 6000U);
}

uint32_t RegisterAnew(uint32_t, uint32_t, uint32_t a, uint32_t)
{
    EXPECT_EQ(IF_UnRegNotifyFunc(a, RegisterAnew), 0U);
    return IF_RegNotifyFunc(a, RegisterAnew);
}

// Each registration adds a new tail to the list.
TEST_F(EventRegistry, PublicationEndsIfCallbacksKeepRegistering)
{
    for (int entries = 0; entries < 3; entries++) {
        IF_RegNotifyFunc(1, RegisterAnew);
    }
    EXPECT_EQ(IF_NotifyAll(0, 0, 1, 0), 0U);
    EXPECT_EQ(g_pstIfNotifyFunc.count, 3U);
}

TEST_F(EventRegistry, TreeHasExactlyTheSubEvents)
{
    uint32_t subEvents = 0;
    IF_EvtInit();
    for (uint32_t eventId = 0; eventId < g_qrbIFEventCallbacks.childCount; eventId++) {
        const IF_EVT_NODE_S& event = g_qrbIFEventCallbacks.children[eventId];
        EXPECT_EQ(event.parent, &g_qrbIFEventCallbacks);
        if (const uint32_t count = event.childCount; count != 0) {
            EXPECT_EQ(event.children[count - 1].parent, &event);
            EXPECT_EQ(IF_INTF_RegEvtCb(eventId, 0, nullptr, 0, 0), 0U);
            EXPECT_EQ(IF_INTF_RegEvtCb(eventId, count - 1, nullptr, 0, 0), 0U);
            EXPECT_EQ(IF_INTF_RegEvtCb(eventId, count, nullptr, 0, 0), 1U);
            subEvents += count;
        }
    }
    EXPECT_EQ(subEvents, 216U);
    IF_EvtDeInit();
    EXPECT_EQ(support::LibraryBlocks(), 0);
}

// The state after the children of a node could not be allocated.
TEST_F(EventRegistry, ReportsASubEventWithoutANode)
{
    IF_EvtInit();
    IF_EVT_NODE_S& event = g_qrbIFEventCallbacks.children[IF_EVT_STATE];
    IF_EVT_NODE_S* const children = std::exchange(event.children, nullptr);
    const uint32_t count = event.childCount;
    EXPECT_EQ(IF_INTF_RegEvtCb(IF_EVT_STATE, count - 1, nullptr, 0, 1), 1U);
    EXPECT_EQ(IF_INTF_UnRegEvtCb(IF_EVT_STATE, count - 1, nullptr, 0), 1U);
    EXPECT_EQ(IF_INTF_RegEvtCb(IF_EVT_STATE, count, nullptr, 0, 1), 1U);
    EXPECT_EQ(support::TakeMessages(),
              (std::vector<std::string>{"IF_EvtRegCbf: Failed to find event node.\n",
                                        "IF_EvtUnRegCbf: Failed to find event node.\n",
                                        "IF_EvtRegCbf: Failed to reg event id=9, subId=14\n"}));
    event.children = children;
}

// Callbacks that randomly register, unregister, tear down and publish. The calls are compared with
// a model.
class ReentrantRegistry : public EventRegistry {
protected:
    static constexpr size_t CALLBACKS = 8;

    // Functions of one registry, by the callback's number.
    struct ModelRegistry {
        uint32_t (*add)(size_t number);
        uint32_t (*remove)(size_t number);
        void (*tearDown)();
        uint32_t (*publish)();
        bool byPriority;  // equal priorities: newest first; false: registration order
    };

    using Counts = std::array<ptrdiff_t, CALLBACKS>;

    // A callback with this number.
    template <typename Function>
    static Function* Callback(size_t number)
    {
        return [=]<size_t... N>(std::index_sequence<N...>) {
            Function* const all[] = {[](auto...) { return Called(N); }...};
            return all[number];
        }(std::make_index_sequence<CALLBACKS>());
    }

    // A random number in this range, both ends included.
    static uint16_t PriorityOf(size_t number) { return static_cast<uint16_t>(number / 2 * 0x5555); }

    static size_t Below(size_t limit) { return random_() % limit; }

    static void Add(size_t number)
    {
        const auto place = std::ranges::find_if(entries_, [=](size_t entry) {
            return registry_.byPriority && PriorityOf(entry) <= PriorityOf(number);
        });
        entries_.insert(place, number);
        changes_[number]++;
        EXPECT_EQ(registry_.add(number), 0U);
    }

    static void Remove(size_t number)
    {
        const auto found = std::ranges::find(entries_, number);
        const bool there = found != entries_.end();
        if (there) {
            entries_.erase(found);
            changes_[number]++;
        }
        EXPECT_EQ(registry_.remove(number), there ? 0U : 1U);
    }

    static void TearDownAll()
    {
        for (const size_t number : std::exchange(entries_, {})) {
            changes_[number]++;
        }
        registry_.tearDown();
        EXPECT_EQ(support::LibraryBlocks(), 0);
    }

    static void Act()
    {
        const size_t number = Below(CALLBACKS);
        const size_t kind = Below(100);
        if (kind == 0) {
            TearDownAll();
        } else if (kind < 10 && depth_ < 4) {
            Publish();
        } else if (kind < 35) {
            Add(number);
        } else if (kind < 75) {
            Remove(number);
        }
    }

    // An entry that stays registered is called once; without changes, all are called in order.
    static void Publish()
    {
        const Counts begun = changes_;
        const auto outer = std::exchange(calls_, {});
        depth_++;
        EXPECT_EQ(registry_.publish(), 0U);
        depth_--;
        const auto calls = std::exchange(calls_, outer);
        EXPECT_TRUE(changes_ != begun || calls == entries_);
        for (size_t i = 0; i < CALLBACKS; i++) {
            EXPECT_TRUE(changes_[i] != begun[i] ||
                        std::ranges::count(calls, i) == std::ranges::count(entries_, i));
        }
    }

    // An entry that is not registered is never called.
    static uint32_t Called(size_t number)
    {
        EXPECT_NE(std::ranges::count(entries_, number), 0) << number;
        calls_.push_back(number);
        if (Below(3) == 0) {
            Act();
            Act();
        }
        return 0;
    }

    static void Run(const ModelRegistry& registry)
    {
        registry_ = registry;
        for (unsigned seed = 20261124; seed < 20261174 && !HasFailure(); seed++) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            random_.seed(seed);
            for (int i = 0; i < 500 && !HasFailure(); i++) {
                Act();
            }
            TearDownAll();
        }
    }

    static inline std::mt19937 random_;
    static inline ModelRegistry registry_;
    static inline std::vector<size_t> entries_;  // in the order of calls
    static inline Counts changes_;               // per entry, by number
    static inline std::vector<size_t> calls_;    // of the current publication
    static inline int depth_ = 0;
};

TEST_F(ReentrantRegistry, Layer2EventsFollowTheModel)
{
    using Function = L2IF_SH_EVT_CB_FUNC;
    L2IF_SH_EvtCbRegTbl_Init();
    Run({[](size_t n) {
             return L2IF_SH_EvtCbFuncReg("m", EVENT, PriorityOf(n), Callback<Function>(n));
         },
         [](size_t n) {
             return L2IF_SH_EvtCbFuncUnReg("m", EVENT, PriorityOf(n), Callback<Function>(n));
         },
         L2IF_SH_EvtCbRegTbl_Deinit,
         [] { return L2IF_SH_EvtPublishEvent(EVENT, nullptr, 0, nullptr); }, true});
}

// Published by the library itself: the route state of an interface goes up.
TEST_F(ReentrantRegistry, InterfaceEventsFollowTheModel)
{
    using Function = IF_EVT_CB_FUNC;
    constexpr uint32_t STATE = IF_EVT_STATE;
    constexpr uint32_t ROUTE = IF_SUB_EVT_ROUTE_STATE;
    Run({[](size_t n) {
             return IF_INTF_RegEvtCb(STATE, ROUTE, Callback<Function>(n), 0,
                                     PriorityOf(n) * 0x10001U);
         },
         [](size_t n) { return IF_INTF_UnRegEvtCb(STATE, ROUTE, Callback<Function>(n), 0); },
         IF_EvtDeInit,
         [] {
             const QRB_IF_ROUTE_S down = {};
             QRB_IF_ROUTE_S up = down;
             up.route_state = 1;
             QRB_EVENT_IfRouteUpdate(&down, &up);
             return 0U;
         },
         true});
}

TEST_F(ReentrantRegistry, NotificationsFollowTheModel)
{
    IF_NotifyFuncRegTbl_Init();
    Run({[](size_t n) { return IF_RegNotifyFunc(1, Callback<IF_NOTIFY_FUNC>(n)); },
         [](size_t n) { return IF_UnRegNotifyFunc(1, Callback<IF_NOTIFY_FUNC>(n)); },
         IF_NotifyFuncRegTbl_Deinit, [] { return IF_NotifyAll(1, 2, 0, 0); }, false});
}

}  // namespace
