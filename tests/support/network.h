// Network namespaces of a test's own, and what the operating system's own tool says about them.
#pragma once

#include <functional>
#include <string>

#include <nlohmann/json.hpp>

namespace support {

// Runs the body on a thread that stands in a new, empty network namespace. False where none can be
// made. Commands that the body starts stand there too; no traffic leaves it.
bool InOwnNetwork(const std::function<void()>& body);

// Runs "ip" with these arguments; one that fails is a failure of the test. Several commands are
// separated by ";".
void Ip(const std::string& commands);

// What "ip -json" with these arguments prints; null where it fails.
nlohmann::json AskIp(const std::string& arguments);

// Waits for a condition; false when it does not come true within ten seconds.
bool Eventually(const std::function<bool()>& condition);

}  // namespace support

// For a test's body.
#define IN_OWN_NETWORK(body)                                         \
    do {                                                             \
        if (!support::InOwnNetwork(body))                            \
            GTEST_SKIP() << "no network namespace can be made here"; \
    } while (false)
