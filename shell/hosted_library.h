// Starts and stops the library in this process, as a device's daemon does.
#pragma once

namespace shell {

class HostedLibrary {
public:
    // Starts the library and waits until its listener thread runs. Throws std::runtime_error, with
    // the log lines, if it does not start.
    HostedLibrary();
    // Stops the library. No callback runs after the destructor returns.
    ~HostedLibrary();
    HostedLibrary(const HostedLibrary&) = delete;
    HostedLibrary& operator=(const HostedLibrary&) = delete;
};

}  // namespace shell
