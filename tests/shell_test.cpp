// The shell, run as a program on the example device.
#include <array>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

struct Outcome {
    std::string output;
    int         status;
};

// The input may hold no single quotes.
Outcome RunShell(const std::string& arguments, const std::string& input = "")
{
    const std::string command =
        "printf %s '" + input + "' | " TARND_SHELL " " + arguments + " 2>&1";
    FILE* const            pipe = popen(command.c_str(), "r");
    Outcome                run;
    std::array<char, 4096> part{};
    for (size_t size = 0; (size = fread(part.data(), 1, part.size(), pipe)) > 0;)
        run.output.append(part.data(), size);
    run.status = WEXITSTATUS(pclose(pipe));
    return run;
}

const std::string device = TARND_PROJECT_ROOT "/data/access-switch.json ";

TEST(Shell, AnswersFromTheCommandLineAndFromStandardInput)
{
    const auto [answer, status] = RunShell("--json " + device + "IF_INTF_GetIfNameByIfIndex 2");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Json::parse(answer)["outputs"], Json({{"name", "Ethernet0/0/2"}}));

    const Outcome lines = RunShell("-e " + device, "IP_GetMask 10010 10.0.10.1\nIP_GetMsk");
    EXPECT_EQ(lines.output,
              "> IP_GetMask 10010 10.0.10.1\n"
              "result  0 (ok)\n"
              "mask    255.255.255.0\n"
              "> IP_GetMsk\n"
              "there is no function or command IP_GetMsk; do you mean IP_GetMask?\n");
    EXPECT_EQ(lines.status, 2);
}

}  // namespace
