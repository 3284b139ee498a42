// The system log, caught: its functions are defined in the test program.
#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <regex>
#include <utility>

#include "support/platform.h"

namespace support {

namespace {

std::mutex           mutex;
std::vector<LogLine> lines;

void Catch(int priority, const char* format, va_list arguments)
{
    char      text[1024];
    const int length = vsnprintf(text, sizeof(text), format, arguments);
    if (length >= 0) {
        const std::lock_guard lock(mutex);
        lines.push_back({priority, text});
    }
}

// "[TARND_QRB][function:line] message" becomes "function: message".
std::string Message(const std::string& text)
{
    static const std::regex shape(R"(^\[TARND_QRB\]\[(\w+):\d+\] )");
    return std::regex_replace(text, shape, "$1: ", std::regex_constants::format_first_only);
}

}  // namespace

std::vector<LogLine> TakeLog()
{
    const std::lock_guard lock(mutex);
    return std::exchange(lines, {});
}

std::vector<std::string> TakeMessages()
{
    std::vector<std::string> messages;
    for (const LogLine& line : TakeLog()) {
        messages.push_back(Message(line.text));
    }
    return messages;
}

}  // namespace support

extern "C" {

void vsyslog(int priority, const char* format, va_list arguments)
{
    support::Catch(priority, format, arguments);
}

void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    support::Catch(priority, format, arguments);
    va_end(arguments);
}

// What a fortified build turns syslog into.
void __syslog_chk(int priority, int /*flag*/, const char* format, ...)  // NOLINT
{
    va_list arguments;
    va_start(arguments, format);
    support::Catch(priority, format, arguments);
    va_end(arguments);
}

}  // extern "C"
