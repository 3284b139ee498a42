// Scan of a table that reads two fields of every row.
#include <benchmark/benchmark.h>

#include <tarnd_platform/orm.h>

#include "stores.h"

namespace {

using namespace bench;

constexpr uint32_t FIELD_IF_INDEX = 0;
constexpr uint32_t FIELD_IF_TYPE = 4;

class StandInScan {
public:
    explicit StandInScan(uint32_t rows) { Fill("if_base", rows, Interface); }
    template <typename OnRow>
    void Scan(OnRow onRow) const
    {
        ORM_SESSION session = 0;
        ORM_SCAN scan = 0;
        uint8_t end = 0;
        OrmOpenSessionByDefault(&session);
        OrmPrepare(session, "if_base", QRB_ORM_OP_SCAN);
        OrmScanStart(session, &scan);
        while (OrmScanNext(session, scan, &end) == ORM_OK && end == 0) {
            uint32_t ifIndex = 0;
            uint16_t ifType = 0;
            OrmGetFieldById(session, FIELD_IF_INDEX, &ifIndex, sizeof(ifIndex));
            OrmGetFieldById(session, FIELD_IF_TYPE, &ifType, sizeof(ifType));
            onRow(ifIndex, ifType);
        }
        OrmScanEnd(session, scan);
        OrmCloseSession(session);
    }
};

template <typename Store>
void Scan(benchmark::State& state)
{
    const auto rows = static_cast<uint32_t>(state.range(0));
    const Store& store = Filled<Store>(rows);
    for (auto _ : state) {
        uint32_t scanned = 0;
        uint64_t sum = 0;
        store.Scan([&](uint32_t ifIndex, uint16_t ifType) {
            scanned++;
            sum += ifIndex + ifType;
        });
        benchmark::DoNotOptimize(sum);
        if (scanned != rows) {
            state.SkipWithError("rows are missing");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * rows);
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(10)->Range(100, 1000000);
}

BENCHMARK(Scan<StandInScan>)->Name("scan/stand_in")->Apply(Sizes);
BENCHMARK(Scan<Array>)->Name("scan/array")->Apply(Sizes);
BENCHMARK(Scan<Lmdb>)->Name("scan/lmdb")->Apply(Sizes);
BENCHMARK(Scan<Sqlite>)->Name("scan/sqlite")->Apply(Sizes);

}  // namespace
