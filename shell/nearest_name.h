// Error messages for unknown names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace shell {

// "unknown table vlans; did you mean vlan?". Only a similar name is suggested.
std::string UnknownName(std::string_view kind, std::string_view name,
                        const std::vector<std::string>& names);

}  // namespace shell
