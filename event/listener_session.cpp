// The library's one subscription session: opened by the first registration, used by all.
#include <tarnd_qrb/listener.h>

#include "db/access.h"
#include "event/listener_thread.h"

using namespace qrb;

pthread_mutex_t g_dbListenerRegLock = PTHREAD_MUTEX_INITIALIZER;
uint8_t g_isDbListenerSubOpened = 0;
ORM_SESSION g_dbListenerSubSession = 0;

namespace {

uint32_t OpenBy(const char* function, ORM_SESSION_PARAM param, const char* connectionName)
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
    }
    return ret;
}

uint32_t Open(const char* function, const char* connectionName)
{
    ORM_SESSION_PARAM param = 0;
    const uint32_t created = OrmCreateSessionParam("channel:", "osc", &param);
    const uint32_t ret = created == OK ? OpenBy(function, param, connectionName) : created;
    OrmDestroySessionParam(param);
    if (created != OK) {
        QRB_ERROR_AT(function, "[DEBUG]: OrmCreateSessionParam fail, ret=%d\n", created);
    }
    g_isDbListenerSubOpened = ret == OK ? 1 : 0;
    return ret;
}

void Close()
{
    OrmCloseSession(g_dbListenerSubSession);
    g_dbListenerSubSession = 0;
    g_isDbListenerSubOpened = 0;
}

}  // namespace

uint32_t QrbDbListenerRegisterEvent(const char* subscriptionName, const char* connectionName,
                                    const char* definition, ORM_SUB_CALLBACK callback,
                                    void* argument, const char* ownerName)
{
    pthread_mutex_lock(&g_dbListenerRegLock);
    QRB_INFO("[DEBUG]: event listener start thread=%u fd=%d\n",
             static_cast<uint32_t>(g_epollDbListenerThreadId), ListenerEpollFd());
    uint32_t ret = g_isDbListenerSubOpened != 0 ? OK : Open(__func__, connectionName);
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
