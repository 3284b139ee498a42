#include "shell/progress.h"

#include <unistd.h>

#include <iostream>
#include <utility>

namespace shell {
namespace {

using namespace std::chrono_literals;

constexpr auto quiet = 300ms;  // before the first line
constexpr auto between = 100ms;

constexpr const char* clearLine = "\r\033[K";

}  // namespace

Progress::Progress(std::string what)
    : what_(std::move(what)), isTerminal_(isatty(STDERR_FILENO) != 0), next_(Clock::now() + quiet)
{
}

Progress::~Progress()
{
    if (isShown_) {
        std::cerr << clearLine << std::flush;
    }
}

void Progress::Show()
{
    if (Clock::now() < next_) {
        return;
    }
    std::cerr << clearLine << count_ << ' ' << what_ << std::flush;
    next_ = Clock::now() + between;
    isShown_ = true;
}

}  // namespace shell
