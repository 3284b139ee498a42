// The listener thread, from outside: stopped as a daemon would, and kept from starting.
#pragma once

namespace support {

// Closes the session, stops and joins the thread, and sets everything back, so that a registration
// starts anew. Nothing where nothing runs.
void StopListener();

// The next thread that this thread creates, or the next epoll instance, fails with this error.
void FailThreadCreation(int error);
void FailEpollCreation(int error);

}  // namespace support
