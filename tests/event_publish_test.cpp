// Events published: what reaches the callbacks, in which order, and what these may do meanwhile.
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/memory_map.h>

#include <array>
#include <atomic>
#include <random>
#include <thread>

#include "support/platform.h"

namespace {

using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t EVENT = 73;

class EventPublish : public support::PlatformTest {
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        MEM_EX_Init();
        calls_.clear();
    }

    void TearDown() override
    {
        L2IF_SH_EvtCbRegTbl_Deinit();
        IF_EvtDeInit();
        IF_NotifyFuncRegTbl_Deinit();
        PlatformTest::TearDown();
    }

    static inline std::string calls_;
};

TEST_F(EventPublish, HandsEverythingThrough)
{
    static const int data     = 0;
    static int       argument = 0;
    for (const uint16_t priority : {uint16_t{2}, uint16_t{3}}) {
        L2IF_SH_EvtCbFuncReg("m", EVENT, priority,
                             [](const void* d, uint32_t value, void* a, uint64_t* word) {
                                 EXPECT_TRUE(d == &data && a == &argument && value == 5);
                                 calls_ += std::to_string((*word)++);
                                 return 1U;
                             });
    }
    for (int round = 0; round < 2; round++) {
        EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, &data, 5, &argument), 0U);
    }
    EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT - 1, &data, 5, &argument), 0U);
    EXPECT_EQ(calls_, "0101");

    for (const uint32_t key : {1U, 2U}) {
        IF_RegNotifyFunc(key, [](uint32_t ifIndex, uint32_t command, uint32_t a, uint32_t b) {
            calls_ += " " + std::to_string(ifIndex) + std::to_string(command) + std::to_string(a) +
                      std::to_string(b);
            return 1U;
        });
    }
    EXPECT_EQ(IF_NotifyAll(9, IF_NOTIFY_DOWN, 7, 8), 0U);
    EXPECT_EQ(calls_, "0101 9478 9478");
}

TEST_F(EventPublish, ServesThreadsAtTheSameTime)
{
    static std::atomic<int> calls;
    calls = 0;
    for (int i = 0; i < 3; i++) {
        L2IF_SH_EvtCbFuncReg("m", EVENT, 1, [](auto...) { return static_cast<uint32_t>(++calls); });
    }
    const auto publish = [] {
        for (int i = 0; i < 1000; i++) {
            EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, nullptr, 0, nullptr), 0U);
        }
    };
    std::thread other(publish);
    publish();
    other.join();
    EXPECT_EQ(calls, 6000);
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

