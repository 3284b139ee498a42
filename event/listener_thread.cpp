// The listener thread: waits for the database's descriptors and lets the database client dispatch
// the ready ones.
#include "event/listener_thread.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include <tarnd_qrb/listener.h>

#include "db/access.h"

using namespace qrb;

int32_t g_epollDbListenerFd = -1;
pthread_t g_epollDbListenerThreadId = 0;
uint8_t g_epollDbListenerThreadExit = 0;
pthread_cond_t g_epollDbListenerCond = PTHREAD_COND_INITIALIZER;
pthread_mutex_t g_epollDbListenerCondLock = PTHREAD_MUTEX_INITIALIZER;
ORM_FD_CONTROL g_regDbListenerInfo = nullptr;

namespace {

constexpr int SIZE_HINT = 10;
constexpr int EVENTS_PER_WAIT = 10;
constexpr int WAIT_TIME = 2000;  // milliseconds
constexpr int NO_EPOLL = -1;

// Whether the thread has created its epoll instance or failed to. The descriptor does not show it:
// the thread may already have closed it. Guarded by g_epollDbListenerCondLock.
bool isEpollTried = false;

bool IsEpoll(int32_t epollFd)
{
    return epollFd >= 1;
}

// The epoll instance is created, used and closed under g_epollDbListenerCondLock, so that no one
// uses a closed descriptor whose number was reassigned.

int32_t ReadEpollFd(const int32_t* epollFd)
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    const int32_t current = *epollFd;
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
    return current;
}

void CloseEpoll(int32_t* epollFd)
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    close(*epollFd);
    *epollFd = NO_EPOLL;
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
}

uint32_t DbListenerInitEpoll(int32_t* epollFd)
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    const int created = epoll_create(SIZE_HINT);
    if (created >= 0) {
        *epollFd = created;
    } else {
        QRB_ERROR("[DEBUG]: Create DbListenerInitEpoll file descriptor failed, err_msg=%s.\n",
                  strerror(errno));
    }
    isEpollTried = true;
    pthread_cond_signal(&g_epollDbListenerCond);
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
    return created >= 0 ? OK : FAIL;
}

uint8_t ExitFlag()
{
    return __atomic_load_n(&g_epollDbListenerThreadExit, __ATOMIC_ACQUIRE);
}

void DispatchReady(int32_t epollFd)
{
    epoll_event ready[EVENTS_PER_WAIT];
    const int count = epoll_wait(epollFd, ready, EVENTS_PER_WAIT, WAIT_TIME);
    for (int i = 0; i < count; i++) {
        DbcHandleEvent(ready[i].data.fd);
    }
}

void ResetEpollTried()
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    isEpollTried = IsEpoll(g_epollDbListenerFd);
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
}

void WaitForEpoll()
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    while (!isEpollTried) {
        pthread_cond_wait(&g_epollDbListenerCond, &g_epollDbListenerCondLock);
    }
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
}

}  // namespace

void qrb::DbListenerCreateEpollThread()
{
    ResetEpollTried();
    pthread_t thread = 0;  // pthread_create may write it even if it fails
    errno = pthread_create(&thread, nullptr, DbListenerEpollThreadFunc, &g_epollDbListenerFd);
    if (errno != 0) {
        QRB_ERROR("[DEBUG]: create epoll thread failed,errmsg=%s\n", strerror(errno));
        return;
    }
    g_epollDbListenerThreadId = thread;
    WaitForEpoll();
    g_regDbListenerInfo = DbListenerEpollCtrl;
}

int32_t qrb::ListenerEpollFd()
{
    return ReadEpollFd(&g_epollDbListenerFd);
}

void* DbListenerEpollThreadFunc(void* epollFd)
{
    auto* const descriptor = static_cast<int32_t*>(epollFd);
    __atomic_store_n(&g_epollDbListenerThreadExit, 0, __ATOMIC_RELAXED);
    if (!IsEpoll(ReadEpollFd(descriptor)) && DbListenerInitEpoll(descriptor) != OK) {
        QRB_ERROR("[DEBUG]: failed to init epoll, thread will exit.\n");
        return nullptr;
    }
    const int32_t epoll = ReadEpollFd(descriptor);
    QRB_ERROR("[DEBUG]: epoll DbListener thread start, epollFd=%d, exit=%d\n", epoll, ExitFlag());
    while (ExitFlag() == 0) {
        DispatchReady(epoll);
    }
    CloseEpoll(descriptor);
    QRB_ERROR("[DEBUG]: epoll thread exit. epoll_fd=%d,exit=%d\n", epoll, ExitFlag());
    return nullptr;
}

int32_t DbListenerEpollCtrl(uint32_t descriptor, uint32_t operation)
{
    constexpr uint32_t ADD = 0;
    epoll_event watched{};
    watched.events = EPOLLIN;
    watched.data.fd = static_cast<int>(descriptor);

    pthread_mutex_lock(&g_epollDbListenerCondLock);
    const int32_t epoll = g_epollDbListenerFd;
    const int result = operation == ADD ? epoll_ctl(epoll, EPOLL_CTL_ADD, watched.data.fd, &watched)
                                        : epoll_ctl(epoll, EPOLL_CTL_DEL, watched.data.fd, nullptr);
    const int error = errno;
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
    if (result != 0) {
        QRB_ERROR("[DEBUG]: epoll_ctrl:g_epollDbListenerFd=%d, fd=%d type=%d, Error:[%d:%s]\n",
                  epoll, watched.data.fd, operation, error, strerror(error));
    }
    return result;
}
