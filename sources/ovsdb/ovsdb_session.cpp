#include "sources/ovsdb/ovsdb_session.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace sources::ovsdb {
namespace {

// Ids of the two monitor requests, and of the monitors themselves.
constexpr const char* SERVER_MONITOR = "server";
constexpr const char* CONTENTS_MONITOR = "contents";

// Number of transactions that a server keeps at least, unless it was restarted.
constexpr int64_t REMEMBERED = 100;

Json ServerRequest()
{
    const Json columns = {"name", "model", "connected", "leader", "cid", "index"};
    const Json where = Json::array({Json::array({"name", "==", DATABASE_NAME})});
    return Json::array({"_Server",
                        SERVER_MONITOR,
                        {{"Database", Json::array({{{"columns", columns}, {"where", where}}})}}});
}

Json ContentsRequest(const std::string& since)
{
    Json tables;
    for (const standin::Table& table : standin::Tables()) {
        Json columns = Json::array({PLACE_COLUMN});
        for (const SchemaColumn& column : ColumnsOf(table).columns) {
            columns.push_back(column.name);
        }
        if (!table.lists.empty()) {
            columns.push_back(LISTS_COLUMN);
        }
        tables[ColumnsOf(table).name] = Json::array({{{"columns", columns}}});
    }
    return Json::array({DATABASE_NAME, CONTENTS_MONITOR, tables, since});
}

bool BooleanOf(const Json& value, const std::string& what)
{
    if (!value.is_boolean()) {
        throw ProtocolError(what + ": " + Shown(value) + " is not a boolean");
    }
    return value.get<bool>();
}

// The id of a transaction.
const std::string& TransactionOf(const Json& value)
{
    const std::string& text = StringOf(value, "a transaction's id");
    if (!RowId::Parse(text)) {
        throw ProtocolError("a transaction's id: " + Shown(value) + " is not a UUID");
    }
    return text;
}

// An optional value is a set of at most one element; null for an empty one.
Json OptionalOf(const Json& value)
{
    const bool isEmptySet = value.is_array() && value.size() == 2 && value[1].is_array();
    return isEmptySet && value[1].empty() ? Json() : value;
}

// Columns that are missing keep their values.
void TakeColumns(ServerState& state, const Json& columns)
{
    for (const auto& [name, value] : columns.items()) {
        const std::string what = "the server's " + name;
        const Json optional = OptionalOf(value);
        if (name == "model") {
            state.isClustered = StringOf(value, what) == "clustered";
        } else if (name == "connected") {
            state.isConnected = BooleanOf(value, what);
        } else if (name == "leader") {
            state.isLeader = BooleanOf(value, what);
        } else if (name == "cid") {
            state.cluster = optional.is_null() ? "" : StringOf(Element(optional, 1, what), what);
        } else if (name == "index") {
            state.index =
                optional.is_null() ? 0 : IntegerOf(value, 0, INT64_MAX - REMEMBERED, what);
        }
    }
}

}  // namespace

ServerSession::ServerSession(const Server& server, const TlsContext& tls, const OvsdbLimits& limits,
                             Replica& replica, SyncPosition& position, bool onlyLeader)
    : limits_(limits),
      replica_(replica),
      position_(position),
      onlyLeader_(onlyLeader),
      connection_(server, tls, limits),
      loadDeadline_(Clock::now() + limits.connectTimeout + limits.requestTimeout)
{
    Call(SERVER_MONITOR, "monitor_cond", ServerRequest().dump());
}

ServerSession::~ServerSession()
{
    for (const auto& [id, outstanding] : outstanding_) {
        outstanding.request->outcome.set_value(
            "the connection was lost before the server replied: whether the transaction was "
            "committed is not known");
    }
}

Clock::time_point ServerSession::Due() const
{
    auto due = connection_.Due();
    if (!IsFollowing()) {
        due = std::min(due, loadDeadline_);
    }
    if (!outstanding_.empty()) {
        due = std::min(due, outstanding_.begin()->second.deadline);
    }
    return due;
}

void ServerSession::Advance()
{
    connection_.Advance([this](RpcMessage message) { Handle(std::move(message)); });
    CheckDeadlines();
}

void ServerSession::CheckDeadlines() const
{
    const auto now = Clock::now();
    if (!IsFollowing() && now >= loadDeadline_) {
        throw std::runtime_error("the server does not reply");
    }
    if (!outstanding_.empty() && now >= outstanding_.begin()->second.deadline) {
        throw std::runtime_error("the server does not reply to a transaction");
    }
}

void ServerSession::Send(const std::shared_ptr<Request>& request)
{
    const uint64_t id = ++lastRequest_;
    const std::string& parameters = request->parameters;
    const auto deadline = Clock::now() + limits_.requestTimeout + ExtraTime(parameters.size());
    outstanding_.emplace(id, Outstanding{request, deadline});
    Call(id, "transact", parameters);
}

void ServerSession::Call(const Json& id, const char* method, const std::string& parameters)
{
    connection_.Send(R"({"id":)" + id.dump() + R"(,"method":")" + method + R"(","params":)" +
                     parameters + "}");
}

