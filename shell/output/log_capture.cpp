// Defines the log functions of the C library, so that the library's calls resolve to them.
#include "shell/output/log_capture.h"

#include <syslog.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <utility>

namespace shell {
namespace {

thread_local std::vector<std::string>* caught = nullptr;

std::mutex sinkMutex;
std::function<void(const std::string&)> sink = [](const std::string& line) {
    std::cerr << line << '\n';
};

// Called by C code, so no exception may leave it. If memory is exhausted, the line is dropped.
void Capture(const char* format, va_list arguments) noexcept
try {
    std::array<char, 1024> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    std::string line = text.data();
    line.erase(line.find_last_not_of('\n') + 1);
    if (caught != nullptr) {
        caught->push_back(std::move(line));
    } else {
        const std::lock_guard lock(sinkMutex);
        sink(line);
    }
} catch (const std::exception&) {
}

}  // namespace

LogCapture::LogCapture()
{
    caught = &lines_;
}

LogCapture::~LogCapture()
{
    caught = nullptr;
}

std::vector<std::string> LogCapture::Take()
{
    return std::exchange(lines_, {});
}

void SetLogSink(std::function<void(const std::string& line)> newSink)
{
    const std::lock_guard lock(sinkMutex);
    sink = std::move(newSink);
}

}  // namespace shell

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED void vsyslog(int /*priority*/, const char* format, va_list arguments)
{
    shell::Capture(format, arguments);
}

EXPORTED void syslog(int /*priority*/, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    shell::Capture(format, arguments);
    va_end(arguments);
}

// Called in place of syslog in a build with _FORTIFY_SOURCE.
EXPORTED void __syslog_chk(int /*priority*/, int /*flag*/, const char* format, ...)  // NOLINT
{
    va_list arguments;
    va_start(arguments, format);
    shell::Capture(format, arguments);
    va_end(arguments);
}
