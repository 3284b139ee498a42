// The shell, run as a program on the example device.
#include <cstdio>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/command.h"

namespace {

using Json  = nlohmann::ordered_json;
using Names = std::set<std::string>;

const std::string root   = TARND_PROJECT_ROOT;
const std::string device = root + "/data/access-switch.json ";

std::string TextOf(const std::string& file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

support::Outcome RunShell(const std::string& arguments, const std::string& input = "")
{
    const std::string file = testing::TempDir() + "shell-input-" + std::to_string(getpid());
    std::ofstream(file) << input;
    const auto run = support::Run(TARND_SHELL " " + arguments + " 2>&1 <" + file);
    std::remove(file.c_str());
    return run;
}

// What the documentation says of each call, in one process and in this order.
TEST(Shell, CallsEveryFunction)
{
    const std::string        page = TextOf(root + "/docs/calls.txt");
    std::string              input;
    std::vector<std::string> expected;  // "CALL => CODE OUTPUTS"
    Names                    called;
    std::istringstream       lines(page);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('#'))
            continue;
        expected.push_back(line);
        called.insert(line.substr(0, line.find(' ')));
        input += line.substr(0, line.find(" => ")) + "\n";
    }
    std::istringstream answers(RunShell("--json " + device, input).output);
    auto               call = expected.begin();
    for (std::string line; std::getline(answers, line);) {
        const Json answer = Json::parse(line);
        if (answer.contains("event"))
            continue;
        ASSERT_NE(call, expected.end()) << line;
        std::string got = call->substr(0, call->find(" => ") + 4);
        got += answer["result"].is_null() ? "-" : answer["result"].dump();
        got += answer["outputs"].empty() ? "" : " " + answer["outputs"].dump();
        EXPECT_TRUE(got == *call || call->ends_with(" => *")) << *call << "\n" << line;
        ++call;
    }
    EXPECT_EQ(call, expected.end());

    Names known;
    for (const Json& function : Json::parse(RunShell("--json " + device + "functions").output))
        known.insert(function["function"].get<std::string>());
    EXPECT_EQ(called, known);

    // Locks, and a thread's entry, are for threads.
    const std::regex byThreads(
        "DbListenerEpollThreadFunc|g_epollDbListenerCond(Lock)?|g_dbListenerRegLock");
    const std::string map = TextOf(root + "/cmake/tarnd_qrb.map");
    const std::regex  exported("\n +(\\w+);");
    for (std::sregex_iterator match(map.begin(), map.end(), exported), end; match != end; ++match)
        EXPECT_TRUE(known.contains((*match)[1]) || std::regex_match((*match)[1].str(), byThreads))
            << (*match)[1] << " can't be called from the shell";
}

// A session as people see it. "@" stands for what differs from run to run.
TEST(Shell, ShowsWhatPeopleExpect)
{
    const std::string  expected = TextOf(root + "/tests/shell_session.txt");
    std::string        input;
    std::istringstream lines(expected);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("> "))
            input += line.substr(2) + "\n";
    const auto [status, output] = RunShell("--echo " + device, input);
    const std::regex changing(R"(\d\d:\d\d:\d\d\.\d{6}|[\d.]+(?= us)|:\d+(?=\] ))");
    EXPECT_EQ(std::regex_replace(output, changing, "@"), expected);
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
    for (const auto& [arguments, status] : runs)
        EXPECT_EQ(RunShell(arguments).status, status) << arguments;
}

}  // namespace
