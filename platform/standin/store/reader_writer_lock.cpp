#include "store/reader_writer_lock.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace standin {

namespace {

// Aligned to cache lines, to avoid false sharing.
struct alignas(64) Shard {
    std::shared_mutex mutex;
};

// If there are more reading threads than shards, some share a shard, which only costs speed.
constexpr size_t SHARDS = 16;
constinit std::array<Shard, SHARDS> shards;

std::shared_mutex& OwnShard()
{
    static constinit std::atomic<size_t> threads = 0;
    thread_local std::shared_mutex& own = shards[threads++ % SHARDS].mutex;
    return own;
}

}  // namespace

ReadGuard::ReadGuard() : lock_(OwnShard()) {}

WriteGuard::WriteGuard()
{
    for (Shard& shard : shards) {
        shard.mutex.lock();
    }
}

WriteGuard::~WriteGuard()
{
    for (Shard& shard : shards) {
        shard.mutex.unlock();
    }
}

}  // namespace standin
