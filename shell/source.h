// The sources that the shell can be given.
#pragma once

#include <memory>
#include <string>

#include "sources/source.h"

namespace shell {

// "host", "ovsdb:" with servers behind it as sources/ovsdb_servers.h has them, or the path of a
// JSON file. Throws std::runtime_error.
std::unique_ptr<sources::Source> OpenSource(const std::string& name);

}  // namespace shell
