// "There is no X; do you mean Y?"
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace shell {

// A message that names the nearest of the names there are, if one is near.
std::string NoSuch(std::string_view kind, std::string_view name,
                   const std::vector<std::string>& names);

}  // namespace shell
