// The queue between the callbacks and the shell's output.
#include <gtest/gtest.h>

#include "shell/events/event_queue.h"

namespace {

using shell::EventQueue;

// As an idle shell does whose output is not read. Only the first event that does not fit waits.
TEST(ShellEventQueue, EventsThatNobodyReadsAreLimitedAndCounted)
{
    EventQueue queue;
    constexpr size_t TOO_MANY = 50;
    for (size_t number = 0; number < EventQueue::LIMIT + TOO_MANY; ++number) {
        queue.Push(number);
    }
    EXPECT_EQ(queue.Size(), EventQueue::LIMIT);
    for (size_t number = 0; number < 2; ++number) {
        EXPECT_EQ(queue.Pop(), shell::Json(number));
    }
    queue.Push("late");  // there is space for the count and for one more
    EXPECT_EQ(queue.Size(), EventQueue::LIMIT);
    for (size_t number = 2; number < EventQueue::LIMIT; ++number) {
        EXPECT_EQ(queue.Pop(), shell::Json(number));
    }
    EXPECT_EQ(queue.Pop(), shell::Json({{"event", "dropped"}, {"count", TOO_MANY}}));
    EXPECT_EQ(queue.Pop(), shell::Json("late"));
    EXPECT_EQ(queue.Pop(), std::nullopt);
}

}  // namespace
