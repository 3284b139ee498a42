// The gate between readers and the writer. Any number of readers are inside at a time, or the
// writer alone, so a transaction becomes visible at one moment and nobody sees half of it.
//
// A reader announces itself in its own thread's slot, so readers on two cores write nothing that
// both of them use. It stays for one look at the tables and calls nobody else's code meanwhile.
#pragma once

#include <atomic>

#include "store/thread_slot.h"

namespace standin {

class Gate {
public:
    void Enter(ThreadSlot& thread)
    {
        // Each side says what it is up to before it looks at the other, in one order for all.
        thread.reading.store(1);
        if (closed_.load() != 0) [[unlikely]] {
            EnterWhenOpen(thread);
        }
    }
    static void Leave(ThreadSlot& thread) { thread.reading.store(0, std::memory_order_release); }

    // One writer at a time. Close returns when no reader is inside.
    void Close();
    void Open();

private:
    void EnterWhenOpen(ThreadSlot& thread);

    std::atomic<int> closed_ = 0;
};

extern constinit Gate gate;

class Inside {
public:
    Inside() : thread_(OwnSlot()) { gate.Enter(thread_); }
    ~Inside() { Gate::Leave(thread_); }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

private:
    ThreadSlot& thread_;
};

class Alone {
public:
    Alone() { gate.Close(); }
    ~Alone() { gate.Open(); }
    Alone(const Alone&) = delete;
    Alone& operator=(const Alone&) = delete;
};

}  // namespace standin
