#include "shell/terminal/progress.h"

#include <unistd.h>

#include <iostream>
#include <utility>

namespace shell {
namespace {

using namespace std::chrono_literals;

constexpr auto QUIET = 300ms;  // delay before the first output
constexpr auto BETWEEN = 100ms;

constexpr const char* CLEAR_LINE = "\r\033[K";

}  // namespace

Progress::Progress(std::string what)
    : what_(std::move(what)), isTerminal_(isatty(STDERR_FILENO) != 0), next_(Clock::now() + QUIET)
{
}

Progress::~Progress()
{
    if (isShown_) {
        std::cerr << CLEAR_LINE << std::flush;
    }
}

void Progress::Show()
{
    if (Clock::now() < next_) {
        return;
    }
    std::cerr << CLEAR_LINE << count_ << ' ' << what_ << std::flush;
    next_ = Clock::now() + BETWEEN;
    isShown_ = true;
}

}  // namespace shell
