#include "sources/ovsdb/ovsdb_session.h"

#include <stdexcept>
#include <utility>

#include "sources/ovsdb/ovsdb_write.h"

namespace sources::ovsdb {
namespace {

// What the answers to the two questions, and the news that follow them, are called.
constexpr const char* server = "server";
constexpr const char* contents = "contents";

// So many transactions, at least, a server remembers that has not just been started.
constexpr int64_t remembered = 100;

Json ServerQuestion()
{
    const Json columns = {"name", "model", "connected", "leader", "cid", "index"};
    const Json where = Json::array({Json::array({"name", "==", database})});
    return Json::array({"_Server",
                        server,
                        {{"Database", Json::array({{{"columns", columns}, {"where", where}}})}}});
}

Json ContentsQuestion(const std::string& since)
{
    Json tables;
    for (const standin::Table& table : standin::Tables()) {
        Json columns = Json::array({place});
        for (const SchemaColumn& column : ColumnsOf(table).columns) {
            columns.push_back(column.name);
        }
        if (!table.lists.empty()) {
            columns.push_back(lists);
        }
        tables[ColumnsOf(table).name] = Json::array({{{"columns", columns}}});
    }
    return Json::array({database, contents, tables, since});
}

}  // namespace

ServerSession::ServerSession(Connection connection, Replica& replica, SyncPosition& position,
                             bool onlyLeader)
    : connection_(std::move(connection)),
      replica_(replica),
      position_(position),
      onlyLeader_(onlyLeader)
{
    Call(server, "monitor_cond", ServerQuestion().dump());
}

ServerSession::~ServerSession()
{
    for (const auto& [id, request] : unanswered_) {
        request->outcome.set_value(
            {{},
             "the connection was lost before the server answered: whether the transaction was "
             "carried out is not known"});
    }
}

void ServerSession::Attend(int wake, int stop)
{
    if (!following_ && Clock::now() > begun_ + connection_.Silence() * 12) {
        throw std::runtime_error("the server does not answer");
    }
    connection_.Attend(following_ ? wake : -1, stop,
                       [this](const Json& message) { Take(message); });
}

void ServerSession::Send(std::shared_ptr<Request> request)
{
    const uint64_t id = ++lastRequest_;
    const auto it = unanswered_.emplace(id, std::move(request)).first;
    Call(id, "transact", it->second->parameters);
}

void ServerSession::Call(const Json& id, const char* method, const std::string& parameters)
{
    connection_.Send(R"({"id":)" + id.dump() + R"(,"method":")" + method + R"(","params":)" +
                     parameters + "}");
}

void ServerSession::Take(const Json& message)
{
    const std::string method = message.value("method", "");
    if (method.empty()) {
        TakeAnswer(message.at("id"), message);
    } else if (method == "update2") {
        TakeServer(message.at("params").at(1));
    } else if (method == "update3" && following_) {
        const Json& parameters = message.at("params");
        position_.Take(parameters.at(1), [&] { replica_.TakeChanges(parameters.at(2)); });
    } else {
        throw std::runtime_error("the server sends " + method + " unasked");
    }
}

void ServerSession::TakeAnswer(const Json& id, const Json& message)
{
    const std::string refusal = ReasonIn(message);
    if (id.is_number_unsigned()) {
        TakeResults(id, message, refusal);
        return;
    }
    if (!refusal.empty()) {
        throw std::runtime_error(refusal);
    }
    if (id == server) {
        TakeServer(message.at("result"));
        Call(contents, "monitor_cond_since", ContentsQuestion(position_.transaction).dump());
    } else if (id == contents && !following_) {
        TakeContents(message.at("result"));
    } else {
        throw std::runtime_error("the server answers what it was not asked");
    }
}

void ServerSession::TakeResults(const Json& id, const Json& message, const std::string& refusal)
{
    const Json results = message.value("result", Json());
    const auto asked = unanswered_.find(id);
    if (asked == unanswered_.end() || (refusal.empty() && !results.is_array())) {
        throw std::runtime_error("the server answers what it was not asked");
    }
    asked->second->outcome.set_value({results, refusal});
    unanswered_.erase(asked);
}

void ServerSession::TakeServer(const Json& tables)
{
    for (const Json& rows : tables) {
        for (const Json& update : rows) {
            if (update.contains("modify")) {
                server_.update(update["modify"]);
            } else {
                server_ = update.value("initial", update.value("insert", Json()));
            }
        }
    }
    JudgeServer();
}

void ServerSession::JudgeServer()
{
    if (server_.is_null()) {
        throw std::runtime_error(std::string("there is no database ") + database);
    }
    if (!IsOfCluster()) {
        return;
    }
    if (!server_.value("connected", false)) {
        throw std::runtime_error("the server is cut off from its cluster");
    }
    if (onlyLeader_ && !server_.value("leader", false)) {
        throw std::runtime_error("the server is not the leader");
    }
    if (following_) {
        position_.index = Index();
    } else if (IsOfKnownCluster() && Index() < position_.index) {
        throw std::runtime_error("the server is behind what is known already");
    }
}

void ServerSession::TakeContents(const Json& result)
{
    const bool onlyNews = result.at(0);
    if (!onlyNews && IsDoubtful()) {
        position_.doubted = true;
        throw std::runtime_error(
            "the server does not know the last transaction; to be asked again");
    }
    position_.Take(result.at(1), [&] {
        if (onlyNews) {
            replica_.TakeChanges(result.at(2));
        } else {
            replica_.TakeContents(result.at(2));
        }
    });
    position_.cluster = server_.value("cid", Json());
    position_.index = Index();
    position_.doubted = false;
    following_ = true;
}

// A server that has just become leader may have yet to learn that its last transactions count, and
// does not know ours. To believe it would be to go back, and forth again.
bool ServerSession::IsDoubtful() const
{
    return IsOfKnownCluster() && position_.transaction != SyncPosition::none &&
           !position_.doubted && Index() < position_.index + remembered;
}

bool ServerSession::IsOfCluster() const
{
    return server_.value("model", "") == "clustered";
}

bool ServerSession::IsOfKnownCluster() const
{
    return IsOfCluster() && server_.value("cid", Json()) == position_.cluster;
}

int64_t ServerSession::Index() const
{
    const Json index = server_.value("index", Json());
    return index.is_number() ? index.get<int64_t>() : 0;
}

}  // namespace sources::ovsdb
