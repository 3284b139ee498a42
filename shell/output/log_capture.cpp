#include "shell/output/log_capture.h"

#include <iostream>
#include <mutex>
#include <utility>

#include "shell/output/system_log.h"

namespace shell {
namespace {

thread_local std::vector<std::string>* caught = nullptr;

std::mutex sinkMutex;
std::function<void(const std::string&)> sink = [](const std::string& line) {
    std::cerr << line << '\n';
};

// If memory is exhausted, the line is dropped.
void Capture(int /*priority*/, const char* text) noexcept
try {
    std::string line = text;
    line.erase(line.find_last_not_of('\n') + 1);
    if (caught != nullptr) {
        caught->push_back(std::move(line));
    } else {
        const std::lock_guard lock(sinkMutex);
        sink(line);
    }
} catch (const std::exception&) {
}

[[maybe_unused]] const bool IS_RECEIVING = (SetSystemLogReceiver(Capture), true);

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
