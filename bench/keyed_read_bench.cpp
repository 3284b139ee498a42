// Keyed read: one 387-byte record by its 4-byte key, copied to the caller.
#include <benchmark/benchmark.h>

#include <tarnd_platform/orm_accessors.h>

#include "stores.h"

namespace {

using namespace bench;

class StandInRead {
public:
    explicit StandInRead(uint32_t rows) { Fill("if_base", rows, Interface); }
    bool Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const
    {
        return OrmgIfBaseReadInner(&ifIndex, sizeof(ifIndex), record, sizeof(*record)) == ORM_OK;
    }
};

// A keyed read of one field, with each step of a session.
class SessionRead {
public:
    explicit SessionRead(uint32_t rows) { Fill("if_base", rows, Interface); }
    bool Read(uint32_t ifIndex, QRB_IF_BASE_S* record) const
    {
        ORM_SESSION session = 0;
        uint16_t ifType = 0;
        const bool found = OrmOpenSessionByDefault(&session) == ORM_OK &&
                           OrmPrepare(session, "if_base", QRB_ORM_OP_READ) == ORM_OK &&
                           OrmSetKeyName(session, "primary_key") == ORM_OK &&
                           OrmSetIndexKeyValue(session, 0, QRB_KEY_TYPE_U32, &ifIndex,
                                               sizeof(ifIndex)) == ORM_OK &&
                           OrmExecute(session) == ORM_OK &&
                           OrmGetField(session, "if_type", &ifType, sizeof(ifType)) == ORM_OK;
        OrmCloseSession(session);
        record->if_type = ifType;
        return found;
    }
};

template <typename Store>
void KeyedRead(benchmark::State& state)
{
    const auto rows = static_cast<uint32_t>(state.range(0));
    static Store* store;
    if (state.thread_index() == 0) {
        store = &Filled<Store>(rows);
    }
    RandomOrder random(rows);
    QRB_IF_BASE_S record;
    for (auto _ : state) {
        if (!store->Read(random.Next(), &record)) {
            state.SkipWithError("no such row");
            break;
        }
        benchmark::DoNotOptimize(record);
    }
    state.SetItemsProcessed(state.iterations());
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(10)->Range(100, 1000000);
}

BENCHMARK(KeyedRead<StandInRead>)->Name("keyed_read/stand_in")->Apply(Sizes);
BENCHMARK(KeyedRead<FlatHash>)->Name("keyed_read/flat_hash")->Apply(Sizes);
BENCHMARK(KeyedRead<ChainedHash>)->Name("keyed_read/unordered_map")->Apply(Sizes);
BENCHMARK(KeyedRead<Array>)->Name("keyed_read/array")->Apply(Sizes);
BENCHMARK(KeyedRead<Lmdb>)->Name("keyed_read/lmdb")->Apply(Sizes);
BENCHMARK(KeyedRead<Sqlite>)->Name("keyed_read/sqlite")->Apply(Sizes);

BENCHMARK(KeyedRead<SessionRead>)->Name("session_read/session")->Arg(10000);
BENCHMARK(KeyedRead<StandInRead>)->Name("session_read/one_shot")->Arg(10000);

BENCHMARK(KeyedRead<StandInRead>)
    ->Name("two_readers/stand_in")
    ->Arg(10000)
    ->ThreadRange(1, 2)
    ->UseRealTime();
BENCHMARK(KeyedRead<FlatHash>)
    ->Name("two_readers/flat_hash")
    ->Arg(10000)
    ->ThreadRange(1, 2)
    ->UseRealTime();

}  // namespace
