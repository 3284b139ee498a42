#include "sources/wake_event.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace sources {

WakeEvent::WakeEvent() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot open an event descriptor");
    }
}

WakeEvent::~WakeEvent()
{
    close(descriptor_);
}

void WakeEvent::Raise() const
{
    eventfd_write(descriptor_, 1);
}

void WakeEvent::Lower() const
{
    eventfd_t count = 0;
    eventfd_read(descriptor_, &count);
}

}  // namespace sources
