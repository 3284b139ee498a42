#include "support/listener.h"

#include <sys/eventfd.h>
#include <tarnd_qrb/listener.h>
#include <unistd.h>

#include <atomic>
#include <utility>

namespace support {

namespace {

// The thread may sleep for two seconds, and a thousand starts can't wait for that.
class Wake {
public:
    Wake() : descriptor_(eventfd(1, EFD_CLOEXEC))
    {
        pthread_mutex_lock(&g_epollDbListenerCondLock);
        const bool waits = g_epollDbListenerFd > 0;
        pthread_mutex_unlock(&g_epollDbListenerCondLock);
        if (waits) {
            DbListenerEpollCtrl(static_cast<uint32_t>(descriptor_), 0);
        }
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

}  // namespace support
