// Events published: what reaches the callbacks, in which order, and what these may do meanwhile.
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>

#include <array>
#include <atomic>
#include <random>
#include <thread>

#include "calls/calls.h"
#include "support/events.h"

namespace {

using calls::Call;
using calls::Expect;

constexpr uint32_t EVENT = 73;

class EventPublish : public support::PlatformTest {
protected:
    void TearDown() override
    {
        support::ForgetEvents();
        PlatformTest::TearDown();
    }
};

TEST_F(EventPublish, HandsEverythingThrough)
{
    static const int   data     = 0;
    static int         argument = 0;
    static std::string calls;
    calls.clear();
    for (const uint16_t priority : {uint16_t{2}, uint16_t{3}}) {
        L2IF_SH_EvtCbFuncReg("m", EVENT, priority,
                             [](const void* d, uint32_t value, void* a, uint64_t* word) {
                                 EXPECT_TRUE(d == &data && a == &argument && value == 5);
                                 calls += std::to_string((*word)++);
                                 return 1U;
                             });
        IF_RegNotifyFunc(priority, [](uint32_t ifIndex, uint32_t command, uint32_t a, uint32_t b) {
            calls += " " + calls::Texts({ifIndex, command, a, b});
            return 1U;
        });
    }
    for (int round = 0; round < 2; round++) {
        EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, &data, 5, &argument), 0U);
    }
    EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT - 1, &data, 5, &argument), 0U);
    EXPECT_EQ(IF_NotifyAll(9, IF_NOTIFY_DOWN, 7, 8), 0U);
    EXPECT_EQ(calls, "0101 9 4 7 8 9 4 7 8");
}

TEST_F(EventPublish, ServesThreadsAtTheSameTime)
{
    static std::atomic<uint32_t> calls;
    calls = 0;
    for (int i = 0; i < 3; i++) {
        L2IF_SH_EvtCbFuncReg("m", EVENT, 1, [](auto...) { return ++calls; });
    }
    const auto publish = [] {
        for (int i = 0; i < 1000; i++) {
            EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, nullptr, 0, nullptr), 0U);
        }
    };
    std::thread other(publish);
    publish();
    other.join();
    EXPECT_EQ(calls, 6000U);
}

uint32_t RegisterAnew(uint32_t, uint32_t, uint32_t a, uint32_t)
{
    EXPECT_EQ(IF_UnRegNotifyFunc(a, RegisterAnew), 0U);
    return IF_RegNotifyFunc(a, RegisterAnew);
}

// Each time the list's tail is another entry.
TEST_F(EventPublish, ComesToAnEndWhenCallbacksRegisterAnew)
{
    for (int entries = 0; entries < 3; entries++) {
        IF_RegNotifyFunc(1, RegisterAnew);
    }
    EXPECT_EQ(IF_NotifyAll(0, 0, 1, 0), 0U);
    EXPECT_EQ(g_pstIfNotifyFunc.count, 3U);
}

// Answers the number of callbacks, and whether there is a first.
Call Finds(uint32_t eventId, uint32_t subId, const char* expected)
{
    return {"IF_SH_EvtPublishEventGetEventNode",
            [=] {
                UTIL_LIST_NODE_S* first = nullptr;
                uint64_t          count = calls::UNTOUCHED;
                const uint32_t    ret =
                    IF_SH_EvtPublishEventGetEventNode(eventId, subId, &first, &count);
                return calls::Texts({ret, static_cast<uint32_t>(count), first != nullptr});
            },
            expected};
}

TEST_F(EventPublish, FindsTheCallbacksOfWhatThereIs)
{
    constexpr char unbuilt[] = R"(1 | Failed to execute callback, it is not inited\n)";
    g_isL2IFEvtInited        = 0;
    Expect({
        {CALL(L2IF_SH_EvtPublishEvent, EVENT, nullptr, 0U, nullptr), unbuilt},
        {CALL(IF_NotifyAll, 1U, 0U, 0U, 0U), unbuilt},
        Finds(9, 2, R"(1 - 0 | Failed to execute callback, it is not inited\n)"),
        Finds(76, 1, R"(1 - 0 | Failed to publish event id=76, subId=1\n)"),
        {CALL(L2IF_SH_EvtPublishEvent, EVENT + 1, nullptr, 0U, nullptr),
         R"(1 | Failed to publis event id=74\n)"},
    });
    for (const auto& [eventId, subId] : {std::pair{9U, 8U}, {9U, 8U}, {4U, IF_EVT_WHOLE}}) {
        EXPECT_EQ(IF_INTF_RegEvtCb(
                      eventId, subId, [](auto...) { return 0U; }, 0, 0),
                  0U);
    }
    L2IF_SH_EvtCbFuncReg("first", EVENT, 3, nullptr);
    Expect({
        Finds(9, 8, "0 2 1"),
        Finds(4, IF_EVT_WHOLE, "0 1 1"),
        Finds(9, IF_EVT_WHOLE, "0 0 0"),
        Finds(9, 13, "0 0 0"),
        Finds(9, 14, R"(1 - 0 | Failed to publish event id=9, subId=14\n)"),
        Finds(4, 0, R"(1 - 0 | Failed to publish event id=4, subId=0\n)"),
        {CALL(L2IF_SH_EvtPublishEvent, EVENT, nullptr, 0U, nullptr),
         R"(1 | Failed to execute callback, moduleName=first, priority=3\n)"},
    });
}

