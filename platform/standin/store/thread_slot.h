// What each thread that calls the stand-in has to itself, on cache lines of its own.
#pragma once

#include <atomic>
#include <cstdint>

namespace standin {

class Session;

struct alignas(64) ThreadSlot {
    std::atomic<uint32_t> reading = 0;  // 1 while the thread looks at the tables
    Session* spare = nullptr;           // a closed session, kept for the next open
    std::atomic<bool> owned = true;     // false: free for another thread
    ThreadSlot* next = nullptr;
};

// Every slot there ever was: as many as threads lived at the same time. They are never freed.
extern std::atomic<ThreadSlot*> threadSlots;

// A library that is loaded at start-up can afford the fast kind of thread-local storage.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local ThreadSlot* ownSlot;

// Takes a slot for this thread, which gives it back when it ends.
ThreadSlot& TakeThreadSlot();

inline ThreadSlot& OwnSlot()
{
    return ownSlot != nullptr ? *ownSlot : TakeThreadSlot();
}

}  // namespace standin
