// Records database changes as a module of the daemon receives them.
#pragma once

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <standin/store.h>

#include "support/test_subscription.h"

namespace support {

inline standin::Row Phy(uint64_t index, uint64_t speed = 0)
{
    return standin::Row("if_phy").Set("if_index", index).Set("speed", speed);
}

inline standin::Row Base(uint64_t index, std::string_view name)
{
    return standin::Row("if_base").Set("if_index", index).Set("if_name", name);
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
class Events {
public:
    Events()
    {
        SubscribeTo(session_, "if_phy", [](auto message, auto) { Note("if_phy", message); });
        SubscribeTo(session_, "if_base", [](auto message, auto) { Note("if_base", message); });
        Take();
    }
    ~Events() { OrmCloseSession(session_); }
    Events(const Events&) = delete;
    Events& operator=(const Events&) = delete;

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
