// Progress indicator for long operations on a terminal.
#pragma once

#include <chrono>
#include <string>

namespace shell {

class Progress {
public:
    // what: "rows read". Short operations show nothing, nor does a stderr that is not a terminal.
    explicit Progress(std::string what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Step()
    {
        if (++count_ % STEPS_BETWEEN_LOOKS == 0 && isTerminal_) {
            Show();
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr size_t STEPS_BETWEEN_LOOKS = 1024;

    void Show();

    std::string what_;
    bool isTerminal_;
    size_t count_ = 0;
    Clock::time_point next_;
    bool isShown_ = false;
};

}  // namespace shell
