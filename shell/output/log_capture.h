// Captures the lines that this process writes to the system log.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace shell {

// Captures the lines of the thread that made it, until it is destroyed. One at a time per thread.
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

// Receives the lines of threads without a LogCapture; called on those threads. Initially they go to
// standard error.
void SetLogSink(std::function<void(const std::string& line)> sink);

}  // namespace shell
