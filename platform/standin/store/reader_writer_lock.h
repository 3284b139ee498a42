// The reader-writer lock of the tables: any number of readers at a time, or one writer alone.
//
// How a reader and a writer of the same row are kept apart:
// The lock is an array of locks, and each thread is given one of them when it first reads.
// A reader looks a row up under a ReadGuard, which holds its own thread's lock shared.
// A writer changes the tables under a WriteGuard, which holds all of those locks exclusively.
// So no reader is inside the tables while a row is inserted, replaced or removed, and a reader that
// enters afterwards finds the whole transaction.
// Readers on different cores lock different cache lines, which is the only reason for the array.
// The contents of a stored row never change: an update puts a new row in the old one's place.
// A one-shot read copies the record before it leaves the guard.
// A session or a scan takes a counted reference to the row before it leaves the guard, and reads
// the row without a lock from then on.
// The writer drops the table's reference to a row that it replaced or removed, and whoever drops
// the last reference frees the row, so a row is never freed while a session reads it.
// No code of a caller runs under a guard, so a guard is held briefly and never taken twice.
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
