// An event descriptor (eventfd) that ends another thread's poll or epoll_wait.
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace standin {

class WakeEvent {
public:
    WakeEvent() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
    {
        if (descriptor_ < 0) {
            throw std::system_error(errno, std::generic_category(),
                                    "cannot open an event descriptor");
        }
    }
    ~WakeEvent() { close(descriptor_); }
    WakeEvent(const WakeEvent&) = delete;
    WakeEvent& operator=(const WakeEvent&) = delete;

    void Raise() const { eventfd_write(descriptor_, 1); }
    void Lower() const
    {
        eventfd_t count = 0;
        eventfd_read(descriptor_, &count);
    }
    int Descriptor() const { return descriptor_; }  // readable while the event is raised

private:
    int descriptor_;
};

}  // namespace standin
