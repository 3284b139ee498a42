#include "shell/terminal/interrupt.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <utility>

namespace shell {
namespace {

int innermost = -1;  // the descriptor of the innermost Interrupt

}  // namespace

Interrupt::Interrupt()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, &before_);
    descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    outer_ = std::exchange(innermost, descriptor_);
}

Interrupt::~Interrupt()
{
    Discard();
    close(descriptor_);
    innermost = outer_;
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void Interrupt::Discard()
{
    signalfd_siginfo taken{};
    while (read(descriptor_, &taken, sizeof(taken)) > 0) {
    }
}

void CheckInterrupt()
{
    signalfd_siginfo taken{};
    if (innermost >= 0 && read(innermost, &taken, sizeof(taken)) > 0) {
        throw Interrupted();
    }
}

}  // namespace shell