TEST_F(EventPublish, StopsAtAnEntryWithoutACallback)
{
    const auto count = [](const void*, uint32_t, void*, uint64_t*) {
        calls_ += "x";
        return 0U;
    };
    L2IF_SH_EvtCbFuncReg("first", EVENT, 3, count);
    L2IF_SH_EvtCbFuncReg("second", EVENT, 2, nullptr);
    L2IF_SH_EvtCbFuncReg("third", EVENT, 1, count);
    EXPECT_EQ(L2IF_SH_EvtPublishEvent(EVENT, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(calls_, "x");
    EXPECT_EQ(TakeMessages(), Messages{"L2IF_SH_EvtPublishEvent: Failed to execute callback, "
                                       "moduleName=second, priority=2\n"});
}

TEST_F(EventPublish, FindsTheListOfAnEvent)
{
    const auto        callback = [](uint32_t, uint32_t, uint32_t, void*, void*) { return 0U; };
    UTIL_LIST_NODE_S* first    = nullptr;
    uint64_t          count    = 0;
    for (const auto& [eventId, subId] : {std::pair{9U, 8U}, {9U, 8U}, {4U, IF_EVT_WHOLE}}) {
        ASSERT_EQ(IF_INTF_RegEvtCb(eventId, subId, callback, 0, 0), 0U);
    }
    const struct {
        uint32_t eventId;
        uint32_t subId;
        uint64_t count;
    } found[] = {{9, 8, 2}, {4, IF_EVT_WHOLE, 1}, {9, IF_EVT_WHOLE, 0}, {9, 13, 0}};
    for (const auto& [eventId, subId, expected] : found) {
        EXPECT_EQ(IF_SH_EvtPublishEventGetEventNode(eventId, subId, &first, &count), 0U);
        EXPECT_EQ(count, expected);
        EXPECT_EQ(first == nullptr, expected == 0);
    }
    count = 77;
    for (const auto& [eventId, subId] : {std::pair{9U, 14U}, {4U, 0U}, {76U, IF_EVT_WHOLE}}) {
        EXPECT_EQ(IF_SH_EvtPublishEventGetEventNode(eventId, subId, &first, &count), 1U);
        EXPECT_EQ(TakeMessages(),
                  Messages{"IF_SH_EvtPublishEventGetEventNode: Failed to publish event id=" +
                           std::to_string(eventId) + ", subId=" + std::to_string(subId) + "\n"});
    }
    EXPECT_EQ(count, 77U);
}

// As before anybody has registered.
TEST_F(EventPublish, RefusesBeforeARegistryIsBuilt)
{
    for (uint8_t* flag : {&g_isL2IFEvtInited, &g_isIFEvtInited, &g_isIFNotifyInited}) {
        *flag = 0;
    }
    UTIL_LIST_NODE_S* first = nullptr;
    uint64_t          count = 0;
    EXPECT_EQ(L2IF_SH_EvtPublishEvent(74, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(L2IF_SH_EvtPublishEvent(73, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(IF_SH_EvtPublishEventGetEventNode(76, 1, &first, &count), 1U);
    EXPECT_EQ(IF_SH_EvtPublishEventGetEventNode(9, 2, &first, &count), 1U);
    EXPECT_EQ(IF_NotifyAll(1, 0, 0, 0), 1U);
    const std::string inited = ": Failed to execute callback, it is not inited\n";
    const std::string get    = "IF_SH_EvtPublishEventGetEventNode";
    EXPECT_EQ(TakeMessages(), (Messages{"L2IF_SH_EvtPublishEvent: Failed to publis event id=74\n",
                                        "L2IF_SH_EvtPublishEvent" + inited,
                                        get + ": Failed to publish event id=76, subId=1\n",
                                        get + inited, "IF_NotifyAll" + inited}));
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

    struct Entry {
        bool     registered;
        unsigned changes;
    };

    struct Publication {
        std::array<Entry, CALLBACKS>    begun;
        std::array<unsigned, CALLBACKS> calls;
    };

    // A callback that knows its number, for each number.
    template <typename Function>
    struct Callbacks;
    template <typename... Arguments>
    struct Callbacks<uint32_t(Arguments...)> {
        template <size_t N>
        static uint32_t Callback(Arguments...)
        {
            Called(N);
            return 0;
        }
        template <size_t... N>
        static auto* At(size_t number, std::index_sequence<N...>)
        {
            return std::array{Callback<N>...}[number];
        }
    };
    template <typename Function>
    static Function* Callback(size_t number)
    {
        return Callbacks<Function>::At(number, std::make_index_sequence<CALLBACKS>());
    }

    static size_t Below(size_t limit) { return random_() % limit; }

    static void Set(Entry& entry, bool registered)
    {
        entry.changes += entry.registered != registered ? 1 : 0;
        entry.registered = registered;
    }

    static void Act()
    {
        const size_t number = Below(CALLBACKS);
        const size_t kind   = Below(100);
        if (kind == 0) {
            registry_.tearDown();
            for (Entry& entry : entries_) {
                Set(entry, false);
            }
        } else if (kind < 10 && publications_.size() < 4) {
            Publish();
        } else if (kind < 60) {
            const bool registered = entries_[number].registered;
            EXPECT_EQ((registered ? registry_.remove : registry_.add)(number), 0U);
            Set(entries_[number], !registered);
        }
    }

    // Who is registered all along is called once.
    static void Publish()
    {
        publications_.push_back({entries_, {}});
        EXPECT_EQ(registry_.publish(), 0U);
        const auto [begun, calls] = publications_.back();
        publications_.pop_back();
        for (size_t i = 0; i < CALLBACKS; i++) {
            if (entries_[i].changes == begun[i].changes) {
                EXPECT_EQ(calls[i], entries_[i].registered ? 1U : 0U) << i;
            }
        }
    }

    // Who is not registered is never called.
    static void Called(size_t number)
    {
        EXPECT_TRUE(entries_[number].registered) << number;
        publications_.back().calls[number]++;
        for (size_t actions = Below(3); actions > 0; actions--) {
            Act();
        }
    }

    static void Run(const Registry& registry)
    {
        for (unsigned seed = 20261124; seed < 20261174 && !HasFailure(); seed++) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            random_.seed(seed);
            registry_ = registry;
            entries_  = {};
            for (int i = 0; i < 500 && !HasFailure(); i++) {
                Act();
            }
            registry.tearDown();
        }
    }

    static inline std::mt19937                 random_;
    static inline Registry                     registry_;
    static inline std::array<Entry, CALLBACKS> entries_;
    static inline std::vector<Publication>     publications_;
};

TEST_F(Turmoil, AmongLayer2Events)
{
    L2IF_SH_EvtCbRegTbl_Init();
    Run({[](size_t n) {
             return L2IF_SH_EvtCbFuncReg("m", EVENT, static_cast<uint16_t>(n / 2),
                                         Callback<L2IF_SH_EVT_CB_FUNC>(n));
         },
         [](size_t n) {
             return L2IF_SH_EvtCbFuncUnReg("m", EVENT, static_cast<uint16_t>(n / 2),
                                           Callback<L2IF_SH_EVT_CB_FUNC>(n));
         },
         L2IF_SH_EvtCbRegTbl_Deinit,
         [] { return L2IF_SH_EvtPublishEvent(EVENT, nullptr, 0, nullptr); }});
}

// Raised by the library itself: the layer 3 of an interface goes up.
TEST_F(Turmoil, AmongInterfaceEvents)
{
    constexpr uint32_t STATE = IF_EVT_STATE;
    constexpr uint32_t ROUTE = IF_SUB_EVT_ROUTE_STATE;
    Run({[](size_t n) {
             return IF_INTF_RegEvtCb(STATE, ROUTE, Callback<IF_EVT_CB_FUNC>(n), 0,
                                     static_cast<uint32_t>(n) / 2);
         },
         [](size_t n) { return IF_INTF_UnRegEvtCb(STATE, ROUTE, Callback<IF_EVT_CB_FUNC>(n), 0); },
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
