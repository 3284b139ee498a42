#include "support/listener.h"

#include <dlfcn.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <tarnd_qrb/listener.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

namespace support {

namespace {

thread_local int threadError = 0;
std::atomic<int> epollError  = 0;

// The thread may sleep for two seconds, and a thousand starts can't wait for that.
class Wake {
public:
    Wake() : descriptor_(eventfd(1, EFD_CLOEXEC))
    {
        DbListenerEpollCtrl(static_cast<uint32_t>(descriptor_), 0);
    }
    ~Wake() { close(descriptor_); }
    Wake(const Wake&)            = delete;
    Wake& operator=(const Wake&) = delete;

private:
    int descriptor_;
};

}  // namespace

void StopListener()
{
    if (std::exchange(g_isDbListenerSubOpened, uint8_t{0}) != 0) {
        OrmCloseSession(g_dbListenerSubSession);
    }
    if (g_epollDbListenerThreadId != 0) {
        std::atomic_ref(g_epollDbListenerThreadExit).store(1, std::memory_order_release);
        const Wake wake;
        pthread_join(std::exchange(g_epollDbListenerThreadId, pthread_t{0}), nullptr);
    }
    g_regDbListenerInfo = nullptr;
}

void FailThreadCreation(int error)
{
    threadError = error;
}

void FailEpollCreation(int error)
{
    epollError = error;
}

}  // namespace support

extern "C" {

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                   void* argument)
{
    static const auto next =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    const int error = std::exchange(support::threadError, 0);
    if (error == 0) {
        return next(thread, attributes, entry, argument);
    }
    *thread = 1;  // as the system may leave it
    return error;
}

int epoll_create(int size) noexcept
{
    static const auto next =
        reinterpret_cast<decltype(&epoll_create)>(dlsym(RTLD_NEXT, "epoll_create"));
    const int error = support::epollError.exchange(0);
    if (error == 0) {
        return next(size);
    }
    errno = error;
    return -1;
}

}  // extern "C"
