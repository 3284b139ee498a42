// Subscriptions of a test's own, and database changes as a module of the daemon receives them.
#pragma once

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarnd_platform/orm_subscription.h>

#include "test_rows.h"

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

inline uint64_t Speed(uint64_t index)
{
    const auto row = standin::Find(Phy(index));
    return row ? row->Number("speed") : UINT64_MAX;
}

struct RecordedChange {
    std::string table;
    uint32_t index;
    std::optional<uint32_t> before;  // of field 1: a speed
    std::optional<uint32_t> after;

    friend bool operator==(const RecordedChange&, const RecordedChange&) = default;
};

// Every change of two tables, as a module of the daemon receives it.
class RecordedChanges {
public:
    RecordedChanges()
    {
        SubscribeTo(session_, "if_phy", [](auto message, auto) { Note("if_phy", message); });
        SubscribeTo(session_, "if_base", [](auto message, auto) { Note("if_base", message); });
        Take();
    }
    ~RecordedChanges() { OrmCloseSession(session_); }
    RecordedChanges(const RecordedChanges&) = delete;
    RecordedChanges& operator=(const RecordedChanges&) = delete;

    static std::vector<RecordedChange> Take()
    {
        const std::lock_guard lock(mutex);
        return std::exchange(changes, {});
    }
    static size_t Count(std::string_view table)
    {
        const std::lock_guard lock(mutex);
        return static_cast<size_t>(std::ranges::count(changes, table, &RecordedChange::table));
    }

private:
    static std::optional<uint32_t> Field(ORM_MESSAGE message, uint32_t object, uint32_t field)
    {
        uint32_t value = 0;
        if (OrmSubExtractData(message, object, 0) != 0) {
            return std::nullopt;
        }
        OrmGetFieldById(message, field, &value, sizeof value);
        return value;
    }

    static void Note(const char* table, ORM_MESSAGE message)
    {
        for (uint8_t end = 0; OrmSubFetchNext(message, &end) == 0 && end == 0;) {
            const auto gone = Field(message, ORM_OBJECT_OLD, 0);
            const auto here = Field(message, ORM_OBJECT_NEW, 0);
            const std::lock_guard lock(mutex);
            changes.push_back({table, here.value_or(gone.value_or(0)),
                               Field(message, ORM_OBJECT_OLD, 1),
                               Field(message, ORM_OBJECT_NEW, 1)});
        }
    }

    static inline std::mutex mutex;
    static inline std::vector<RecordedChange> changes;
    const ORM_SESSION session_ = OpenSubscriptions(nullptr);
};

}  // namespace support
