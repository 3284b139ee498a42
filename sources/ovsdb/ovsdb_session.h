// What is said with one server, from the first question to the end of the connection.
#pragma once

#include <future>
#include <map>
#include <memory>
#include <string>

#include "sources/ovsdb/ovsdb_connection.h"
#include "sources/ovsdb/ovsdb_replica.h"

namespace sources::ovsdb {

// How far the replica has come. It outlives connections: the next server goes on from here.
struct SyncPosition {
    std::string transaction = none;  // the last one that was taken over
    Json cluster;                    // null: none, or a server that stands alone
    int64_t index = 0;               // in the cluster's log, as far as it is known
    bool doubted = false;            // a server did not know the transaction, and was not believed

    static constexpr const char* none = "00000000-0000-0000-0000-000000000000";

    // Takes over what comes with a transaction. Where that fails everything is to be compared anew.
    template <typename Action>
    void Take(const std::string& upTo, const Action& action)
    {
        transaction = none;
        action();
        transaction = upTo;
    }
};

// What became of a transaction. A value: an exception's last owner may be either thread.
struct TransactResult {
    Json results;
    std::string refusal;  // empty: carried out
};

// A transaction for the servers.
struct Request {
    std::string parameters;
    std::promise<TransactResult> outcome;
};

class ServerSession {
public:
    // onlyLeader: of a cluster, only the leader is followed.
    ServerSession(Connection connection, Replica& replica, SyncPosition& position, bool onlyLeader);
    // Whoever waits for results is told that they can't be had any more.
    ~ServerSession();
    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;

    // Waits for what comes next, and deals with it. Throws where the server is not, or no longer,
    // one to follow. wake, stop: descriptors that end the wait; wake only while following.
    void Attend(int wake, int stop);

    // Whether the replica has had the server's contents.
    bool IsFollowing() const { return following_; }

    void Send(std::shared_ptr<Request> request);

private:
    void Call(const Json& id, const char* method, const std::string& parameters);
    void Take(const Json& message);
    void TakeAnswer(const Json& id, const Json& message);
    void TakeResults(const Json& id, const Json& message, const std::string& refusal);
    void TakeServer(const Json& tables);
    void JudgeServer();
    void TakeContents(const Json& result);
    bool IsDoubtful() const;
    bool IsOfCluster() const;
    bool IsOfKnownCluster() const;
    int64_t Index() const;

    Connection connection_;
    Replica& replica_;
    SyncPosition& position_;
    const bool onlyLeader_;
    bool following_ = false;
    Json server_;  // its row in the server's own database
    uint64_t lastRequest_ = 0;

    const Clock::time_point begun_ = Clock::now();

    std::map<uint64_t, std::shared_ptr<Request>> unanswered_;
};

}  // namespace sources::ovsdb
