// The shell, run as a program on the example device.
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/test_system.h"

namespace {

using Json = nlohmann::ordered_json;
using Names = std::set<std::string>;
using support::TextOf;

const std::string root = TARND_PROJECT_ROOT;
const std::string device = root + "/data/access-switch.json ";

// Input: a command that prints it.
support::Outcome RunShell(const std::string& arguments, const std::string& input = "true")
{
    return support::Run(input + " | " TARND_SHELL " " + arguments + " 2>&1");
}

// What the documentation says of each call, in one process and in this order.
TEST(Shell, CallsEveryFunction)
{
    const std::string calls = "grep -v '^#' " + root + "/docs/calls.txt";
    Names called;
    std::istringstream answers(RunShell("--json " + device, calls + " | sed 's/ => .*//'").output);
    std::istringstream expected(support::Run(calls).output);
    for (std::string call, line; std::getline(expected, call);) {  // "CALL => CODE OUTPUTS"
        while (std::getline(answers, line) && line.starts_with("{\"event\":")) {
        }
        const Json answer = Json::parse(line);
        std::string got = call.substr(0, call.find(" => ") + 4);
        got += answer["result"].is_null() ? "-" : answer["result"].dump();
        got += answer["outputs"].empty() ? "" : " " + answer["outputs"].dump();
        EXPECT_TRUE(got == call || call.ends_with(" => *")) << call << "\n" << line;
        called.insert(call.substr(0, call.find(' ')));
    }

    Names known;
    for (const Json& function : Json::parse(RunShell("--json " + device + "functions").output)) {
        known.insert(function["function"].get<std::string>());
    }
    EXPECT_EQ(called, known);

    // Locks, and a thread's entry, are for threads.
    const std::regex byThreads(
        "DbListenerEpollThreadFunc|g_epollDbListenerCond(Lock)?|g_dbListenerRegLock");
    const std::string map = TextOf(root + "/cmake/tarnd_qrb.map");
    const std::regex exported("\n +(\\w+);");
    for (std::sregex_iterator match(map.begin(), map.end(), exported), end; match != end; ++match) {
        EXPECT_TRUE(known.contains((*match)[1]) || std::regex_match((*match)[1].str(), byThreads))
            << (*match)[1] << " can't be called from the shell";
    }
}

// A session as people see it. "@" stands for what differs from run to run.
TEST(Shell, ShowsWhatPeopleExpect)
{
    const std::string session = root + "/tests/data/shell_session.txt";
    const auto [status, output] = RunShell("--echo " + device, "sed -n 's/^> //p' " + session);
    const std::regex changing(R"(\d\d:\d\d:\d\d\.\d{6}|[\d.]+(?= us)|:\d+(?=\] ))");
    EXPECT_EQ(std::regex_replace(output, changing, "@"), TextOf(session));
    EXPECT_EQ(status, 2);
}

TEST(Shell, TellsScriptsByItsStatusHowItWent)
{
    const std::pair<std::string, int> runs[] = {{device + "BDS_L2IF_VLAN_IsActive 200", 0},
                                                {device + "IP_GetMainIpAddr 3", 1},
                                                {device + "IP_GetMainIpAddr", 2},
                                                {"none.json", 1},
                                                {"", 2},
                                                {device + "diff " + device, 0}};
    for (const auto& [arguments, status] : runs) {
        EXPECT_EQ(RunShell(arguments).status, status) << arguments;
    }
}

}  // namespace
