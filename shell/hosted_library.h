// Hosts the library as a device's daemon does.
#pragma once

namespace shell {

class HostedLibrary {
public:
    // Starts the library and waits until its listener thread runs. Throws std::runtime_error, with
    // the log lines, if it does not start.
    HostedLibrary();
    // No callback runs afterwards.
    ~HostedLibrary();
    HostedLibrary(const HostedLibrary&) = delete;
    HostedLibrary& operator=(const HostedLibrary&) = delete;
};

}  // namespace shell
