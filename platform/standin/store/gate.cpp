#include "store/gate.h"

#include <chrono>
#include <thread>

namespace standin {

constinit Gate gate;

namespace {

// A reader is inside for well under a microsecond, unless it lost its processor there: so look
// again a few times, then let others run, then sleep.
void WaitUntilLeft(const ThreadSlot& thread)
{
    constexpr int spins = 200;
    constexpr int yields = 20;
    for (int round = 0; thread.reading.load() != 0; round++) {
        if (round >= spins + yields) {
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        } else if (round >= spins) {
            std::this_thread::yield();
        }
    }
}

}  // namespace

void Gate::Close()
{
    closed_.store(1);
    for (const ThreadSlot* thread = threadSlots; thread != nullptr; thread = thread->next) {
        WaitUntilLeft(*thread);
    }
}

void Gate::Open()
{
    closed_.store(0);
    closed_.notify_all();
}

void Gate::EnterWhenOpen(ThreadSlot& thread)
{
    do {
        Leave(thread);
        closed_.wait(1);
        thread.reading.store(1);
    } while (closed_.load() != 0);
}

}  // namespace standin
