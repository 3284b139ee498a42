// Handling of Ctrl-C while a command runs.
#pragma once

#include <csignal>
#include <stdexcept>

namespace shell {

// Thrown if a command was ended by Ctrl-C.
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

// While an Interrupt exists, Ctrl-C doesn't end the process: a wait polls the descriptor, and a
// long loop calls CheckInterrupt. Main thread only.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    int Descriptor() const { return descriptor_; }  // readable after Ctrl-C
    void Discard();                                 // forgets a Ctrl-C that was pressed before

private:
    sigset_t before_{};
    int descriptor_;
    int outer_;  // the descriptor of the enclosing one
};

// Throws Interrupted if Ctrl-C was pressed while an Interrupt exists.
void CheckInterrupt();

}  // namespace shell