// Callbacks that do, at random, what callbacks may: register, unregister, tear down, publish.
class Turmoil : public EventPublish {
protected:
    static constexpr size_t CALLBACKS = 8;

    // Works on the callbacks' numbers.
    struct Registry {
        uint32_t (*add)(size_t number);
        uint32_t (*remove)(size_t number);
        void (*tearDown)();
        uint32_t (*publish)();
    };

    using Counts = std::array<unsigned, CALLBACKS>;

    // One that knows its number.
    template <typename Function>
    static Function* Callback(size_t number)
    {
        return [=]<size_t... N>(std::index_sequence<N...>)
        {
            Function* const all[] = {[](auto...) { return Called(N); }...};
            return all[number];
        }
        (std::make_index_sequence<CALLBACKS>());
    }

    static uint16_t PriorityOf(size_t number) { return static_cast<uint16_t>(number / 2); }

    static size_t Below(size_t limit) { return random_() % limit; }
    static bool   IsRegistered(size_t number) { return changes_[number] % 2 != 0; }

    static void Act()
    {
        const size_t number = Below(CALLBACKS);
        const size_t kind   = Below(100);
        if (kind == 0) {
            registry_.tearDown();
            for (unsigned& changes : changes_) {
                changes += changes % 2;
            }
        } else if (kind < 10 && depth_ < 4) {
            Publish();
        } else if (kind < 60) {
            EXPECT_EQ((IsRegistered(number) ? registry_.remove : registry_.add)(number), 0U);
            changes_[number]++;
        }
    }

    // Who is registered all along is called once.
    static void Publish()
    {
        const Counts begun = changes_;
        const Counts outer = std::exchange(calls_, {});
        depth_++;
        EXPECT_EQ(registry_.publish(), 0U);
        depth_--;
        const Counts calls = std::exchange(calls_, outer);
        for (size_t i = 0; i < CALLBACKS; i++) {
            EXPECT_TRUE(changes_[i] != begun[i] || calls[i] == changes_[i] % 2) << i;
        }
    }

    // Who is not registered is never called.
    static uint32_t Called(size_t number)
    {
        EXPECT_TRUE(IsRegistered(number)) << number;
        calls_[number]++;
        for (size_t actions = Below(3); actions > 0; actions--) {
            Act();
        }
        return 0;
    }

    static void Run(const Registry& registry)
    {
        for (unsigned seed = 20261124; seed < 20261174 && !HasFailure(); seed++) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            random_.seed(seed);
            registry_ = registry;
            changes_  = {};
            for (int i = 0; i < 500 && !HasFailure(); i++) {
                Act();
            }
            registry.tearDown();
        }
    }

    static inline std::mt19937 random_;
    static inline Registry     registry_;
    static inline Counts       changes_;  // odd: registered
    static inline Counts       calls_;    // of the publication under way
    static inline int          depth_ = 0;
};

TEST_F(Turmoil, AmongLayer2Events)
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
         [] { return L2IF_SH_EvtPublishEvent(EVENT, nullptr, 0, nullptr); }});
}

// Raised by the library itself: the layer 3 of an interface goes up.
TEST_F(Turmoil, AmongInterfaceEvents)
{
    using Function           = IF_EVT_CB_FUNC;
    constexpr uint32_t STATE = IF_EVT_STATE;
    constexpr uint32_t ROUTE = IF_SUB_EVT_ROUTE_STATE;
    Run({[](size_t n) {
             return IF_INTF_RegEvtCb(STATE, ROUTE, Callback<Function>(n), 0, PriorityOf(n));
         },
         [](size_t n) { return IF_INTF_UnRegEvtCb(STATE, ROUTE, Callback<Function>(n), 0); },
         IF_EvtDeInit,
         [] {
             const QRB_IF_ROUTE_S down = {};
             QRB_IF_ROUTE_S       up   = down;
             up.route_state            = 1;
             QRB_EVENT_IfRouteUpdate(&down, &up);
             return 0U;
         }});
}

TEST_F(Turmoil, AmongNotifications)
{
    IF_NotifyFuncRegTbl_Init();
    Run({[](size_t n) { return IF_RegNotifyFunc(1, Callback<IF_NOTIFY_FUNC>(n)); },
         [](size_t n) { return IF_UnRegNotifyFunc(1, Callback<IF_NOTIFY_FUNC>(n)); },
         IF_NotifyFuncRegTbl_Deinit, [] { return IF_NotifyAll(1, 2, 0, 0); }});
}

}  // namespace
