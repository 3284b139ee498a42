// The library's one subscription session: the first registration opens it, all share it.
#include "event/listener_session.h"

#include <tarnd_qrb/listener.h>

#include "db/access.h"
#include "event/listener_thread.h"

using namespace qrb;

pthread_mutex_t g_dbListenerRegLock = PTHREAD_MUTEX_INITIALIZER;
uint8_t g_isDbListenerSubOpened = 0;
ORM_SESSION g_dbListenerSubSession = 0;

namespace {

uint64_t sessionsOpened = 0;  // guarded by g_dbListenerRegLock

// The functions below are called with g_dbListenerRegLock held.

uint32_t OpenWith(const char* function, ORM_SESSION_PARAM param, const char* connectionName)
{
    uint32_t ret = OrmSessionParamSetConnName(param, connectionName);
    if (ret != OK) {
        QRB_INFO_AT(function, "[DEBUG]: OrmSessionParamSetConnName fail, ret=%d\n", ret);
        return ret;
    }
    if (g_epollDbListenerThreadId == 0) {
        DbListenerCreateEpollThread();
    }
    ret = OrmOpenSubSession(param, g_regDbListenerInfo, &g_dbListenerSubSession);
    if (ret != OK) {
        QRB_INFO_AT(function, "[DEBUG]: OrmOpenSubSession fail, ret=%d\n", ret);
        return ret;
    }
    g_isDbListenerSubOpened = 1;
    ++sessionsOpened;
    return OK;
}

uint32_t Open(const char* function, const char* connectionName)
{
    ORM_SESSION_PARAM param = 0;
    uint32_t ret = OrmCreateSessionParam("channel:", "osc", &param);
    if (ret != OK) {
        OrmDestroySessionParam(param);
        QRB_ERROR_AT(function, "[DEBUG]: OrmCreateSessionParam fail, ret=%d\n", ret);
        return ret;
    }
    ret = OpenWith(function, param, connectionName);
    OrmDestroySessionParam(param);
    return ret;
}

void Close()
{
    OrmCloseSession(g_dbListenerSubSession);
    g_dbListenerSubSession = 0;
    g_isDbListenerSubOpened = 0;
}

}  // namespace

uint64_t qrb::OpenSessionNumber()
{
    pthread_mutex_lock(&g_dbListenerRegLock);
    const uint64_t number = g_isDbListenerSubOpened != 0 ? sessionsOpened : 0;
    pthread_mutex_unlock(&g_dbListenerRegLock);
    return number;
}

uint32_t QrbDbListenerRegisterEvent(const char* subscriptionName, const char* connectionName,
                                    const char* definition, ORM_SUB_CALLBACK callback,
                                    void* argument, const char* ownerName)
{
    pthread_mutex_lock(&g_dbListenerRegLock);
    QRB_INFO("[DEBUG]: event listener start thread=%u fd=%d\n",
             static_cast<uint32_t>(g_epollDbListenerThreadId), ListenerEpollFd());
    uint32_t ret = OK;
    if (g_isDbListenerSubOpened == 0) {
        ret = Open(__func__, connectionName);
    }
    if (ret == OK) {
        ret = OrmSubscribe(g_dbListenerSubSession, subscriptionName, definition, callback, argument,
                           ownerName);
        if (ret != OK) {
            Close();
            QRB_ERROR("[DEBUG]: OrmSubscribe fail, ret=%d\n", ret);
        }
    }
    pthread_mutex_unlock(&g_dbListenerRegLock);
    return ret;
}
