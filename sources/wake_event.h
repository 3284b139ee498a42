// Ends a wait in poll, from another thread.
#pragma once

namespace sources {

class WakeEvent {
public:
    WakeEvent();
    ~WakeEvent();
    WakeEvent(const WakeEvent&) = delete;
    WakeEvent& operator=(const WakeEvent&) = delete;

    void Raise() const;
    void Lower() const;
    int Descriptor() const { return descriptor_; }  // readable while it is raised

private:
    int descriptor_;
};

}  // namespace sources
