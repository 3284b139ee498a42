// The library, hosted as the device's daemon does.
#pragma once

namespace shell {

class HostedLibrary {
public:
    // Starts it as a daemon does, and waits until its listener is there. Throws
    // std::runtime_error, with what was logged, where it does not start.
    HostedLibrary();
    // Afterwards no callback runs.
    ~HostedLibrary();
    HostedLibrary(const HostedLibrary&) = delete;
    HostedLibrary& operator=(const HostedLibrary&) = delete;
};

}  // namespace shell
