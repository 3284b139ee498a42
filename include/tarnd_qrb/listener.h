/**
 * @file
 * @brief The database listener thread and the subscription session.
 *
 * The first registration starts the listener thread, waits until the thread has created its epoll
 * instance, and opens the subscription session. Later registrations only add a subscription. The
 * database passes each descriptor to be watched to DbListenerEpollCtrl(). The thread waits for the
 * descriptors, at most 2 seconds at a time, and calls DbcHandleEvent() for each that is ready,
 * which runs the subscription's callback. All callbacks for changes therefore run on this thread,
 * one after another.
 *
 * dlclose() does not unload the library, since the thread may run its code.
 *
 * @par Stopping
 * The daemon sets the exit flag, which the thread reads in every round:
 * @code{.c}
 * __atomic_store_n(&g_epollDbListenerThreadExit, 1, __ATOMIC_RELEASE);
 * @endcode
 * or in C++20
 * @code{.cpp}
 * std::atomic_ref(g_epollDbListenerThreadExit).store(1, std::memory_order_release);
 * @endcode
 * Within 2 seconds, or after the callbacks of the descriptors that are ready, the thread closes its
 * epoll instance and ends. The library neither joins the thread nor starts another:
 * g_epollDbListenerThreadId keeps its value.
 * @par Restarting
 * While no registration is under way, the daemon closes the session, stops and joins the thread,
 * and resets the state. The next registration starts the listener again.
 * @code{.c}
 * OrmCloseSession(g_dbListenerSubSession);
 * g_isDbListenerSubOpened = 0;
 * __atomic_store_n(&g_epollDbListenerThreadExit, 1, __ATOMIC_RELEASE);
 * if (g_epollDbListenerThreadId != 0) {
 *     pthread_join(g_epollDbListenerThreadId, NULL);
 *     g_epollDbListenerThreadId = 0;
 * }
 * g_regDbListenerInfo = NULL;
 * @endcode
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * See each function. g_dbListenerRegLock serialises registrations; g_epollDbListenerCondLock guards
 * the epoll instance. The second may be locked while the first is held, not the other way round.
 * The second is not held while a callback runs.
 * @par Log
 * Priority 3, unless a function's description says otherwise. The thread logs its start and its end
 * at priority 3, too.
 * @par After fork
 * The thread does not exist in a child process: no callback runs there. See tarnd_qrb/database.h.
 */
#pragma once

#include <pthread.h>
#include <stdint.h>

#include <tarnd_platform/orm_subscription.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The listener's epoll instance; below 1 if there is none, as before the start and after the end of
 * the thread. Read under g_epollDbListenerCondLock.
 */
extern int32_t g_epollDbListenerFd;

/** The listener thread; 0 if it was not started. Keeps its value when the thread ends. */
extern pthread_t g_epollDbListenerThreadId;

/**
 * Exit flag of the listener thread: the thread ends if it is not 0. The daemon sets it, the thread
 * clears it when it starts; both use atomic operations.
 */
extern uint8_t g_epollDbListenerThreadExit;

/** Signals to the registering thread that the listener has created its epoll instance, or failed
 * to. */
extern pthread_cond_t g_epollDbListenerCond;

/** Guards the start of the listener and its epoll instance. */
extern pthread_mutex_t g_epollDbListenerCondLock;

/** Serialises registrations. Guards the thread's handle, the session, its flag and its control
 * function. */
extern pthread_mutex_t g_dbListenerRegLock;

/** 1 if the subscription session is open, else 0. */
extern uint8_t g_isDbListenerSubOpened;

/** The library's one subscription session, if it is open. */
extern ORM_SESSION g_dbListenerSubSession;

/** Control function of the session: null before the listener thread is started, then
 * DbListenerEpollCtrl(). */
extern ORM_FD_CONTROL g_regDbListenerInfo;

/**
 * Subscribes a callback to changes of a table. The first call starts the listener and opens the
 * session.
 *
 * If the thread cannot be created, the session is opened without a control function; how the
 * platform delivers changes then depends on the platform.
 *
 * @param[in] subscriptionName  name of the subscription
 * @param[in] connectionName    name of the connection; used by the call that opens the session
 * @param[in] definition        table and operations, a JSON text as for OrmSubscribe()
 * @param[in] callback          called on the listener thread for each delivery
 * @param[in] argument          kept with the subscription, not passed to callback; may be null
 * @param[in] ownerName         name of the owner
 *
 * @retval 0      the callback is subscribed
 * @retval other  code of the database operation that failed
 *
 * @par After a failure
 * If OrmSubscribe() failed, the session is closed, which ends every subscription made before; the
 * next call opens a new session. If an earlier step failed, no session is open. A started thread
 * continues.
 * @par Log
 * A failing OrmCreateSessionParam() or OrmSubscribe(); a thread or an epoll instance that cannot be
 * created, under the names DbListenerCreateEpollThread and DbListenerInitEpoll. A failing
 * OrmSessionParamSetConnName() or OrmOpenSubSession() is not logged.
 * @par Threads
 * Any thread except the listener thread. A callback must not call it: a failure closes the session,
 * and that waits for the callback.
 * @par Source
 * The table in definition.
 */
uint32_t QrbDbListenerRegisterEvent(const char* subscriptionName, const char* connectionName,
                                    const char* definition, ORM_SUB_CALLBACK callback,
                                    void* argument, const char* ownerName);

/**
 * Runs the listener until the exit flag is set. The start function of the listener thread, for
 * pthread_create().
 *
 * @param[in,out] epollFd  address of an int32_t, g_epollDbListenerFd: an epoll instance of 1 or
 * more is used; otherwise the thread creates one and stores it there
 *
 * @return null
 *
 * @par After a failure
 * If the epoll instance cannot be created, the function returns at once. A failing epoll_wait() is
 * ignored.
 * @par Log
 * The start and the end; an epoll instance that cannot be created.
 * @par Source
 * No database table.
 */
void* DbListenerEpollThreadFunc(void* epollFd);

/**
 * Adds a descriptor to the listener's epoll instance, or removes it. An ORM_FD_CONTROL.
 *
 * @param[in] descriptor  descriptor to watch for reading
 * @param[in] operation   0: add; other: remove
 *
 * @retval 0   done
 * @retval -1  epoll_ctl() failed, as it does if the thread has ended
 *
 * @par Log
 * The failure, with errno.
 * @par Threads
 * Any thread.
 * @par Source
 * No database table.
 */
int32_t DbListenerEpollCtrl(uint32_t descriptor, uint32_t operation);

#ifdef __cplusplus
}
#endif
