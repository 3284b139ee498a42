// A header rewritten so that Doxygen sees its comments.
#pragma once

#include <ostream>

#include "tools/reference/header.h"

namespace reference {

void WriteForDoxygen(std::ostream& out, const Header& header);

}  // namespace reference
