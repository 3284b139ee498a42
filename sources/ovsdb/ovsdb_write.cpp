#include "sources/ovsdb/ovsdb_write.h"

#include <map>
#include <utility>

#include "sources/mirror.h"
#include "sources/ovsdb/ovsdb_row.h"

namespace sources::ovsdb {
namespace {

using standin::Row;
using standin::Table;

// Which rows there will be after the writes so far, as far as this board knows.
class Presence {
public:
    bool Of(const Row& row)
    {
        const auto [known, isNew] = known_.try_emplace(KeyOf(row), false);
        if (isNew) {
            known->second = standin::Find(row).has_value();
        }
        return known->second;
    }
    void Note(const Row& row, bool present) { known_[KeyOf(row)] = present; }

private:
    using Key = std::pair<const Table*, std::string>;

    static Key KeyOf(const Row& row) { return {&row.Description(), std::string(PrimaryKey(row))}; }

    std::map<Key, bool> known_;
};

}  // namespace

std::string ReasonIn(const Json& answer)
{
    if (!answer.is_object() || !answer.contains("error") || answer["error"].is_null()) {
        return {};
    }
    const Json& error = answer["error"];
    if (error.is_object()) {
        return ReasonIn(error);
    }
    const Json& reason = answer.contains("details") ? answer["details"] : error;
    return reason.is_string() ? reason.get<std::string>() : reason.dump();
}

Operations::Operations(std::span<const RowWrite> writes, const std::function<int64_t()>& nextPlace)
{
    using enum WriteKind;
    Presence presence;
    for (const auto& [kind, row] : writes) {
        Json wire = RowToWire(row);
        if (kind == Insert || (kind == Replace && !presence.Of(row))) {
            wire[place] = nextPlace();
            Add(row, {{"op", "insert"}, {"row", std::move(wire)}});
        } else if (kind == Delete) {
            AddWhereItStands(row, {{"op", "delete"}});
        } else {
            AddWhereItStands(row, {{"op", "update"}, {"row", std::move(wire)}});
        }
        presence.Note(row, kind != Delete);
    }
}

void Operations::Add(const Row& row, Json operation)
{
    operation["table"] = ColumnsOf(row.Description()).name;
    operations_.push_back(std::move(operation));
    rows_.push_back(&row);
}

// The servers find nothing wrong with an operation on no row, so they are to wait for the row,
// which they don't do for longer than no time at all.
void Operations::AddWhereItStands(const Row& row, Json operation)
{
    operation["where"] = KeyCondition(row.Description(), RowToWire(row));
    Add(row, {{"op", "wait"},
              {"timeout", 0},
              {"where", operation["where"]},
              {"columns", Json::array({place})},
              {"until", "!="},
              {"rows", Json::array()}});
    Add(row, std::move(operation));
}

std::string Operations::Parameters() const
{
    try {
        return operations_.dump();
    } catch (const Json::exception&) {
        throw standin::Error("a text is not in UTF-8");
    }
}

// The servers answer each operation, up to the first that fails, and behind them the transaction as
// a whole where it fails only then.
void Operations::Check(const Json& results) const
{
    for (size_t i = 0; i < results.size(); ++i) {
        const std::string reason = ReasonIn(results[i]);
        if (reason.empty()) {
            continue;
        }
        if (i >= rows_.size()) {
            throw standin::Error(reason);
        }
        const bool isAbsent =
            operations_[i + 1]["op"] == "wait" && results[i]["error"] == "timed out";
        throw standin::Error(RowName(rows_[i]->Description(), RowToWire(*rows_[i])) + ": " +
                             (isAbsent ? "there is no such row" : reason));
    }
}

}  // namespace sources::ovsdb
