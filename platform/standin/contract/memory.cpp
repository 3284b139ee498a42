// Memory charged to modules.
//
// Every block has a header with the handle that it is charged to. Each thread has its own counters,
// which only it writes, so that a charge needs only plain loads and stores; a report adds up all
// counters. The counters of one thread may be negative, because a block may be freed by another
// thread than the one that allocated it: only the sum is meaningful.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <tarnd_platform/memory.h>

namespace {

constexpr uint32_t SELECTOR_IN_USE = 5;

constexpr uint16_t UNKNOWN_MODULE = 0;  // charged for unknown handles
constexpr size_t HANDLE_COUNT = 256;    // handles are below

// Precedes every block. The handle passed to a free is ignored.
struct alignas(std::max_align_t) BlockHeader {
    size_t size;
    const char* file;
    uint32_t line;
    uint16_t handle;
};

struct Usage {
    std::atomic<int64_t> bytes;
    std::atomic<int64_t> blocks;
};

// Aligned to cache lines, to avoid false sharing.
struct alignas(64) ThreadCounters {
    std::array<Usage, HANDLE_COUNT> usage;
    ThreadCounters* next;
    bool inUse;  // by a thread
};

constinit std::mutex mutex;  // guards the list of counters, their inUse, and the names of modules
constinit ThreadCounters* allCounters = nullptr;
// Shared by threads without counters of their own: during thread exit, or if out of memory.
constinit ThreadCounters sharedCounters = {};
// Initial-exec: the default model calls a function for each access, a tenth of a push and pop.
[[gnu::tls_model("initial-exec")]] constinit thread_local ThreadCounters* ownCounters = nullptr;

ThreadCounters* FindUnused()
{
    for (ThreadCounters* counters = allCounters; counters != nullptr; counters = counters->next) {
        if (!counters->inUse) {
            return counters;
        }
    }
    auto* added = new (std::nothrow) ThreadCounters{};
    if (added != nullptr) {
        added->next = allCounters;
        allCounters = added;
    }
    return added;
}

// Acquires counters for a thread. At its exit they are kept, with their values, for a later thread.
class CountersOwner {
public:
    CountersOwner()
    {
        const std::lock_guard lock(mutex);
        ownCounters = FindUnused();
        if (ownCounters != nullptr) {
            ownCounters->inUse = true;
        }
    }
    ~CountersOwner()
    {
        const std::lock_guard lock(mutex);
        if (ownCounters != nullptr) {
            ownCounters->inUse = false;
            ownCounters = nullptr;
        }
    }
    CountersOwner(const CountersOwner&) = delete;
    CountersOwner& operator=(const CountersOwner&) = delete;
};

// The slow path: a thread's first charge, and charges after its counters were released.
[[gnu::noinline]] void ChargeFirst(uint16_t handle, int64_t bytes, int64_t blocks)
{
    static thread_local const CountersOwner owner;
    Usage& usage = (ownCounters != nullptr ? ownCounters : &sharedCounters)->usage[handle];
    usage.bytes += bytes;
    usage.blocks += blocks;
}

// Only the owning thread writes, so no update is lost between the load and the store.
void Add(std::atomic<int64_t>& counter, int64_t amount)
{
    counter.store(counter.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
}

void Charge(uint16_t handle, int64_t bytes, int64_t blocks)
{
    if (ownCounters == nullptr) {
        ChargeFirst(handle, bytes, blocks);
        return;
    }
    Usage& usage = ownCounters->usage[handle];
    Add(usage.bytes, bytes);
    Add(usage.blocks, blocks);
}

}  // namespace

uint32_t mem_handle_get(const char* name)
{
    static auto& names = *new std::vector<std::string>{""};  // by handle
    if (name == nullptr) {
        return UNKNOWN_MODULE;
    }
    const std::lock_guard lock(mutex);
    const auto found = std::find(names.begin() + 1, names.end(), std::string_view(name));
    const auto handle = static_cast<uint32_t>(found - names.begin());
    if (handle == HANDLE_COUNT) {
        return UNKNOWN_MODULE;
    }
    if (found == names.end()) {
        names.emplace_back(name);
    }
    return handle;
}

void* malloc_ex(uint16_t handle, const char* file, uint32_t line, size_t size)
{
    if (size > SIZE_MAX - sizeof(BlockHeader)) {
        return nullptr;
    }
    void* block = malloc(sizeof(BlockHeader) + size);
    if (block == nullptr) {
        return nullptr;
    }
    const uint16_t charged = handle < HANDLE_COUNT ? handle : UNKNOWN_MODULE;
    auto* header = new (block) BlockHeader{size, file, line, charged};
    Charge(charged, static_cast<int64_t>(size), 1);
    return header + 1;
}

void free_ex(uint16_t /*handle*/, void* memory)
{
    if (memory == nullptr) {
        return;
    }
    auto* header = static_cast<BlockHeader*>(memory) - 1;
    Charge(header->handle, -static_cast<int64_t>(header->size), -1);
    free(header);
}

uint32_t meminfo_get(uint32_t selector, uint16_t handle, uint64_t* first, uint64_t* second)
{
    if (selector != SELECTOR_IN_USE || handle >= HANDLE_COUNT || first == nullptr ||
        second == nullptr) {
        return 1;
    }
    const std::lock_guard lock(mutex);
    int64_t bytes = sharedCounters.usage[handle].bytes;
    int64_t blocks = sharedCounters.usage[handle].blocks;
    for (const ThreadCounters* each = allCounters; each != nullptr; each = each->next) {
        bytes += each->usage[handle].bytes.load(std::memory_order_relaxed);
        blocks += each->usage[handle].blocks.load(std::memory_order_relaxed);
    }
    // While other threads allocate and free, a free may be counted before its allocation.
    *first = static_cast<uint64_t>(std::max<int64_t>(bytes, 0));
    *second = static_cast<uint64_t>(std::max<int64_t>(blocks, 0));
    return 0;
}
