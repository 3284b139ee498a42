// JSON tables. Loading the dump of loaded tables gives the same tables; a refused file changes
// nothing.
#include <sys/mman.h>

#include <fstream>
#include <string>
#include <string_view>

#include "fuzz.h"
#include "sources/json/json_file.h"

namespace {

bool Load(std::string_view text)
{
    // In memory.
    static const std::string file =
        "/proc/self/fd/" + std::to_string(memfd_create("fuzz", MFD_CLOEXEC));
    std::ofstream(file) << text;
    try {
        sources::LoadJson(file);
        return true;
    } catch (const standin::Error& error) {
        CHECK(std::string_view(error.what()).starts_with(file + ": "));
        return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::string empty = sources::DumpJson();

    const bool loaded = Load({reinterpret_cast<const char*>(data), size});
    const std::string dump = sources::DumpJson();
    CHECK(loaded || dump == empty);
    if (dump != empty) {
        CHECK(!Load(dump));  // every row exists already
        CHECK(sources::DumpJson() == dump);
        standin::Reset();
        CHECK(Load(dump));
        CHECK(sources::DumpJson() == dump);
        standin::Reset();
    }
    return 0;
}
