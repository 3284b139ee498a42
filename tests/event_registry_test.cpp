// Callbacks registered and unregistered: their order, what finds them again, what is refused.
#include <tarnd_qrb/event_registry.h>

#include "calls/calls.h"
#include "support/events.h"

namespace {

using calls::Expect;
using support::TakeMessages;

using Messages = std::vector<std::string>;

constexpr uint32_t SUB_EVENTS = 9;  // an event with 14
constexpr uint32_t UNUSED     = 99;
constexpr uint16_t PRIORITY   = 5;

// Told apart by their addresses.
constexpr L2IF_SH_EVT_CB_FUNC* Layer2A    = [](auto...) { return 0U; };
constexpr L2IF_SH_EVT_CB_FUNC* Layer2B    = [](auto...) { return 0U; };
constexpr IF_EVT_CB_FUNC*      InterfaceA = [](auto...) { return 0U; };
constexpr IF_EVT_CB_FUNC*      InterfaceB = [](auto...) { return 0U; };
constexpr IF_NOTIFY_FUNC*      NotifyA    = [](auto...) { return 0U; };
constexpr IF_NOTIFY_FUNC*      NotifyB    = [](auto...) { return 0U; };

// What toText makes of each entry, from the head on.
template <typename Entry>
std::string Listed(const UTIL_LIST_S& list, std::string (*toText)(const Entry& entry))
{
    std::string text;
    for (UTIL_LIST_NODE_S* node = list.head; node != nullptr; node = node->next) {
        text += toText(*static_cast<Entry*>(UTIL_LIST_Data(node))) + ", ";
    }
    return text;
}

std::string Layer2(uint32_t eventId)
{
    return Listed<L2IF_SH_EVT_CB_S>(g_qrbL2IFEventCallbacks[eventId], [](const auto& entry) {
        return entry.moduleName + (" " + std::to_string(entry.priority));
    });
}

std::string Interface(uint32_t subId)
{
    const IF_EVT_NODE_S& event = g_qrbIFEventCallbacks.children[SUB_EVENTS];
    const IF_EVT_NODE_S& node  = subId == IF_EVT_WHOLE ? event : event.children[subId];
    return Listed<IF_EVT_CB_S>(node.list, [](const auto& entry) {
        return (entry.pfCallback == InterfaceA ? "A " : "B ") + std::to_string(entry.priority);
    });
}

std::string Notified()
{
    return Listed<IF_NOTIFY_FUNC_S>(g_pstIfNotifyFunc, [](const auto& entry) {
        return (entry.pfCallback == NotifyA ? "A " : "B ") + std::to_string(entry.ulKey);
    });
}

class EventRegistry : public support::PlatformTest {
protected:
    void TearDown() override
    {
        support::ForgetEvents();
        EXPECT_EQ(support::LibraryBlocks(), 0);
        PlatformTest::TearDown();
    }
};

TEST_F(EventRegistry, HigherPriorityComesFirstAndAmongEqualsTheNewest)
{
    for (const auto& [name, priority] :
         {std::pair<const char*, uint16_t>{"a", 5}, {"b", 9}, {"c", 5}, {"d", 0xFFFF}, {"e", 0}}) {
        EXPECT_EQ(L2IF_SH_EvtCbFuncReg(name, 73, priority, Layer2A), 0U);
    }
    EXPECT_EQ(Layer2(73), "d 65535, b 9, c 5, a 5, e 0, ");

    for (const auto& [callback, priority] :
         {std::pair{InterfaceA, 5U}, {InterfaceB, 0xFFFFFFFFU}, {InterfaceB, 5U}}) {
        EXPECT_EQ(IF_EvtRegCbf(callback, UNUSED, priority, 2, SUB_EVENTS, 13U), 0U);
        EXPECT_EQ(IF_EvtRegCbf(callback, UNUSED, priority, 3, SUB_EVENTS, 13U), 0U);
    }
    EXPECT_EQ(Interface(13), "B 4294967295, B 5, A 5, ");
    EXPECT_EQ(Interface(IF_EVT_WHOLE), "B 4294967295, B 5, A 5, ");

    for (const uint32_t key : {7U, 3U, 7U}) {
        EXPECT_EQ(IF_RegNotifyFunc(key, NotifyA), 0U);
    }
    EXPECT_EQ(Notified(), "A 7, A 3, A 7, ");
}

TEST_F(EventRegistry, UnregistersTheFirstThatMatches)
{
    const std::string longest(63, 'x');
    for (const char* name : {"m", "M", "m", longest.c_str()}) {
        EXPECT_EQ(L2IF_SH_EvtCbFuncReg(name, 0, PRIORITY, Layer2A), 0U);
    }
    Expect({
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 0U, uint16_t{6}, Layer2A), "1"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 0U, PRIORITY, Layer2B), "1"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 1U, PRIORITY, Layer2A), "1"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "xx", 0U, PRIORITY, Layer2A), "1"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, nullptr, 0U, PRIORITY, Layer2A), "1"},
    });
    EXPECT_EQ(L2IF_SH_EvtCbFuncUnReg("m", 0, PRIORITY, Layer2A), 0U);
    EXPECT_EQ(L2IF_SH_EvtCbFuncUnReg(longest.c_str(), 0, PRIORITY, Layer2A), 0U);
    EXPECT_EQ(Layer2(0), "M 5, m 5, ");

    // By callback alone; the two forms are the same.
    for (const uint32_t subId : {8U, IF_EVT_WHOLE}) {
        EXPECT_EQ(IF_INTF_RegEvtCb(SUB_EVENTS, subId, InterfaceA, UNUSED, 1), 0U);
        EXPECT_EQ(IF_INTF_RegEvtCb(SUB_EVENTS, subId, InterfaceB, UNUSED, 2), 0U);
        EXPECT_EQ(IF_INTF_RegEvtCb(SUB_EVENTS, subId, InterfaceA, UNUSED, 3), 0U);
    }
    EXPECT_EQ(IF_EvtUnRegCbf(InterfaceA, UNUSED, 2, SUB_EVENTS, 8U), 0U);
    EXPECT_EQ(IF_EvtUnRegCbf(InterfaceB, UNUSED, 1, SUB_EVENTS, 8U), 0U);
    EXPECT_EQ(IF_INTF_UnRegEvtCb(SUB_EVENTS, IF_EVT_WHOLE, InterfaceA, UNUSED), 0U);
    EXPECT_EQ(Interface(8) + Interface(IF_EVT_WHOLE), "B 2, A 1, A 1, ");
    EXPECT_EQ(IF_INTF_UnRegEvtCb(SUB_EVENTS, 8, InterfaceB, UNUSED), 0U);
    EXPECT_EQ(IF_INTF_UnRegEvtCb(SUB_EVENTS, 8, InterfaceB, UNUSED), 1U);

    for (IF_NOTIFY_FUNC* const callback : {NotifyA, NotifyB, NotifyA}) {
        EXPECT_EQ(IF_RegNotifyFunc(1, callback), 0U);
        EXPECT_EQ(IF_RegNotifyFunc(2, callback), 0U);
    }
    EXPECT_EQ(IF_UnRegNotifyFunc(2, NotifyA), 0U);
    EXPECT_EQ(IF_UnRegNotifyFunc(3, NotifyA), 1U);
    EXPECT_EQ(Notified(), "A 1, B 1, B 2, A 1, A 2, ");
    EXPECT_EQ(TakeMessages(), Messages{});
}

