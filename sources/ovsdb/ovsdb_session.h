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

// The state of the replica. It outlives sessions: the next server continues from here.
struct SyncPosition {
    static constexpr const char* NONE = "00000000-0000-0000-0000-000000000000";

    std::string transaction = NONE;  // the last one that was applied
    std::string cluster;             // empty: none, or a standalone server
    int64_t index = 0;               // last known index of the cluster's log
    bool resumeRejected = false;     // a server did not have the transaction; one retry is allowed

    // Applies the updates of a transaction. If that fails, the next session compares all contents.
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
    std::promise<std::string> outcome = {};  // the reason for a refusal; empty: committed
};

// The server's state and that of its copy of the database.
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
    // Begins to connect. onlyLeader: reject a clustered server that is not the leader. All
    // references must outlive the session.
    ServerSession(const Server& server, const TlsContext& tls, const OvsdbLimits& limits,
                  Replica& replica, SyncPosition& position, bool onlyLeader);
    // Outstanding requests get an outcome that reports that their result is unknown.
    ~ServerSession();
    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;

    // The descriptor and events to poll for, and the timeout, before the next Advance.
    pollfd PollEntry() const { return connection_.PollEntry(); }
    Clock::time_point Due() const;

    // Proceeds as far as possible without blocking. Throws if the server can't be followed or the
    // connection is lost; ServerRefusal, if another attempt is useless.
    void Advance();

    // Whether the server is suitable and its contents have been requested.
    bool IsLoading() const { return stage_ == Stage::Loading; }
    // Whether the replica has the server's contents.
    bool IsFollowing() const { return stage_ == Stage::Following; }
    // Of the server: "leader", "follower" or, outside of a cluster, "standalone".
    const char* Role() const;

    // Only while following.
    void Send(const std::shared_ptr<Request>& request);

private:
    enum class Stage : uint8_t { Checking, Loading, Following };
    struct Outstanding {
        std::shared_ptr<Request> request;
        Clock::time_point deadline;
    };

    void Call(const Json& id, const char* method, const std::string& parameters);
    void Handle(RpcMessage message);
    void HandleReply(RpcMessage message);
    void HandleUpdate(RpcMessage message);
    void HandleResults(const RpcMessage& message);
    void HandleServerState(const Json& tables);
    void CheckServer();
    void HandleContents(Json& result);
    bool MayRetryResume() const;
    bool IsKnownCluster() const;
    void CheckDeadlines() const;

    const OvsdbLimits& limits_;
    Replica& replica_;
    SyncPosition& position_;
    const bool onlyLeader_;
    Connection connection_;
    Stage stage_ = Stage::Checking;
    ServerState server_;
    Clock::time_point loadDeadline_;
    uint64_t lastRequest_ = 0;
    std::map<uint64_t, Outstanding> outstanding_;
};

}  // namespace sources::ovsdb
