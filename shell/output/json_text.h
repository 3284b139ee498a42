// Rows as aligned columns, for people.
#pragma once

#include <string>

#include "shell/functions/argument.h"

namespace shell {

// An array of objects: a column for each member that one of them has, numbers to the right. Nested
// values are written on one line.
std::string TextTable(const Json& rows);

// A value on one line: a text bare, a list's elements joined by commas.
std::string OneLine(const Json& value);

}  // namespace shell
