#include "shell/output/file_replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace shell {
namespace {

[[noreturn]] void Refuse(const std::string& file)
{
    throw FileError(file + ": " + std::strerror(errno));
}

// Returns false and sets errno on failure.
bool WriteAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
    return true;
}

void WriteDirectly(const std::string& file, const std::string& text)
{
    const int descriptor = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0 || !WriteAll(descriptor, text) || close(descriptor) != 0) {
        Refuse(file);
    }
}

mode_t NewFileMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

void WriteBeside(const std::string& file, const std::string& text, mode_t mode)
{
    std::string beside = file + ".XXXXXX";
    const int descriptor = mkostemp(beside.data(), O_CLOEXEC);
    if (descriptor < 0) {
        Refuse(file);
    }
    const bool isWritten =
        WriteAll(descriptor, text) && fchmod(descriptor, mode) == 0 && fsync(descriptor) == 0;
    const int error = errno;
    close(descriptor);
    errno = error;
    if (!isWritten || std::rename(beside.c_str(), file.c_str()) != 0) {
        const int reason = errno;
        unlink(beside.c_str());
        errno = reason;
        Refuse(file);
    }
}

}  // namespace

void ReplaceFile(const std::string& file, const std::string& text)
{
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        WriteBeside(file, text, NewFileMode());
    } else if (!S_ISREG(status.st_mode)) {
        WriteDirectly(file, text);
    } else {
        std::error_code ignored;
        const auto target = std::filesystem::canonical(file, ignored);
        WriteBeside(target.empty() ? file : target.string(), text, status.st_mode & 07777);
    }
}

}  // namespace shell
