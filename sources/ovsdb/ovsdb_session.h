// The protocol with one server, from the first request to the end of the connection.
#pragma once

#include <future>
#include <map>
#include <memory>
#include <string>

#include "sources/ovsdb/ovsdb_connection.h"
#include "sources/ovsdb/ovsdb_replica.h"
#include "sources/ovsdb/ovsdb_write.h"

namespace sources::ovsdb {

// How far the replica has come. It outlives sessions: the next server continues from here.
struct SyncPosition {
    static constexpr const char* NONE = "00000000-0000-0000-0000-000000000000";

    std::string transaction = NONE;  // the last one that was taken
    std::string cluster;             // empty: none, or a server that is not part of a cluster
    int64_t index = 0;               // in the cluster's log, as far as it is known
    bool resumeRejected = false;     // a server did not know the transaction, and was not believed

    // Takes what belongs to a transaction. If that fails, all contents have to be compared next.
    template <typename Action>
    void Take(const std::string& upTo, const Action& action)
    {
        transaction = NONE;
        action();
        transaction = upTo;
    }
};

// A transaction for the servers.
struct Request {
    const Operations& operations;  // valid until the outcome is set
    std::string parameters;
    std::promise<std::string> outcome = {};  // why it was refused; empty: carried out
};

// What the server says about itself and its copy of the database.
struct ServerState {
    bool hasDatabase = false;
    bool isClustered = false;
    bool isConnected = false;
    bool isLeader = false;
    std::string cluster;
    int64_t index = 0;
};

class ServerSession {
public:
    // Begins to connect. onlyLeader: refuse a server of a cluster that is not its leader. All
    // references must outlive the session.
    ServerSession(const Server& server, const TlsContext& tls, const OvsdbLimits& limits,
                  Replica& replica, SyncPosition& position, bool onlyLeader);
    // Requests without an answer get the outcome that theirs is not known.
    ~ServerSession();
    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;

    // What to wait for, and until when, before the next Advance.
    pollfd Wanted() const { return connection_.Wanted(); }
    Clock::time_point Due() const;

    // Does what is possible without waiting. Throws where the server can't be followed, or no
    // longer; ServerRefusal, where trying again is of no use.
    void Advance();

    // Whether the server was found suitable and has been asked for its contents.
    bool IsLoading() const { return stage_ == Stage::Loading; }
    // Whether the replica has taken the server's contents.
    bool IsFollowing() const { return stage_ == Stage::Following; }
    // Of the server: "leader", "follower" or, outside of a cluster, "standalone".
    const char* Role() const;

    // Only while following.
    void Send(const std::shared_ptr<Request>& request);

private:
    enum class Stage : uint8_t { Judging, Loading, Following };
    struct Unanswered {
        std::shared_ptr<Request> request;
        Clock::time_point deadline;
    };

    void Call(const Json& id, const char* method, const std::string& parameters);
    void Take(RpcMessage message);
    void TakeReply(RpcMessage message);
    void TakeUpdate(RpcMessage message);
    void TakeResults(const RpcMessage& message);
    void TakeServer(const Json& tables);
    void JudgeServer();
    void TakeContents(Json& result);
    bool IsDoubtful() const;
    bool IsOfKnownCluster() const;
    void CheckDeadlines() const;

    const OvsdbLimits& limits_;
    Replica& replica_;
    SyncPosition& position_;
    const bool onlyLeader_;
    Connection connection_;
    Stage stage_ = Stage::Judging;
    ServerState server_;
    Clock::time_point loadDeadline_;
    uint64_t lastRequest_ = 0;
    std::map<uint64_t, Unanswered> unanswered_;
};

}  // namespace sources::ovsdb
