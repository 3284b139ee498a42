#include "store/commit.h"

#include <map>
#include <mutex>
#include <string>

#include "notify/announcement.h"
#include "store/gate.h"
#include "store/limbo.h"
#include "tarnd_platform/orm_subscription.h"

namespace standin {

namespace {

std::mutex writer;

// For a person: "if_index 5" or "destAddr 10.0.0.0, prefixLen 8".
std::string Described(const Row& row, const Field& field)
{
    std::string text(field.name);
    if (field.kind == Kind::Text) {
        return text + " \"" + std::string(row.Text(field.name)) + '"';
    }
    const uint64_t number = row.Number(field.name);
    if (field.kind == Kind::Number) {
        return text + " " + std::to_string(number);
    }
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += (shift == 24 ? " " : ".") + std::to_string(number >> shift & 0xFF);
    }
    return text;
}

[[noreturn]] void Refuse(const PreparedWrite& write, const Key& key, std::string_view reason)
{
    const Table& table = write.store->Description();
    const Row row = Detached(table, *write.row);
    std::string text(table.name);
    for (const Field* member : key.members) {
        text += (member == key.members.front() ? ": " : ", ") + Described(row, *member);
    }
    throw Error(text + ": " + std::string(reason));
}

// Finds out what a write changes, and refuses it where it can't be.
Change Examine(const PreparedWrite& write)
{
    const StoredRow* present = write.store->FindLike(*write.row);
    const Key& primary = write.store->Description().keys.front();
    if (write.event == ORM_EVENT_INSERT && present != nullptr) {
        Refuse(write, primary, "there is such a row already");
    }
    if ((write.event == ORM_EVENT_UPDATE || write.event == ORM_EVENT_DELETE) &&
        present == nullptr) {
        Refuse(write, primary, "there is no such row");
    }
    if (write.event == ORM_EVENT_DELETE) {
        return {write.store, write.event, present, nullptr};
    }
    if (const Key* taken = write.store->TakenKey(*write.row, present)) {
        Refuse(write, *taken, "another row has this " + std::string(taken->name));
    }
    return {write.store, write.event, present, write.row.get()};
}

void Apply(const Change& change)
{
    if (change.before == nullptr) {
        change.store->Insert(*change.after);
    } else if (change.after == nullptr) {
        change.store->Remove(*change.before);
    } else {
        change.store->Replace(*change.before, *change.after);
    }
}

void Undo(const Change& change)
{
    if (change.before == nullptr) {
        change.store->Remove(*change.after);
    } else if (change.after == nullptr) {
        change.store->Restore(*change.before);
    } else {
        change.store->Replace(*change.after, *change.before);
    }
}

using Rooms = std::vector<std::pair<TableStore*, TableStore::Room>>;

// Whatever takes long is done here, while readers go on.
Rooms MakeRooms(const std::vector<PreparedWrite>& writes)
{
    std::map<TableStore*, size_t> inserts;
    for (const PreparedWrite& write : writes) {
        const bool mayInsert =
            write.event == ORM_EVENT_INSERT ||
            (write.event == ORM_EVENT_REPLACE && write.store->FindLike(*write.row) == nullptr);
        inserts[write.store] += mayInsert ? 1 : 0;
    }
    Rooms rooms;
    for (const auto& [store, count] : inserts) {
        rooms.emplace_back(store, store->MakeRoom(count));
    }
    return rooms;
}

struct Outcome {
    std::vector<Change> changes;
    Announcement announcement;
};

// Readers are kept out from here to the end.
Outcome CarryOut(const std::vector<PreparedWrite>& writes, Rooms& rooms)
{
    Outcome outcome;
    std::vector<Change>& changes = outcome.changes;
    changes.reserve(writes.size());
    const Alone alone;
    for (auto& [store, room] : rooms) {
        store->Exchange(room);
    }
    try {
        for (const PreparedWrite& write : writes) {
            const Change change = Examine(write);
            Apply(change);
            changes.push_back(change);
        }
        outcome.announcement = Announcement(changes);
    } catch (...) {
        for (; !changes.empty(); changes.pop_back()) {
            Undo(changes.back());
        }
        throw;
    }
    return outcome;
}

}  // namespace

void Commit(std::vector<PreparedWrite> writes)
{
    const std::lock_guard lock(writer);
    Rooms rooms = MakeRooms(writes);
    auto [changes, announcement] = CarryOut(writes, rooms);
    for (PreparedWrite& write : writes) {
        if (write.event != ORM_EVENT_DELETE) {
            static_cast<void>(write.row.release());  // the table's now
        }
    }
    announcement.Post();
    for (const Change& change : changes) {
        if (change.before != nullptr) {
            Release(change.before);
        }
    }
    SweepLimbo();
}

void EmptyTables()
{
    const std::lock_guard lock(writer);
    std::vector<RowOrder> taken;
    {
        const Alone alone;
        for (const Table& table : Tables()) {
            if (StoreOf(table).Order().RowCount() > 0) {
                taken.push_back(StoreOf(table).TakeAll());
            }
        }
    }
    for (const RowOrder& order : taken) {
        for (const RowOrder::Slot& slot : order.Slots()) {
            if (slot.row != nullptr) {
                Release(slot.row);
            }
        }
    }
    SweepLimbo();
}

}  // namespace standin
