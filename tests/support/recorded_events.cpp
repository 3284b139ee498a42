#include "support/recorded_events.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/listener.h>

#include "support/test_rows.h"
#include "support/test_system.h"

namespace support {

namespace {

std::mutex mutex;
Events events;

void Record(const std::string& event)
{
    const std::lock_guard lock(mutex);
    events.push_back(event);
}

std::string Interface(uint32_t ifIndex)
{
    return " if " + std::to_string(ifIndex);
}

std::string Port(const void* data)
{
    const auto& port = *static_cast<const QRB_PORT_S*>(data);
    return Interface(port.if_index) + " pvid " + std::to_string(port.pvid);
}

std::string VlanChange(const void* argument)
{
    const auto& change = *static_cast<const QRB_VLAN_CHANGE_S*>(argument);
    EXPECT_EQ(change.portCount, 1U);
    EXPECT_TRUE(std::ranges::all_of(change.reserved_12, [](uint8_t byte) { return byte == 0; }));
    return " bitmap " + std::to_string(change.bitmap);
}

std::string Described(uint32_t eventId, const void* data, const void* argument)
{
    switch (eventId) {
        case L2IF_EVT_SWITCH_PORT_ON:
        case L2IF_EVT_SWITCH_PORT_OFF:
            return Interface(*static_cast<const uint32_t*>(data)) + " use " +
                   std::to_string(*static_cast<const uint8_t*>(argument));
        case L2IF_EVT_VLAN_ADD_PORT:
        case L2IF_EVT_VLAN_DEL_PORT:
            EXPECT_EQ(static_cast<const QRB_PORT_S*>(data)->if_index,
                      static_cast<const QRB_VLAN_CHANGE_S*>(argument)->ifIndex);
            return Port(data) + VlanChange(argument);
        default:
            EXPECT_EQ(argument, static_cast<const QRB_PORT_S*>(data)->vlan_bitmap_2);
            return Port(data);
    }
}

template <uint32_t eventId>
uint32_t OnLayer2(const void* data, uint32_t value, void* argument, uint64_t* word)
{
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(*word, 0U);
    Record(std::to_string(eventId) + Described(eventId, data, argument));
    return 1;
}

template <uint32_t eventId>
uint32_t OnInterface(uint32_t subId, uint32_t flag, uint32_t ifIndex, void* first, void* second)
{
    const auto number = [](void* at) { return std::to_string(*static_cast<uint32_t*>(at)); };
    std::string text = std::to_string(eventId) + "/" + std::to_string(subId) + " flag " +
                       std::to_string(flag) + Interface(ifIndex);
    if (first != nullptr || second != nullptr) {
        text += " with " + number(first) + ", " + number(second);
    }
    Record(text);
    return 1;
}

uint32_t OnNotification(uint32_t ifIndex, uint32_t command, uint32_t a, uint32_t b)
{
    EXPECT_EQ(a | b, 0U);
    Record("notify " + std::to_string(command) + Interface(ifIndex));
    return 1;
}

template <uint32_t eventId>
void RegisterForInterfaceEvent()
{
    IF_EvtInit();
    IF_INTF_RegEvtCb(eventId, IF_EVT_WHOLE, OnInterface<eventId>, 0, 1);
    const uint32_t subEvents = g_qrbIFEventCallbacks.children[eventId].childCount;
    for (uint32_t subId = 0; subId < subEvents; subId++) {
        IF_INTF_RegEvtCb(eventId, subId, OnInterface<eventId>, 0, 1);
    }
}

constexpr uint32_t marker = 4000000000;

bool IsMarkers(const std::string& event)
{
    return event.ends_with(Interface(marker));
}

}  // namespace

void RecordEvents()
{
    TakeEvents();
    [&]<uint32_t... id>(std::integer_sequence<uint32_t, id...>) {
        (L2IF_SH_EvtCbFuncReg("test", id, 1, OnLayer2<id>), ...);
    }(std::make_integer_sequence<uint32_t, L2IF_EVT_COUNT>());
    [&]<uint32_t... id>(std::integer_sequence<uint32_t, id...>) {
        (RegisterForInterfaceEvent<id>(), ...);
    }(std::make_integer_sequence<uint32_t, IF_EVT_COUNT>());
    IF_RegNotifyFunc(1, OnNotification);
}

void ForgetEvents()
{
    L2IF_SH_EvtCbRegTbl_Deinit();
    IF_EvtDeInit();
    IF_NotifyFuncRegTbl_Deinit();
    g_isIFNotifyInited = 0;
}

Events TakeEvents()
{
    const std::lock_guard lock(mutex);
    return std::exchange(events, {});
}

Events AwaitEvents()
{
    Events seen;
    writes::Write(writes::Insert, {Base(marker)});
    writes::Write(writes::Delete, {Base(marker)});
    EXPECT_TRUE(Eventually([&] {
        std::ranges::move(TakeEvents(), std::back_inserter(seen));
        return std::ranges::count_if(seen, IsMarkers) == 2;
    }));
    std::erase_if(seen, IsMarkers);
    return seen;
}

void StopListener()
{
    if (std::exchange(g_isDbListenerSubOpened, uint8_t{0}) != 0) {
        OrmCloseSession(g_dbListenerSubSession);
    }
    if (g_epollDbListenerThreadId != 0) {
        std::atomic_ref(g_epollDbListenerThreadExit).store(1, std::memory_order_release);
        // Wakes the thread, which may sleep for two seconds.
        const int wake = eventfd(1, EFD_CLOEXEC);
        epoll_event readable = {EPOLLIN, {}};
        pthread_mutex_lock(&g_epollDbListenerCondLock);
        epoll_ctl(g_epollDbListenerFd, EPOLL_CTL_ADD, wake, &readable);
        pthread_mutex_unlock(&g_epollDbListenerCondLock);
        pthread_join(std::exchange(g_epollDbListenerThreadId, pthread_t{0}), nullptr);
        close(wake);
    }
    g_regDbListenerInfo = nullptr;
}

void EventTest::TearDown()
{
    StopListener();
    ForgetEvents();
    PlatformTest::TearDown();
}

}  // namespace support