TEST_F(EventRegistry, RefusesEventsThatDoNotExist)
{
    static const std::string tooLong(64, 'x');
    Expect({
        {CALL(L2IF_SH_EvtCbFuncReg, "m", 74U, PRIORITY, Layer2A),
         R"(1 | Failed to reg event id=74\n)"},
        {CALL(L2IF_SH_EvtCbFuncUnReg, "m", 74U, PRIORITY, Layer2A),
         R"(1 | Failed to reg event id=74\n)"},
        {CALL(L2IF_SH_EvtCbFuncReg, tooLong.c_str(), 73U, PRIORITY, Layer2A),
         R"(1 | strcpy_s for pszModuleName failed, ret = 34.\n)"},
        {CALL(L2IF_SH_EvtCbFuncReg, nullptr, 73U, PRIORITY, Layer2A),
         R"(1 | strcpy_s for pszModuleName failed, ret = 22.\n)"},
        {CALL(IF_EvtUnRegCbf, InterfaceA, UNUSED, 2U, SUB_EVENTS, 2U),
         R"(1 | Failed to find event node.\n)"},
        {CALL(IF_EvtUnRegCbf, InterfaceA, UNUSED, 2U, 76U, 2U),
         R"(1 | Failed to reg event id=76, subId=2\n)"},
        {CALL(IF_EvtRegCbf, InterfaceA, UNUSED, 1U, 1U, 76U),
         R"(1 | Failed to reg event id=76, subId=4294967295\n)", IF_EvtInit},
        {CALL(IF_EvtRegCbf, InterfaceA, UNUSED, 1U, 2U, 4U, 0U),
         R"(1 | Failed to reg event id=4, subId=0\n)"},
        {CALL(IF_EvtUnRegCbf, InterfaceA, UNUSED, 2U, SUB_EVENTS, 14U),
         R"(1 | Failed to reg event id=9, subId=14\n)"},
    });
}

