// Replaces files atomically: a file has either its old or its new contents.
#pragma once

#include <stdexcept>
#include <string>

namespace shell {

// Thrown if a file can't be read or written.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Writes a new file in the same directory and renames it. Keeps the permissions of the old file and
// follows symbolic links. Devices, pipes and other non-regular files are written directly. Throws
// FileError on failure; the old file is then unchanged.
void ReplaceFile(const std::string& file, const std::string& text);

}  // namespace shell
