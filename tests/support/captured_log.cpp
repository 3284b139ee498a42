// The system log, caught: its functions are defined in the test program.
#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <regex>
#include <utility>

#include "support/fault_injection.h"

namespace support {

namespace {

std::mutex mutex;
std::vector<LogLine> lines;

void Catch(int priority, const char* format, va_list arguments)
{
    char text[1024];
    const int length = vsnprintf(text, sizeof(text), format, arguments);
    if (length >= 0) {
        const std::lock_guard lock(mutex);
        lines.push_back({priority, text});
    }
}

}  // namespace

std::vector<LogLine> TakeLog()
{
    const std::lock_guard lock(mutex);
    return std::exchange(lines, {});
}

std::vector<std::string> TakeMessages()
{
    static const std::regex identity(R"(^\[TARND_QRB\]\[(\w+):\d+\] )");
    std::vector<std::string> messages;
    for (const LogLine& line : TakeLog()) {
        messages.push_back(std::regex_replace(line.text, identity, "$1: "));
    }
    return messages;
}

std::vector<std::string> TakeComplaints()
{
    std::vector<std::string> messages = TakeMessages();
    std::erase_if(messages, [](const std::string& message) {
        return message.starts_with("DbListenerEpollThreadFunc");
    });
    return messages;
}

}  // namespace support

extern "C" {

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
