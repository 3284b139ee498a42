// Commands of the operating system's shell.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace support {

struct Outcome {
    int         status;  // -1: it did not end by itself
    std::string output;
};

inline Outcome Run(const std::string& command)
{
    Outcome     outcome{-1, ""};
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return outcome;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
        outcome.output.push_back(static_cast<char>(c));
    const int ended = pclose(pipe);
    outcome.status  = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    return outcome;
}

}  // namespace support