TEST_F(EventRegistry, TheTreeHoldsEverySubEventAndNoOther)
{
    std::string subEvents;
    IF_EvtInit();
    for (uint32_t eventId = 0; eventId < g_qrbIFEventCallbacks.childCount; eventId++) {
        const IF_EVT_NODE_S& event = g_qrbIFEventCallbacks.children[eventId];
        const uint32_t       count = event.childCount;
        EXPECT_EQ(event.parent, &g_qrbIFEventCallbacks);
        if (count != 0) {
            EXPECT_EQ(event.children[count - 1].parent, &event);
            EXPECT_EQ(IF_INTF_RegEvtCb(eventId, count - 1, InterfaceA, UNUSED, 0), 0U);
            subEvents += std::to_string(eventId) + ":" + std::to_string(count) + " ";
        }
    }
    EXPECT_EQ(g_qrbIFEventCallbacks.childCount, 76U);
    EXPECT_EQ(subEvents,
              "1:10 2:13 3:7 5:46 7:55 8:32 9:14 11:3 12:5 46:9 52:2 58:4 66:2 67:12 71:1 74:1 ");
}

TEST_F(EventRegistry, StartsAfreshAfterDeinit)
{
    for (int round = 0; round < 2; round++) {
        EXPECT_EQ(L2IF_SH_EvtCbFuncReg("m", 1, 1, Layer2A), 0U);
        EXPECT_EQ(IF_EvtRegCbf(InterfaceA, UNUSED, 1, 2, SUB_EVENTS, 2U), 0U);
        EXPECT_EQ(IF_RegNotifyFunc(1, NotifyA), 0U);
        EXPECT_EQ(Layer2(1) + Interface(2) + Notified(), "m 1, A 1, A 1, ");
        L2IF_SH_EvtCbRegTbl_Deinit();
        IF_EvtDeInit();
        IF_NotifyFuncRegTbl_Deinit();
        EXPECT_EQ(support::LibraryBlocks(), 0);
        EXPECT_EQ(g_isL2IFEvtInited + g_isIFEvtInited + g_isIFNotifyInited, 2);
        EXPECT_EQ(L2IF_SH_EvtCbFuncUnReg("m", 1, 1, Layer2A), 1U);
        EXPECT_EQ(IF_UnRegNotifyFunc(1, NotifyA), 1U);
    }
}

TEST_F(EventRegistry, GivesAnyNodeChildren)
{
    IF_EVT_NODE_S node = {};
    IF_CBF_Create_Child(&node, 0);
    EXPECT_EQ(TakeMessages(), Messages{"IF_CBF_Create_Child: ulCnt is equal 0 \n"});
    IF_CBF_Create_Child(&node, 2);
    ASSERT_TRUE(node.children != nullptr && node.childCount == 2);
    const IF_EVT_CB_S entry = {1, InterfaceA, 1};
    EXPECT_EQ(UTIL_LIST_PushBack(&node.children[1].list, &entry), 0U);
    for (int again = 0; again < 2; again++) {
        IF_CBF_Free_Child(&node, 3);
        EXPECT_TRUE(node.children == nullptr && node.childCount == 0);
    }
}

}  // namespace
