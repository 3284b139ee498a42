// The reader-writer lock of the tables: several readers, or one writer.
//
// The lock is an array of locks. Each thread is assigned one of them on its first read, so that
// readers on different cores use different cache lines.
//
// A reader looks up rows under a ReadGuard, which locks its thread's lock shared. A writer changes
// the tables under a WriteGuard, which locks all locks exclusively. No reader accesses the tables
// while a transaction is applied, and later readers see all of it.
//
// Stored rows are immutable: an update replaces the row by a new one. A one-shot read copies the
// record under the guard. A session or a scan takes a counted reference under the guard and reads
// the row without a lock afterwards. The writer releases the table's reference to a replaced or
// removed row; the last release frees the row, so a row is not freed while a session reads it.
//
// No code of a caller runs under a guard, so guards are held briefly and are not nested.
#pragma once

#include <mutex>
#include <shared_mutex>

namespace standin {

class [[nodiscard]] ReadGuard {
public:
    ReadGuard();

private:
    std::shared_lock<std::shared_mutex> lock_;
};

class [[nodiscard]] WriteGuard {
public:
    WriteGuard();
    ~WriteGuard();
    WriteGuard(const WriteGuard&) = delete;
    WriteGuard& operator=(const WriteGuard&) = delete;
};

}  // namespace standin
