#include "sources/ovsdb/ovsdb_replica.h"

#include <syslog.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "sources/mirror.h"

namespace sources::ovsdb {
namespace {

using standin::Key;
using standin::Row;
using standin::Table;
using standin::Transaction;

void Report(const Table& table, const Json& wire, const std::string& reason)
{
    syslog(LOG_ERR, "%s: %s: not taken over\n", RowName(table, wire).c_str(), reason.c_str());
}

// The tables by their names on the servers.
template <typename OnRow>
void ForEachRowIn(const Json& tables, const OnRow& onRow)
{
    for (const auto& [name, rows] : tables.items()) {
        const Table* table = FindTable(name);
        if (table == nullptr) {
            throw std::runtime_error("no table was asked for that is called " + name);
        }
        for (const auto& [identifier, update] : rows.items()) {
            onRow(*table, identifier, update);
        }
    }
}

// What a transaction does to the row with one key.
struct KeyTransition {
    const Row* before = nullptr;
    const Row* after = nullptr;
    int64_t place = noPlace;
};

// By table and primary key, so that all boards go through them in one order. A row that is deleted
// and inserted again under its key is one that changed.
class KeyTransitions {
public:
    void From(const Row& row) { TransitionOf(row).before = &row; }
    // False where another row is to have this key.
    bool To(const Row& row, int64_t place)
    {
        KeyTransition& transition = TransitionOf(row);
        const bool isFree = transition.after == nullptr;
        transition.after = &row;
        transition.place = place;
        return isFree;
    }
    Transaction AsTransaction() const;

private:
    KeyTransition& TransitionOf(const Row& row)
    {
        return transitions_[{&row.Description(), PrimaryKey(row)}];
    }

    std::map<std::pair<const Table*, std::string_view>, KeyTransition> transitions_;
};

Transaction KeyTransitions::AsTransaction() const
{
    Transaction transaction;
    std::vector<const KeyTransition*> inserts;
    for (const auto& [key, transition] : transitions_) {
        if (transition.before != nullptr && transition.after == nullptr) {
            transaction.Delete(*transition.before);
        }
        if (transition.before == nullptr && transition.after != nullptr) {
            inserts.push_back(&transition);
        }
    }
    for (const auto& [key, transition] : transitions_) {
        if (transition.before != nullptr && transition.after != nullptr &&
            *transition.before != *transition.after) {
            transaction.Update(*transition.after);
        }
    }
    std::ranges::stable_sort(inserts, {}, &KeyTransition::place);
    for (const KeyTransition* transition : inserts) {
        transaction.Insert(*transition->after);
    }
    return transaction;
}

// The keys that rows have taken.
class TakenKeys {
public:
    // Takes all keys of the row; false, and nothing is taken, where another row has one.
    bool Take(const Row& row)
    {
        const auto keys = row.Description().keys;
        const auto isTaken = [&](const Key& key) {
            return taken_.contains({&key, KeyBytes(row, key)});
        };
        if (std::ranges::any_of(keys, isTaken)) {
            return false;
        }
        for (const Key& key : keys) {
            taken_.insert({&key, KeyBytes(row, key)});
        }
        return true;
    }

private:
    std::set<std::pair<const Key*, std::string_view>> taken_;
};

}  // namespace

void Replica::TakeContents(const Json& tables)
{
    Rows rows;
    ForEachRowIn(
        tables, [&](const Table& table, const std::string& identifier, const Json& update) {
            const auto before = held_.find(identifier);
            rows.emplace(identifier, Taken(table, update.at("initial"),
                                           before == held_.end() ? nullptr : &before->second));
        });
    held_ = std::move(rows);
    MirrorAll();
}

void Replica::TakeChanges(const Json& tables)
{
    RowChanges changes;
    ForEachRowIn(tables,
                 [&](const Table& table, const std::string& identifier, const Json& update) {
                     changes.push_back(ChangeOf(table, identifier, update));
                 });
    const bool carriedOut = CarryOut(changes);
    for (RowChange& change : changes) {
        if (change.after) {
            held_.insert_or_assign(std::move(change.identifier), std::move(*change.after));
        } else {
            held_.erase(change.identifier);
        }
    }
    if (!carriedOut) {
        MirrorAll();
    }
}

Replica::RowChange Replica::ChangeOf(const Table& table, const std::string& identifier,
                                     const Json& update)
{
    if (update.contains("insert")) {
        return {identifier, Taken(table, update["insert"], nullptr)};
    }
    const auto known = held_.find(identifier);
    if (known == held_.end()) {
        throw std::runtime_error("a row has changed that was never there");
    }
    if (update.contains("delete")) {
        return {identifier, std::nullopt};
    }
    const Held& before = known->second;
    Json wire = before.broken.is_null() ? RowToWire(*before.row) : before.broken;
    Modify(table, wire, update.at("modify"));
    RowChange change{identifier, Taken(table, wire, &before)};
    if (!update["modify"].contains(place)) {
        change.after->place = before.place;
    }
    return change;
}

Replica::Held Replica::Taken(const Table& table, const Json& wire, const Held* before)
{
    Held held{.table = &table, .row = std::nullopt, .broken = nullptr, .place = PlaceOf(wire)};
    if (held.place != noPlace && held.place > lastPlace_) {
        lastPlace_ = held.place;
    }
    try {
        held.row = RowFromWire(table, wire);
    } catch (const standin::Error& error) {
        Report(table, wire, error.what());
        held.broken = wire;
        if (before != nullptr) {
            held.row = before->row;
        }
    }
    return held;
}

// The common case, by as many steps as there are changes. False where keys stand in the way of
// each other; then nothing was done.
bool Replica::CarryOut(const RowChanges& changes) const
{
    KeyTransitions transitions;
    bool allFree = !someStandAside_;
    for (const RowChange& change : changes) {
        const auto before = held_.find(change.identifier);
        if (before != held_.end() && before->second.row) {
            transitions.From(*before->second.row);
        }
        if (change.after && change.after->row) {
            allFree &= transitions.To(*change.after->row, change.after->place);
        }
    }
    if (!allFree) {
        return false;
    }
    try {
        transitions.AsTransaction().Commit();
    } catch (const standin::Error&) {
        return false;
    }
    return true;
}

// Every row anew, in the order of their places. Of rows that have one key the first stands.
void Replica::MirrorAll()
{
    std::vector<Held*> all;
    for (auto& [identifier, held] : held_) {
        if (held.row) {
            all.push_back(&held);
        }
    }
    std::ranges::sort(all, {}, [](const Held* held) {
        return std::tuple(held->table, held->place, PrimaryKey(*held->row));
    });
    TakenKeys keys;
    std::map<const Table*, std::vector<Row>> wanted;
    someStandAside_ = false;
    for (Held* held : all) {
        const bool stands = keys.Take(*held->row);
        if (stands) {
            wanted[held->table].push_back(*held->row);
        } else if (!held->standsAside) {
            Report(*held->table, RowToWire(*held->row), "another row has its key");
        }
        held->standsAside = !stands;
        someStandAside_ |= !stands;
    }
    Transaction transaction;
    for (const Table& table : standin::Tables()) {
        MirrorTable(transaction, table, wanted[&table]);
    }
    transaction.Commit();
}

}  // namespace sources::ovsdb