void ServerSession::Handle(RpcMessage message)
{
    if (message.method.empty()) {
        HandleReply(std::move(message));
    } else {
        HandleUpdate(std::move(message));
    }
}

void ServerSession::HandleUpdate(RpcMessage message)
{
    const Json& monitor = Element(message.params, 0, message.method);
    if (message.method == "update2" && monitor == SERVER_MONITOR) {
        HandleServerState(Element(message.params, 1, message.method));
    } else if (message.method == "update3" && monitor == CONTENTS_MONITOR && IsFollowing()) {
        const std::string upTo = TransactionOf(Element(message.params, 1, "update3"));
        Element(message.params, 2, "update3");
        const auto updates = ParseChanges(message.params[2]);
        position_.Take(upTo, [&] { replica_.TakeChanges(updates); });
    } else {
        throw ProtocolError("the server sends an unexpected " + message.method.substr(0, 80));
    }
}

void ServerSession::HandleReply(RpcMessage message)
{
    if (message.id.is_number_unsigned()) {
        HandleResults(message);
        return;
    }
    if (!message.refusal.empty()) {
        throw ServerRefusal(message.refusal);
    }
    if (message.id == SERVER_MONITOR && stage_ == Stage::Checking) {
        stage_ = Stage::Loading;
        HandleServerState(message.result);
        loadDeadline_ = Clock::now() + limits_.requestTimeout;
        Call(CONTENTS_MONITOR, "monitor_cond_since", ContentsRequest(position_.transaction).dump());
    } else if (message.id == CONTENTS_MONITOR && stage_ == Stage::Loading) {
        HandleContents(message.result);
    } else {
        throw ProtocolError("the server replies to a request that was not sent");
    }
}

void ServerSession::HandleResults(const RpcMessage& message)
{
    const auto entry = outstanding_.find(message.id.get<uint64_t>());
    if (entry == outstanding_.end()) {
        throw ProtocolError("the server replies to a request that was not sent");
    }
    Request& request = *entry->second.request;
    std::string refusal = message.refusal;
    if (refusal.empty()) {
        try {
            request.operations.Check(message.result);
        } catch (const standin::Error& error) {
            refusal = error.what();
        }
    }
    request.outcome.set_value(refusal);
    outstanding_.erase(entry);
}

void ServerSession::HandleServerState(const Json& tables)
{
    RequireObject(tables, "the server's state");
    const auto rows = tables.find("Database");
    if (rows != tables.end()) {
        RequireObject(*rows, "the server's state");
        for (const Json& update : *rows) {
            RequireObject(update, "the server's state");
            if (update.contains("delete")) {
                server_ = {};
                continue;
            }
            const char* event = update.contains("initial")  ? "initial"
                                : update.contains("insert") ? "insert"
                                                            : "modify";
            const Json& columns = Member(update, event, "the server's state");
            RequireObject(columns, "the server's state");
            TakeColumns(server_, columns);
            server_.hasDatabase = true;
        }
    }
    CheckServer();
}

void ServerSession::CheckServer()
{
    if (!server_.hasDatabase) {
        throw ServerRefusal(std::string("there is no database ") + DATABASE_NAME);
    }
    if (!server_.isClustered) {
        return;
    }
    if (!server_.isConnected) {
        throw std::runtime_error("the server is cut off from its cluster");
    }
    if (onlyLeader_ && !server_.isLeader) {
        throw std::runtime_error("the server is not the leader");
    }
    if (IsFollowing()) {
        position_.index = server_.index;
    } else if (IsKnownCluster() && server_.index < position_.index) {
        throw std::runtime_error("the server's data is older than the tables");
    }
}

const char* ServerSession::Role() const
{
    if (!server_.isClustered) {
        return "standalone";
    }
    return server_.isLeader ? "leader" : "follower";
}

void ServerSession::HandleContents(Json& result)
{
    const std::string what = "the contents";
    const bool isResumed = BooleanOf(Element(result, 0, what), what);
    const std::string upTo = TransactionOf(Element(result, 1, what));
    Element(result, 2, what);
    if (!isResumed && MayRetryResume()) {
        position_.resumeRejected = true;
        throw std::runtime_error(
            "the server does not have the last transaction; the request is repeated once");
    }
    const auto updates = isResumed ? ParseChanges(result[2]) : ParseContents(result[2]);
    position_.Take(upTo, [&] {
        if (isResumed) {
            replica_.TakeChanges(updates);
        } else {
            replica_.TakeContents(updates);
        }
    });
    position_.cluster = server_.cluster;
    position_.index = server_.index;
    position_.resumeRejected = false;
    stage_ = Stage::Following;
}

// A new leader that has not committed its last transactions yet does not have ours. Loading its
// contents would revert the tables for a moment, so the request is repeated once.
bool ServerSession::MayRetryResume() const
{
    return IsKnownCluster() && position_.transaction != SyncPosition::NONE &&
           !position_.resumeRejected && server_.index < position_.index + REMEMBERED;
}

bool ServerSession::IsKnownCluster() const
{
    return server_.isClustered && server_.cluster == position_.cluster;
}

}  // namespace sources::ovsdb
