// Helpers that use the operating system, and waits.
#pragma once

#include <sched.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace support {

inline std::string TextOf(const std::string& file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

// The text of the exception that the action throws; empty if it throws none.
template <typename Action>
std::string RefusalOf(const Action& action)
{
    try {
        action();
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

struct Outcome {
    int status;  // -1: ended by a signal
    std::string output;
};

// Runs a command of the shell's.
inline Outcome Run(const std::string& command)
{
    Outcome outcome{-1, ""};
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return outcome;
    }
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        outcome.output.push_back(static_cast<char>(c));
    }
    const int ended = pclose(pipe);
    outcome.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    return outcome;
}

// Runs "ip" with these arguments; several commands are separated by ";".
inline void Ip(const std::string& commands)
{
    const auto done = Run("echo '" + commands + "' | tr ';' '\\n' | ip -batch -");
    EXPECT_EQ(done.status, 0) << "ip " << commands;
}

// Waits for a condition; returns false if it is not true within ten seconds.
template <typename Condition>
bool Eventually(const Condition& condition)
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (Clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace support

// Moves the test, and commands that it starts, into a new, empty network namespace.
#define IN_OWN_NETWORK(body)                                 \
    if (unshare(CLONE_NEWNET) != 0)                          \
        GTEST_SKIP() << "cannot create a network namespace"; \
    (body)()
