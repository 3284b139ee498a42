// What could stand where a line breaks off.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace shell {

struct Completion {
    std::string begun;                    // the unfinished word, as it stands on the line
    std::vector<std::string> candidates;  // words that begin so; a field's end with "="
};

// Names of commands, functions, tables and fields; values that stand in the database; files.
Completion Complete(std::string_view line);

}  // namespace shell
