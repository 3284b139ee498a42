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

// Names of commands, functions, tables, fields and events; values in the database; files.
Completion Complete(std::string_view line);

}  // namespace shell
