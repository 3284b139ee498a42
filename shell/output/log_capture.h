// The system log of this process: its lines come here.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace shell {

// Keeps the lines that this thread writes while it lives. One at a time on a thread.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> Take();

private:
    std::vector<std::string> lines_;
};

// Where the lines of threads that no catcher listens to go; any thread. At first: to stderr.
void SetLogSink(std::function<void(const std::string& line)> sink);

}  // namespace shell
