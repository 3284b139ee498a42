// The system log, caught: its functions are defined in the test program.
#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string_view>
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
    constexpr std::string_view identity = "[TARND_QRB][";

    const size_t colon = text.find(':');
    const size_t end   = text.find("] ", colon);
    if (!text.starts_with(identity) || end == std::string::npos) {
        return text;
    }
    return text.substr(identity.size(), colon - identity.size()) + ": " + text.substr(end + 2);
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

std::vector<std::string> TakeComplaints()
{
    std::vector<std::string> messages = TakeMessages();
    std::erase_if(messages, [](const std::string& message) {
        return message.find("thread start") != std::string::npos ||
               message.find("thread exit.") != std::string::npos;
    });
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
