#include "standin/event_descriptor.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace standin {

EventDescriptor::EventDescriptor() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

EventDescriptor::~EventDescriptor()
{
    close(descriptor_);
}

void EventDescriptor::Raise() const
{
    eventfd_write(descriptor_, 1);
}

void EventDescriptor::Lower() const
{
    eventfd_t count = 0;
    eventfd_read(descriptor_, &count);
}

}  // namespace standin
