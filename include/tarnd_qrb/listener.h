/*
 * The database listener: the one thread on which every callback for a change runs, and the session
 * on which the library subscribes to tables.
 *
 * Not started: no thread, no epoll instance, no session. The first registration starts the thread,
 * waits until it has made its epoll instance, and opens the session; later ones only subscribe. The
 * database hands each descriptor that it wants watched to DbListenerEpollCtrl; the thread waits for
 * them, 2 seconds at a time, and has the database client run the callbacks of each ready one.
 *
 * Stopping: the daemon sets g_epollDbListenerThreadExit, which the thread looks at in every round,
 *
 *     __atomic_store_n(&g_epollDbListenerThreadExit, 1, __ATOMIC_RELEASE);              (C or C++)
 *     std::atomic_ref(g_epollDbListenerThreadExit).store(1, std::memory_order_release);    (C++20)
 *
 * and within 2 seconds, or when the callback that runs has returned, the thread closes its epoll
 * instance and ends. Nobody joins it but the daemon, if it likes, by g_epollDbListenerThreadId,
 * which keeps its value, so that no later registration starts another thread. A daemon that wants
 * one closes the session and joins the thread first, then sets back what says otherwise:
 *
 *     OrmCloseSession(g_dbListenerSubSession);
 *     g_isDbListenerSubOpened = 0;
 *     (the exit flag, as above)
 *     pthread_join(g_epollDbListenerThreadId, NULL);
 *     g_epollDbListenerThreadId = 0;
 */
#ifndef TARND_QRB_LISTENER_H
#define TARND_QRB_LISTENER_H

#include <pthread.h>
#include <stdint.h>
#include <tarnd_platform/orm_subscription.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The thread. Its epoll instance is -1 before it starts and again once it has ended; below 1 means
   none. Look at it with g_epollDbListenerCondLock held. */
extern int32_t   g_epollDbListenerFd;
extern pthread_t g_epollDbListenerThreadId;   /* 0: never started */
extern uint8_t   g_epollDbListenerThreadExit; /* not 0: end. Only by atomic operations, as above;
                                                 the thread clears it when it starts */

/* Guard the start: the registering thread waits until the listener has tried to make its epoll
   instance. Locked, if at all, after g_dbListenerRegLock, and never while a callback runs. */
extern pthread_cond_t  g_epollDbListenerCond;
extern pthread_mutex_t g_epollDbListenerCondLock;

/* The session. g_dbListenerRegLock guards these and serialises registrations. */
extern pthread_mutex_t g_dbListenerRegLock;
extern uint8_t         g_isDbListenerSubOpened;
extern ORM_SESSION     g_dbListenerSubSession;
extern ORM_FD_CONTROL  g_regDbListenerInfo; /* DbListenerEpollCtrl, once a thread was started */

/*
 * Subscribes callback to what the definition, a JSON text, says: see OrmSubscribe. Names and texts
 * are the caller's own again afterwards; argument is kept beside the subscription.
 *
 * 0, or the code of the database operation that failed. The connection name counts where this
 * opens the session. A failing subscription closes the session and so ends every subscription made
 * so far; the next registration opens a new one. Without a thread (it could not be created) the
 * session is opened without a control function, and the platform says how it serves that one.
 *
 * Any thread but the listener: a callback must not register, since a registration that fails
 * closes the session, which waits for the callback.
 */
uint32_t QrbDbListenerRegisterEvent(const char* subscriptionName, const char* connectionName,
                                    const char* definition, ORM_SUB_CALLBACK callback,
                                    void* argument, const char* ownerName);

/* The thread's entry, for pthread_create. epollFd points to the int32_t that receives the epoll
   instance, g_epollDbListenerFd; one that is there already, 1 or more, is used. Always null. */
void* DbListenerEpollThreadFunc(void* epollFd);

/* Has the listener watch a descriptor for reading (operation 0) or leave it alone (any other).
   What epoll_ctl answers: 0, or -1 and a log line, as for every call after the thread has ended.
   Any thread. */
int32_t DbListenerEpollCtrl(uint32_t descriptor, uint32_t operation);

#ifdef __cplusplus
}
#endif

#endif
