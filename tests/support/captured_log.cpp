// Captures the system log.
#include <mutex>
#include <regex>
#include <utility>

#include "shell/output/system_log.h"
#include "support/fault_injection.h"

namespace support {

namespace {

std::mutex linesMutex;
std::vector<LogLine> logLines;

void Capture(int priority, const char* text) noexcept
{
    const std::lock_guard lock(linesMutex);
    logLines.push_back({priority, text});
}

[[maybe_unused]] const bool isReceiving = (SetSystemLogReceiver(Capture), true);

}  // namespace

std::vector<LogLine> TakeLog()
{
    const std::lock_guard lock(linesMutex);
    return std::exchange(logLines, {});
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
