// Manual pages: one for each header, in section 7, and one for each function and datum, in 3.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tools/reference/header.h"

namespace reference {

void WriteManual(const std::filesystem::path& directory, const std::string& version,
                 const std::vector<Header>& headers);

}  // namespace reference
