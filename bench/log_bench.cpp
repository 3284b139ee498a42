// A log call whose priority is not written, compared with a function that compares and returns.
#include <benchmark/benchmark.h>

#include <tarnd_qrb/log.h>

namespace {

constexpr uint32_t SUPPRESSED = 6;

[[gnu::noinline]] void Compare(uint32_t priority, const char* /*function*/, uint32_t /*line*/,
                               const char* /*format*/, ...)
{
    if (priority <= 3) {
        std::abort();
    }
}

void Log(benchmark::State& state, void (*log)(uint32_t, const char*, uint32_t, const char*, ...))
{
    for (auto _ : state) {
        log(SUPPRESSED, __func__, __LINE__, "orm read key[%d] failed, ret = %d.\n", 1, 2);
    }
}
BENCHMARK_CAPTURE(Log, library, Tarn_QRB_Log_Printf)->Name("log_suppressed/library");
BENCHMARK_CAPTURE(Log, comparison, Compare)->Name("log_suppressed/comparison");

}  // namespace
