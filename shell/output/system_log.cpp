// Defines the log functions of the C library, so that the library's calls resolve to them.
#include "shell/output/system_log.h"

#include <syslog.h>

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {

std::atomic<SystemLogReceiver> currentReceiver = nullptr;

void Receive(int priority, const char* format, va_list arguments)
{
    // Formatted also without a receiver, so that the sanitizers see every argument.
    std::array<char, 1024> text{};
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    if (const SystemLogReceiver receiver = currentReceiver; receiver != nullptr && length >= 0) {
        receiver(priority, text.data());
    }
}

}  // namespace

void SetSystemLogReceiver(SystemLogReceiver receiver)
{
    currentReceiver = receiver;
}

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED void vsyslog(int priority, const char* format, va_list arguments)
{
    Receive(priority, format, arguments);
}

EXPORTED void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    Receive(priority, format, arguments);
    va_end(arguments);
}

// Called in place of syslog in a build with _FORTIFY_SOURCE.
EXPORTED void __syslog_chk(int priority, int /*flag*/, const char* format, ...)  // NOLINT
{
    va_list arguments;
    va_start(arguments, format);
    Receive(priority, format, arguments);
    va_end(arguments);
}
