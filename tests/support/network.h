// What a test makes of the operating system's network, and waits for.
#pragma once

#include <sched.h>

#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/command.h"

namespace support {

// Runs "ip" with these arguments; several commands are separated by ";".
inline void Ip(const std::string& commands)
{
    const auto done = Run("echo '" + commands + "' | tr ';' '\\n' | ip -batch -");
    EXPECT_EQ(done.status, 0) << "ip " << commands;
}

// Waits for a condition; false when it does not come true within ten seconds.
template <typename Condition>
bool Eventually(const Condition& condition)
{
    using Clock         = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (Clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace support

// For a test's body, which goes on in a new, empty network namespace, as do commands that it
// starts; no traffic leaves it.
#define IN_OWN_NETWORK(body)                                     \
    if (unshare(CLONE_NEWNET) != 0)                              \
        GTEST_SKIP() << "no network namespace can be made here"; \
    (body)()
