#include "sources/ovsdb/ovsdb_write.h"

#include <utility>

#include "sources/mirror.h"
#include "sources/ovsdb/ovsdb_row.h"

namespace sources::ovsdb {
namespace {

using standin::Row;

// The operation that checks whether the row of an update or delete exists.
constexpr const char* WAIT = "wait";

Json IdCondition(const Json& id)
{
    return Json::array({Json::array({"_uuid", "==", id})});
}

void CheckResult(const Json& operation, const Json& result)
{
    RequireObject(result, "the result of an operation");
    const std::string kind = operation["op"];
    if (kind == "insert") {
        const Json& id = Member(result, "uuid", "the result of an insert");
        StringOf(Element(id, 1, "the result of an insert"), "the result of an insert");
    } else if (kind != WAIT) {
        IntegerOf(Member(result, "count", "the result of a write"), 1, 1, "the result of a write");
    }
}

}  // namespace

Operations::Operations(std::span<const RowWrite> writes, Replica& replica) : replica_(replica)
{
    using enum WriteKind;
    for (const auto& [kind, row] : writes) {
        if (kind == Insert || (kind == Replace && !StateOf(row).isPresent)) {
            this->Insert(row);
        } else if (kind == Delete) {
            Change(row, {{"op", "delete"}});
            StateOf(row) = {false, std::nullopt};
        } else {
            Change(row, {{"op", "update"}, {"row", RowToWire(row)}});
        }
    }
}

Operations::KeyState& Operations::StateOf(const Row& row)
{
    const auto [state, isNew] = states_.try_emplace(
        RowKey{&row.Description(), std::string(PrimaryKey(row))}, KeyState{false, std::nullopt});
    if (isNew) {
        if (const auto id = replica_.Index().Find(row)) {
            state->second = {true, Json::array({"uuid", id->Text()})};
        }
    }
    return state->second;
}

void Operations::Insert(const Row& row)
{
    const std::string name = "row" + std::to_string(rows_.size());
    Json columns = RowToWire(row);
    columns[PLACE_COLUMN] = replica_.NextPlace();
    StateOf(row) = {true, Json::array({"named-uuid", name})};
    Add(row, {{"op", "insert"}, {"uuid-name", name}, {"row", std::move(columns)}});
}

// An operation that matches no row succeeds on the servers. A wait operation with timeout 0 before
// it therefore checks that the row exists.
void Operations::Change(const Row& row, Json operation)
{
    const KeyState& state = StateOf(row);
    operation["where"] = state.id ? IdCondition(*state.id) : KeyCondition(row);
    Add(row, {{"op", WAIT},
              {"timeout", 0},
              {"where", operation["where"]},
              {"columns", Json::array({PLACE_COLUMN})},
              {"until", "!="},
              {"rows", Json::array()}});
    Add(row, std::move(operation));
}

void Operations::Add(const Row& row, Json operation)
{
    operation["table"] = ColumnsOf(row.Description()).name;
    operations_.push_back(std::move(operation));
    rows_.push_back(&row);
}

std::string Operations::Parameters() const
{
    try {
        return operations_.dump();
    } catch (const Json::exception&) {
        throw standin::Error("a text is not in UTF-8");
    }
}

// There is one result for each operation up to the first that fails. If the transaction fails at
// commit, there is one more result with the error.
void Operations::Check(const Json& results) const
{
    if (!results.is_array()) {
        throw ProtocolError("the reply to a transaction is not an array of results");
    }
    for (size_t i = 0; i < results.size(); ++i) {
        const std::string reason = ReasonIn(results[i]);
        if (reason.empty()) {
            continue;
        }
        if (i >= rows_.size()) {
            throw standin::Error(reason);
        }
        const bool isAbsent =
            operations_[i + 1]["op"] == WAIT && results[i].at("error") == "timed out";
        throw standin::Error(RowName(*rows_[i], rows_[i]->Description().keys.front()) + ": " +
                             (isAbsent ? "there is no such row" : reason));
    }
    if (results.size() != rows_.size()) {
        throw ProtocolError("the reply to a transaction of " + std::to_string(rows_.size()) +
                            " operations has " + std::to_string(results.size()) + " results");
    }
    for (size_t i = 0; i < results.size(); ++i) {
        CheckResult(operations_[i + 1], results[i]);
    }
}

}  // namespace sources::ovsdb
