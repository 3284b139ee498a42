// Time from a write to a module's callback on the listener thread, compared with a bare eventfd and
// epoll_wait; and the cost of an update that changes no watched field.
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include <benchmark/benchmark.h>

#include <tarnd_platform/orm_accessors.h>
#include <tarnd_platform/orm_subscription.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/subscription.h>

#include "bench_rows.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start, Clock::time_point end = Clock::now())
{
    return std::chrono::duration<double>(end - start).count();
}

standin::Row Port(uint32_t ifIndex)
{
    standin::Row row("port");
    return row.Set("if_index", ifIndex).AddToSet("vlan_bitmap_2", 1, 100);
}

standin::Row Route(uint32_t ifIndex)
{
    standin::Row row("if_route");
    return row.Set("if_index", ifIndex);
}

// The time at which the listener was notified. The measuring thread sleeps on an eventfd.
class Arrival {
public:
    void Notify()
    {
        at_ = Clock::now();
        eventfd_write(event_, 1);
    }
    Clock::time_point Wait()
    {
        eventfd_t count = 0;
        eventfd_read(event_, &count);
        return at_;
    }

private:
    int event_ = eventfd(0, 0);
    Clock::time_point at_;
};
Arrival arrival;

// The reference: a thread that waits for an eventfd.
class BareListener {
public:
    BareListener()
    {
        epoll_event event = {EPOLLIN, {}};
        epoll_ctl(epoll_, EPOLL_CTL_ADD, signal_, &event);
        thread_ = std::thread([this] { Run(); });
    }
    ~BareListener()
    {
        ending_ = true;
        Signal();
        thread_.join();
        close(epoll_);
        close(signal_);
    }
    void Signal() { eventfd_write(signal_, 1); }

private:
    void Run()
    {
        epoll_event event;
        eventfd_t count = 0;
        while (epoll_wait(epoll_, &event, 1, -1) == 1 && eventfd_read(signal_, &count) == 0 &&
               !ending_) {
            arrival.Notify();
        }
    }

