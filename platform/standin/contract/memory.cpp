// Memory charged to modules.
//
// Each thread counts on a sheet of its own, which only it writes, so that charging costs plain
// loads and stores. A report adds the sheets up. A thread that ends leaves its sheet, with what it
// holds, to the next thread that starts: a block may be given back by another thread than took it,
// and only the sum over all sheets has a meaning.
//
// Small blocks that come back are kept on the sheet too, in piles by size, for the thread's next of
// that size.
#include <pthread.h>

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

#include "contract/pile.h"

namespace {

using standin::Pile;

constexpr uint32_t SELECTOR_IN_USE = 5;

constexpr uint16_t NOBODY = 0;       // charged for handles that were never given out
constexpr size_t HANDLE_ENDS = 256;  // handles are below

// What stands before every block. The charge goes by it, whatever handle a block comes back under.
// Blocks are small and many, so it is packed: sizes and addresses have 48 bits.
struct alignas(std::max_align_t) BlockHeader {
    uint64_t lineAndSize;
    uint64_t handleAndFile;

    uint16_t Handle() const { return static_cast<uint16_t>(handleAndFile >> 48); }
    size_t Size() const { return lineAndSize << 16 >> 16; }
};

constexpr size_t SIZE_ENDS = size_t{1} << 48;

uint64_t Pack(uint32_t high, uint64_t low)
{
    return uint64_t{high} << 48 | low;
}

struct Figures {
    std::atomic<int64_t> bytes;
    std::atomic<int64_t> blocks;
};

// A block has whole grains, so that each in a pile serves every size that the pile is for.
constexpr size_t GRAIN = alignof(std::max_align_t);
constexpr size_t PILES = 16;

size_t GrainsOf(size_t size)
{
    return (size + GRAIN - 1) / GRAIN;
}

struct alignas(64) Sheet {
    std::array<Figures, HANDLE_ENDS> figures;
    std::array<Pile, PILES> piles;  // by grains, the header's left out
    Sheet* next;
    bool inUse;  // by a thread
};

constinit std::mutex mutex;  // guards the list of sheets, their inUse, and the names
constinit Sheet* sheets = nullptr;
// Where a thread counts that has no memory for a sheet.
constinit Sheet spare = {};
[[gnu::tls_model("initial-exec")]] constinit thread_local Sheet* mine = nullptr;

void Leave(void* sheet)
{
    const std::lock_guard lock(mutex);
    static_cast<Sheet*>(sheet)->inUse = false;
    mine = nullptr;
}

Sheet* FindUnused()
{
    for (Sheet* sheet = sheets; sheet != nullptr; sheet = sheet->next) {
        if (!sheet->inUse) {
            return sheet;
        }
    }
    return nullptr;
}

// A thread's first charge. Null when there is no memory, or nobody would tell when the thread ends.
Sheet* TakeSheet()
{
    const std::lock_guard lock(mutex);
    static pthread_key_t atThreadEnd;
    static const bool hasKey = pthread_key_create(&atThreadEnd, Leave) == 0;
    if (!hasKey) {
        return nullptr;
    }
    Sheet* sheet = FindUnused();
    if (sheet == nullptr) {
        sheet = new (std::nothrow) Sheet{};
        if (sheet == nullptr) {
            return nullptr;
        }
        sheet->next = sheets;
        sheets = sheet;
    }
    if (pthread_setspecific(atThreadEnd, sheet) != 0) {
        return nullptr;
    }
    sheet->inUse = true;
    return sheet;
}

// Only the owning thread writes, so nothing is lost between the load and the store.
void Add(std::atomic<int64_t>& figure, int64_t amount)
{
    figure.store(figure.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
}

void ChargeTo(Sheet* sheet, uint16_t handle, int64_t bytes, int64_t blocks)
{
    Add(sheet->figures[handle].bytes, bytes);
    Add(sheet->figures[handle].blocks, blocks);
}

[[gnu::noinline]] void ChargeFirst(uint16_t handle, int64_t bytes, int64_t blocks)
{
    mine = TakeSheet();
    if (mine != nullptr) {
        ChargeTo(mine, handle, bytes, blocks);
    } else {
        spare.figures[handle].bytes += bytes;
        spare.figures[handle].blocks += blocks;
    }
}

[[gnu::always_inline]] inline void Charge(uint16_t handle, int64_t bytes, int64_t blocks)
{
    if (mine != nullptr) [[likely]] {
        ChargeTo(mine, handle, bytes, blocks);
    } else {
        ChargeFirst(handle, bytes, blocks);
    }
}

// This thread's pile for blocks of a size; null where it has none.
Pile* OwnPile(size_t size)
{
    const size_t grains = GrainsOf(size);
    return mine != nullptr && grains < PILES ? &mine->piles[grains] : nullptr;
}

void* Label(void* block, uint16_t handle, const char* file, uint32_t line, size_t size)
{
    auto* header =
        new (block) BlockHeader{Pack(line, size), Pack(handle, reinterpret_cast<uintptr_t>(file))};
    Charge(handle, static_cast<int64_t>(size), 1);
    return header + 1;
}

// These two are not inlined, so that blocks of piles come and go without a register saved.
[[gnu::noinline]] void* TakeNew(uint16_t handle, const char* file, uint32_t line, size_t size)
{
    void* block = malloc(sizeof(BlockHeader) + GrainsOf(size) * GRAIN);
    return block != nullptr ? Label(block, handle, file, line, size) : nullptr;
}

[[gnu::noinline]] void Free(BlockHeader* header)
{
    Charge(header->Handle(), -static_cast<int64_t>(header->Size()), -1);
    free(header);
}

}  // namespace

uint32_t mem_handle_get(const char* name)
{
    static auto& names = *new std::vector<std::string>{""};  // by handle; 0 is nobody
    if (name == nullptr) {
        return NOBODY;
    }
    const std::lock_guard lock(mutex);
    const auto found = std::find(names.begin() + 1, names.end(), std::string_view(name));
    const auto handle = static_cast<uint32_t>(found - names.begin());
    if (handle == HANDLE_ENDS) {
        return NOBODY;
    }
    if (found == names.end()) {
        names.emplace_back(name);
    }
    return handle;
}

void* malloc_ex(uint16_t handle, const char* file, uint32_t line, size_t size)
{
    if (size >= SIZE_ENDS) {
        return nullptr;
    }
    const uint16_t charged = handle < HANDLE_ENDS ? handle : NOBODY;
    Pile* pile = OwnPile(size);
    void* block = pile != nullptr ? pile->Take() : nullptr;
    return block != nullptr ? Label(block, charged, file, line, size)
                            : TakeNew(charged, file, line, size);
}

void free_ex(uint16_t /*handle*/, void* memory)
{
    if (memory == nullptr) {
        return;
    }
    auto* header = static_cast<BlockHeader*>(memory) - 1;
    const uint16_t charged = header->Handle();
    const size_t size = header->Size();
    Pile* pile = OwnPile(size);
    if (pile != nullptr && pile->Put(header)) {
        Charge(charged, -static_cast<int64_t>(size), -1);
    } else {
        Free(header);
    }
}

uint32_t meminfo_get(uint32_t selector, uint16_t handle, uint64_t* first, uint64_t* second)
{
    if (selector != SELECTOR_IN_USE || handle >= HANDLE_ENDS || first == nullptr ||
        second == nullptr) {
        return 1;
    }
    const std::lock_guard lock(mutex);
    int64_t bytes = spare.figures[handle].bytes;
    int64_t blocks = spare.figures[handle].blocks;
    for (const Sheet* sheet = sheets; sheet != nullptr; sheet = sheet->next) {
        bytes += sheet->figures[handle].bytes.load(std::memory_order_relaxed);
        blocks += sheet->figures[handle].blocks.load(std::memory_order_relaxed);
    }
    // While other threads take and give back, a block's return may be seen without its taking.
    *first = static_cast<uint64_t>(std::max<int64_t>(bytes, 0));
    *second = static_cast<uint64_t>(std::max<int64_t>(blocks, 0));
    return 0;
}
