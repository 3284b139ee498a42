// JSON tables. What is loaded comes back from its own dump unchanged; what is refused changes
// nothing.
#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz.h"
#include "sources/json_file.h"

namespace {

// A file in memory, by the name that stands for its descriptor.
class MemoryFile {
public:
    MemoryFile() : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {}
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&)            = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string Name() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

    void Put(std::string_view text) const
    {
        CHECK(ftruncate(descriptor_, 0) == 0);
        CHECK(pwrite(descriptor_, text.data(), text.size(), 0) ==
              static_cast<ssize_t>(text.size()));
    }

private:
    int descriptor_;
};

bool Load(std::string_view text)
{
    static const MemoryFile file;
    file.Put(text);
    try {
        sources::LoadJson(file.Name());
        return true;
    } catch (const standin::Error& error) {
        CHECK(std::string_view(error.what()).starts_with(file.Name() + ": "));
        return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::string empty = sources::DumpJson();

    const bool        loaded = Load({reinterpret_cast<const char*>(data), size});
    const std::string dump   = sources::DumpJson();
    CHECK(loaded || dump == empty);
    if (dump != empty) {
        CHECK(!Load(dump));  // every row is there already
        CHECK(sources::DumpJson() == dump);
        standin::Reset();
        CHECK(Load(dump));
        CHECK(sources::DumpJson() == dump);
        standin::Reset();
    }
    return 0;
}
