// Writes whole files, so that a file has either its old or its new contents.
#pragma once

#include <stdexcept>
#include <string>

namespace shell {

// A file that can't be read or written.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Writes a new file beside the old one and renames it. Keeps the permissions of the old file, and
// follows symbolic links. What is no regular file, such as a device or a pipe, is written directly.
// Throws FileError; the old file is then unchanged.
void ReplaceFile(const std::string& file, const std::string& text);

}  // namespace shell
