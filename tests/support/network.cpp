#include "support/network.h"

#include <sched.h>

#include <chrono>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "support/command.h"

namespace support {

bool InOwnNetwork(const std::function<void()>& body)
{
    bool made = false;
    std::thread([&] {
        made = unshare(CLONE_NEWNET) == 0;
        if (made)
            body();
    }).join();
    return made;
}

void Ip(const std::string& commands)
{
    std::istringstream all(commands);
    for (std::string command; std::getline(all, command, ';');)
        EXPECT_EQ(Run("ip " + command).status, 0) << "ip " << command;
}

nlohmann::json AskIp(const std::string& arguments)
{
    const Outcome outcome = Run("ip -json " + arguments + " 2>/dev/null");
    return outcome.status == 0 ? nlohmann::json::parse(outcome.output) : nlohmann::json();
}

bool Eventually(const std::function<bool()>& condition)
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
