// Completion candidates for an unfinished line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace shell {

struct Completion {
    std::string begun;                    // the unfinished word
    std::vector<std::string> candidates;  // words with that beginning; fields end with "="
};

// Completes names of commands, functions, tables, fields and events, database values and files.
Completion Complete(std::string_view line);

}  // namespace shell
