// An eventfd that is readable while it is raised.
#pragma once

namespace standin {

class EventDescriptor {
public:
    EventDescriptor();
    ~EventDescriptor();
    EventDescriptor(const EventDescriptor&) = delete;
    EventDescriptor& operator=(const EventDescriptor&) = delete;

    int Descriptor() const { return descriptor_; }
    void Raise() const;
    void Lower() const;

private:
    int descriptor_;
};

}  // namespace standin
