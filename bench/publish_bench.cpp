// Publishing an event to 1, 8 and 64 callbacks, compared with an array of their addresses and
// GList.
#include <glib.h>

#include <vector>

#include <benchmark/benchmark.h>

#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/memory_map.h>

namespace {

constexpr uint32_t EVENT = L2IF_EVT_PORT_ADD;
constexpr char MODULE[] = "bench";
constexpr uint16_t PRIORITY = 100;
uint64_t callsMade = 0;

uint32_t Callback(const void* /*data*/, uint32_t /*value*/, void* /*argument*/, uint64_t* /*word*/)
{
    callsMade++;
    return 0;
}

class EventRegistry {
public:
    explicit EventRegistry(int64_t callbacks)
    {
        MEM_EX_Init();
        for (int64_t registered = 0; registered < callbacks; registered++) {
            L2IF_SH_EvtCbFuncReg(MODULE, EVENT, PRIORITY, Callback);
        }
    }
    ~EventRegistry() { L2IF_SH_EvtCbRegTbl_Deinit(); }
    void Publish() { L2IF_SH_EvtPublishEvent(EVENT, &row_, 0, row_.vlan_bitmap_2); }

private:
    QRB_PORT_S row_ = {};
};

class CallbackArray {
public:
    explicit CallbackArray(int64_t callbacks) : callbacks_(static_cast<size_t>(callbacks), Callback)
    {
    }
    void Publish()
    {
        uint64_t word = 0;
        for (L2IF_SH_EVT_CB_FUNC* callback : callbacks_) {
            callback(nullptr, 0, nullptr, &word);
        }
    }

private:
    std::vector<L2IF_SH_EVT_CB_FUNC*> callbacks_;
};

// The callbacks as a GList.
class CallbackList {
public:
    explicit CallbackList(int64_t callbacks)
        : entries_(static_cast<size_t>(callbacks), {Callback, 0, {}})
    {
        for (L2IF_SH_EVT_CB_S& entry : entries_) {
            list_ = g_list_prepend(list_, &entry);
        }
    }
    ~CallbackList() { g_list_free(list_); }
    void Publish()
    {
        uint64_t word = 0;
        for (const GList* at = list_; at != nullptr; at = at->next) {
            static_cast<const L2IF_SH_EVT_CB_S*>(at->data)->pfCallback(nullptr, 0, nullptr, &word);
        }
    }

private:
    std::vector<L2IF_SH_EVT_CB_S> entries_;
    GList* list_ = nullptr;
};

template <typename Publisher>
void Publish(benchmark::State& state)
{
    Publisher publisher(state.range(0));
    callsMade = 0;
    for (auto _ : state) {
        publisher.Publish();
    }
    if (callsMade != static_cast<uint64_t>(state.iterations() * state.range(0))) {
        state.SkipWithError("callbacks are missing");
    }
}

void Callbacks(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(8)->Range(1, 64);
}

BENCHMARK(Publish<EventRegistry>)->Name("publish/registry")->Apply(Callbacks);
BENCHMARK(Publish<CallbackArray>)->Name("publish/array")->Apply(Callbacks);
BENCHMARK(Publish<CallbackList>)->Name("publish/glist")->Apply(Callbacks);

}  // namespace
