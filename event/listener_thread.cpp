// The listener thread: waits for the database's descriptors and has their callbacks run.
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

// Whether the thread has made its epoll instance, or failed to. Guarded like the instance, which
// doesn't tell: the thread may be over before the registering one has looked.
bool g_isEpollTried = false;

bool IsEpoll(int32_t epollFd)
{
    return epollFd >= 1;
}

// Both by g_epollDbListenerCondLock: the thread's own epoll instance lives and dies under it, so
// that nobody touches a descriptor that has become another's.
int32_t Look(const int32_t* epollFd)
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    const int32_t seen = *epollFd;
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
    return seen;
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
    const int made = epoll_create(SIZE_HINT);
    if (made >= 0) {
        *epollFd = made;
    } else {
        QRB_ERROR("[DEBUG]: Create DbListenerInitEpoll file descriptor failed, err_msg=%s.\n",
                  strerror(errno));
    }
    g_isEpollTried = true;
    pthread_cond_signal(&g_epollDbListenerCond);
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
    return made >= 0 ? OK : FAIL;
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

void ExpectEpoll()
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    g_isEpollTried = IsEpoll(g_epollDbListenerFd);
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
}

void AwaitEpoll()
{
    pthread_mutex_lock(&g_epollDbListenerCondLock);
    while (!g_isEpollTried) {
        pthread_cond_wait(&g_epollDbListenerCond, &g_epollDbListenerCondLock);
    }
    pthread_mutex_unlock(&g_epollDbListenerCondLock);
}

}  // namespace

void qrb::DbListenerCreateEpollThread()
{
    ExpectEpoll();
    pthread_t thread = 0;  // written to even where none is created
    errno = pthread_create(&thread, nullptr, DbListenerEpollThreadFunc, &g_epollDbListenerFd);
    if (errno != 0) {
        QRB_ERROR("[DEBUG]: create epoll thread failed,errmsg=%s\n", strerror(errno));
        return;
    }
    g_epollDbListenerThreadId = thread;
    AwaitEpoll();
    g_regDbListenerInfo = DbListenerEpollCtrl;
}

int32_t qrb::ListenerEpollFd()
{
    return Look(&g_epollDbListenerFd);
}

void* DbListenerEpollThreadFunc(void* epollFd)
{
    auto* const own = static_cast<int32_t*>(epollFd);
    __atomic_store_n(&g_epollDbListenerThreadExit, 0, __ATOMIC_RELAXED);
    if (!IsEpoll(Look(own)) && DbListenerInitEpoll(own) != OK) {
        QRB_ERROR("[DEBUG]: failed to init epoll, thread will exit.\n");
        return nullptr;
    }
    const int32_t epoll = Look(own);
    QRB_ERROR("[DEBUG]: epoll DbListener thread start, epollFd=%d, exit=%d\n", epoll, ExitFlag());
    while (ExitFlag() == 0) {
        DispatchReady(epoll);
    }
    CloseEpoll(own);
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
