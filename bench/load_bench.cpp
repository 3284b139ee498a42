// Loading the library into a process that has loaded its platform, compared with an empty library.
#include <dlfcn.h>

#include <benchmark/benchmark.h>

namespace {

void Load(benchmark::State& state, const char* library)
{
    for (auto _ : state) {
        void* loaded = dlopen(library, RTLD_NOW);
        if (loaded == nullptr) {
            state.SkipWithError(dlerror());
            break;
        }
        dlclose(loaded);
    }
}
BENCHMARK_CAPTURE(Load, library, TARND_QRB_LIBRARY)->Name("load/library");
BENCHMARK_CAPTURE(Load, empty, EMPTY_LIBRARY)->Name("load/empty");

}  // namespace
