/*
 * The database listener: the one thread on which every callback for a change runs, and the session
 * on which the library subscribes to tables.
 *
 * Not started: no thread, no epoll instance, no session. The first registration starts the thread,
 * waits until it has made its epoll instance, and opens the session; later ones only subscribe. The
 * database hands each descriptor that it wants watched to DbListenerEpollCtrl; the thread waits for
 * them, 2 seconds at a time, and has the database client run the callbacks of each ready one.
 *
 * Stopping: the daemon sets the exit flag, which the thread looks at in every round:
 *
 *     __atomic_store_n(&g_epollDbListenerThreadExit, 1, __ATOMIC_RELEASE);
 *
 * or, in C++20,
 *
 *     std::atomic_ref(g_epollDbListenerThreadExit).store(1, std::memory_order_release);
 *
 * Within 2 seconds, or once what was ready when its round began has been handled, the thread closes
 * its epoll instance and ends. The library neither joins it nor starts another:
 * g_epollDbListenerThreadId keeps its value. A daemon that wants to start anew does it while nobody
 * registers: it closes the session, sets the flag, joins the thread, and sets the rest back.
 *
 *     OrmCloseSession(g_dbListenerSubSession);
 *     g_isDbListenerSubOpened = 0;
 *     __atomic_store_n(&g_epollDbListenerThreadExit, 1, __ATOMIC_RELEASE);
 *     if (g_epollDbListenerThreadId != 0) {
 *         pthread_join(g_epollDbListenerThreadId, NULL);
 *         g_epollDbListenerThreadId = 0;
 *     }
 *     g_regDbListenerInfo = NULL;
 */
#pragma once

#include <pthread.h>
#include <stdint.h>

#include <tarnd_platform/orm_subscription.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The listener's epoll instance; below 1 where there is none, as before the thread starts and after
   it has ended. Look at it with g_epollDbListenerCondLock held. */
extern int32_t g_epollDbListenerFd;

/* The listener thread; 0 where none was started. It keeps its value when the thread ends. */
extern pthread_t g_epollDbListenerThreadId;

/* Not 0: the listener thread is to end. The daemon sets it, the thread clears it when it starts,
   and both do so by atomic operations. */
extern uint8_t g_epollDbListenerThreadExit;

/* Guard the listener's start, in which the registering thread waits until the listener has tried to
   make its epoll instance; the lock guards that instance ever after. It may be taken while
   g_dbListenerRegLock is held, not the other way round, and is free while a callback runs. */
extern pthread_cond_t g_epollDbListenerCond;
extern pthread_mutex_t g_epollDbListenerCondLock;

/* Serialises registrations, and guards the listener thread's handle, the session, its flag and its
   control function. */
extern pthread_mutex_t g_dbListenerRegLock;

/* Whether the subscription session is open: 1 or 0. */
extern uint8_t g_isDbListenerSubOpened;

/* The library's one subscription session, where it is open. */
extern ORM_SESSION g_dbListenerSubSession;

/* What the database is to call with its descriptors: DbListenerEpollCtrl, null until the listener
   thread is started. */
extern ORM_FD_CONTROL g_regDbListenerInfo;

/*
 * Subscribes a callback to changes of a table; the first registration starts the listener.
 *
 * definition  what is subscribed to, a JSON text, as for OrmSubscribe. This text, and the names,
 *             are the caller's own again afterwards.
 * argument    kept beside the subscription; callbacks don't get it.
 *
 * 0, or the code of the database operation that failed. The connection name counts where this
 * opens the session. A failing subscription closes the session and so ends every subscription made
 * so far; the next registration opens a new one. Without a thread (it could not be created) the
 * session is opened without a control function, and the platform says how it serves that one.
 *
 * argument may be null; the others are not checked for it. Any thread but the listener: a callback
 * must not register, since a registration that fails closes the session, which waits for the
 * callback.
 */
uint32_t QrbDbListenerRegisterEvent(const char* subscriptionName, const char* connectionName,
                                    const char* definition, ORM_SUB_CALLBACK callback,
                                    void* argument, const char* ownerName);

/* The listener thread's entry, for pthread_create. epollFd points to the int32_t that receives the
   epoll instance, g_epollDbListenerFd; one that is there already, 1 or more, is used. Answers null,
   after the thread was told to end or could not make the instance. */
void* DbListenerEpollThreadFunc(void* epollFd);

/* Has the listener watch a descriptor for reading (operation 0), or no longer (any other). 0, or -1
   (logged) where epoll_ctl refuses it, as it does whenever the thread has ended. Any thread. */
int32_t DbListenerEpollCtrl(uint32_t descriptor, uint32_t operation);

#ifdef __cplusplus
}
#endif