    int epoll_ = epoll_create1(0);
    int signal_ = eventfd(0, 0);
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

void Bare(benchmark::State& state)
{
    BareListener listener;
    for (auto _ : state) {
        const auto start = Clock::now();
        listener.Signal();
        state.SetIterationTime(SecondsSince(start, arrival.Wait()));
    }
}
BENCHMARK(Bare)->Name("write_to_callback/bare")->UseManualTime();

// Number of changes that are expected; the last one notifies. While held is set, the callback
// blocks.
std::atomic<uint32_t> expected = 0;
std::atomic<bool> held = false;

uint32_t OnChange()
{
    held.wait(true);
    if (--expected == 0) {
        arrival.Notify();
    }
    return 0;
}

uint32_t OnSwitchPort(const void* /*data*/, uint32_t /*value*/, void* /*argument*/,
                      uint64_t* /*word*/)
{
    return OnChange();
}

uint32_t OnRouteState(uint32_t /*subId*/, uint32_t /*flag*/, uint32_t /*ifIndex*/, void* /*first*/,
                      void* /*second*/)
{
    return OnChange();
}

// Starts the library as the daemon does, with callbacks for switch ports and route states.
void StartOnce()
{
    static const bool started = [] {
        MEM_EX_Init();
        L2IF_SH_EvtCbFuncReg("bench", L2IF_EVT_SWITCH_PORT_ON, 0, OnSwitchPort);
        L2IF_SH_EvtCbFuncReg("bench", L2IF_EVT_SWITCH_PORT_OFF, 0, OnSwitchPort);
        IF_EvtRegCbf(OnRouteState, 0, 0, IF_EVT_WITH_SUB_EVENT, IF_EVT_STATE,
                     IF_SUB_EVT_ROUTE_STATE);
        standin::Reset();
        standin::Transaction transaction;
        transaction.Insert(Port(1));
        transaction.Insert(Route(1));
        transaction.Commit();
        return BDS_InitStart() == 0;
    }();
    if (!started) {
        std::abort();
    }
}

// A write that inverts the field, so that every write is a change.
standin::Transaction Toggle(standin::Row row, std::string_view field, uint64_t& state)
{
    state = 1 - state;
    standin::Transaction transaction;
    transaction.Update(row.Set(field, state));
    return transaction;
}

standin::Transaction TogglePort()
{
    static uint64_t switchPort = 0;
    return Toggle(Port(1), "switch_port", switchPort);
}

standin::Transaction ToggleRoute()
{
    static uint64_t routeState = 0;
    return Toggle(Route(1), "route_state", routeState);
}

void WriteToCallback(benchmark::State& state, standin::Transaction (*toggle)())
{
    StartOnce();
    for (auto _ : state) {
        expected = 1;
        auto write = toggle();
        const auto start = Clock::now();
        write.Commit();
        state.SetIterationTime(SecondsSince(start, arrival.Wait()));
    }
}
BENCHMARK_CAPTURE(WriteToCallback, port, TogglePort)
    ->Name("write_to_callback/port")
    ->UseManualTime();
BENCHMARK_CAPTURE(WriteToCallback, route, ToggleRoute)
    ->Name("write_to_callback/if_route")
    ->UseManualTime();

void Queued(benchmark::State& state)
{
    constexpr uint32_t CHANGES = 10000;
    StartOnce();
    for (auto _ : state) {
        expected = CHANGES;
        held = true;
        for (uint32_t change = 0; change < CHANGES; change++) {
            TogglePort().Commit();
        }
        const auto start = Clock::now();
        held = false;
        held.notify_all();
        state.SetIterationTime(SecondsSince(start, arrival.Wait()));
    }
    state.SetItemsProcessed(state.iterations() * CHANGES);
}
BENCHMARK(Queued)->Name("write_to_callback/queued_10000")->UseManualTime();

// The minimal work of a handler for an update: read both rows and compare the VLAN sets.
void CompareByHand(ORM_MESSAGE message, uint32_t /*eventType*/)
{
    QRB_PORT_S before;
    QRB_PORT_S after;
    uint8_t end = 0;
    while (OrmSubFetchNext(message, &end) == 0 && end == 0) {
        memset(&before, 0, sizeof(before));
        memset(&after, 0, sizeof(after));
        if (OrmSubExtractData(message, ORM_OBJECT_OLD, 0) != 0 ||
            OrmgPortGetAllFieldsInner(message, &before, sizeof(before)) != 0 ||
            OrmSubExtractData(message, ORM_OBJECT_NEW, 0) != 0 ||
            OrmgPortGetAllFieldsInner(message, &after, sizeof(after)) != 0) {
            return;
        }
        if (memcmp(before.vlan_bitmap_2, after.vlan_bitmap_2, QRB_VLAN_SET_SIZE) != 0 ||
            memcmp(before.vlan_bitmap_1, after.vlan_bitmap_1, QRB_VLAN_SET_SIZE) != 0) {
            std::abort();
        }
    }
}

int32_t watched = -1;

int32_t Watch(uint32_t descriptor, uint32_t /*operation*/)
{
    watched = static_cast<int32_t>(descriptor);
    return 0;
}

// One message with many rows, dispatched on this thread.
void Unchanged(benchmark::State& state, ORM_SUB_CALLBACK callback)
{
    constexpr char DEFINITION[] = R"({"name": "bench", "label_name": "port", "events":
        [{"type": "update", "msgTypes": ["new object", "old object"]}]})";
    constexpr uint32_t PORTS = 256;

    bench::Fill("port", PORTS, Port);
    ORM_SESSION_PARAM param = 0;
    ORM_SESSION session = 0;
    OrmCreateSessionParam("channel:", "osc", &param);
    if (OrmOpenSubSession(param, Watch, &session) != 0 ||
        OrmSubscribe(session, "bench", DEFINITION, callback, nullptr, "bench") != 0) {
        state.SkipWithError("no subscription");
    }
    OrmDestroySessionParam(param);
    for (auto _ : state) {
        standin::Transaction transaction;
        for (uint32_t port = 1; port <= PORTS; port++) {
            transaction.Update(Port(port));
        }
        transaction.Commit();
        const auto start = Clock::now();
        DbcHandleEvent(watched);
        state.SetIterationTime(SecondsSince(start));
    }
    state.SetItemsProcessed(state.iterations() * PORTS);
    OrmCloseSession(session);
}
BENCHMARK_CAPTURE(Unchanged, library, QRB_EVENT_PortTableCallback)
    ->Name("port_unchanged/library")
    ->UseManualTime();
BENCHMARK_CAPTURE(Unchanged, by_hand, CompareByHand)
    ->Name("port_unchanged/by_hand")
    ->UseManualTime();

}  // namespace
