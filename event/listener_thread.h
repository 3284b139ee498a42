// The listener thread, for the registration that starts it.
#pragma once

#include <cstdint>

namespace qrb {

// Starts the thread and waits until it has made its epoll instance, or failed to. Where no thread
// can be created that is logged, and g_epollDbListenerThreadId stays 0.
void DbListenerCreateEpollThread();

// The listener's epoll instance; below 1 where there is none.
int32_t ListenerEpollFd();

}  // namespace qrb
