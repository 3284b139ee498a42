// Start of the listener thread, for the first registration.
#pragma once

#include <cstdint>

namespace qrb {

// Starts the thread and waits until it has created its epoll instance or failed to. A thread that
// cannot be created is logged, and g_epollDbListenerThreadId stays 0. Called with
// g_dbListenerRegLock held.
void DbListenerCreateEpollThread();

// Returns the listener's epoll instance; below 1 if there is none.
int32_t ListenerEpollFd();

}  // namespace qrb
