// The library, hosted as the device's daemon does.
#pragma once

namespace shell {

class Library {
public:
    // Starts it as a daemon does, and waits until its listener is there. Throws
    // std::runtime_error, with what was logged, where it does not start.
    Library();
    // Afterwards no callback runs.
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

}  // namespace shell
