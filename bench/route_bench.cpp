// A forwarding table of up to a million entries: loading it from JSON, and a query for its last
// entry.
#include <sources/json/json_file.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <benchmark/benchmark.h>

#include <tarnd_qrb/route.h>

#include "bench_rows.h"
#include "by_hand.h"

namespace {

constexpr uint32_t FIRST_DESTINATION = 0x0A000000;

standin::Row Route(uint32_t number)
{
    standin::Row row("Fib.ConfigIpv4Fwd");
    return row.Set("destAddr", FIRST_DESTINATION + number)
        .Set("prefixLen", 32)
        .Set("nhpGroupId", number);
}

void LastEntry(benchmark::State& state, uint32_t (*query)(uint32_t, uint32_t*))
{
    const auto rows = static_cast<uint32_t>(state.range(0));
    bench::Fill("Fib.ConfigIpv4Fwd", rows, Route);
    for (auto _ : state) {
        uint32_t group = 0;
        query(FIRST_DESTINATION + rows, &group);
        if (group != rows) {
            state.SkipWithError("another entry");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK_CAPTURE(LastEntry, library, FIB_ScanIp4Forward)
    ->Name("last_route/library")
    ->RangeMultiplier(10)
    ->Range(1000, 1000000);
BENCHMARK_CAPTURE(LastEntry, by_hand, by_hand::FIB_ScanIp4Forward)
    ->Name("last_route/by_hand")
    ->RangeMultiplier(10)
    ->Range(1000, 1000000);

void LoadRoutes(benchmark::State& state)
{
    const auto rows = static_cast<uint32_t>(state.range(0));
    const std::string file = "/dev/shm/tarnd_bench." + std::to_string(getpid()) + ".json";
    bench::Fill("Fib.ConfigIpv4Fwd", rows, Route);
    std::ofstream(file) << sources::DumpJson();
    for (auto _ : state) {
        state.PauseTiming();
        standin::Reset();
        state.ResumeTiming();
        sources::LoadJson(file);
    }
    std::filesystem::remove(file);
}
BENCHMARK(LoadRoutes)
    ->Name("load_routes/json")
    ->Arg(1000000)
    ->Unit(benchmark::kSecond)
    ->Iterations(1)
    ->Repetitions(3);

}  // namespace
