// Subscriptions of a test's own.
#pragma once

#include <string>

#include <tarnd_platform/orm_subscription.h>

namespace support {

// Opens a session for subscriptions; returns 0 on failure.
inline ORM_SESSION OpenSubscriptions(ORM_FD_CONTROL control)
{
    ORM_SESSION_PARAM param = 0;
    ORM_SESSION session = 0;
    OrmCreateSessionParam("channel:", "osc", &param);
    OrmOpenSubSession(param, control, &session);
    OrmDestroySessionParam(param);
    return session;
}

// Subscribes to every kind of change of a table.
inline uint32_t SubscribeTo(ORM_SESSION session, const std::string& table,
                            ORM_SUB_CALLBACK callback)
{
    const std::string definition =
        R"({"events":[{"type":"insert"},{"type":"delete"},{"type":"update"},{"type":"replace"}],)"
        R"("label_name":")" +
        table + R"("})";
    return OrmSubscribe(session, "test", definition.c_str(), callback, nullptr, "test");
}

}  // namespace support
