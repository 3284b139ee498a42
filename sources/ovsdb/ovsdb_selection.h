// Selects the server to follow: tries several servers in parallel and follows the first suitable
// one.
#pragma once

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "sources/ovsdb/ovsdb_session.h"

namespace sources::ovsdb {

// Attempts start attemptDelay apart, in turn, without waiting for earlier ones to fail, and are
// repeated with exponential backoff. Once a server is followed, the other attempts end. When its
// connection is lost, the loss is reported to the system log and the servers are tried again.
class ServerSelection {
public:
    ServerSelection(const Servers& servers, Replica& replica, SyncPosition& position);

    // Adds the descriptors to poll before the next Advance; returns the time of the timeout.
    Clock::time_point AddPollEntries(std::vector<pollfd>& entries) const;
    void Advance();

    bool IsFollowing() const { return followed_ != nullptr; }
    // Only while following. The outcome of the request is set also on a failure.
    void Send(const std::shared_ptr<Request>& request);
    // The name of the server; empty while none is followed.
    std::string FollowedName() const;
    // "leader", "follower" or, outside of a cluster, "standalone"; empty while none is followed.
    std::string FollowedRole() const;
    // The time at which the last followed server was selected.
    Clock::time_point FollowedSince() const { return followedSince_; }
    // The reason of each server that failed since one was last followed.
    std::string Failures() const;
    // Whether every server has refused the request, so that repeating it is useless.
    bool AllRefused() const;

    // Ends every connection.
    void Close();

private:
    struct Candidate {
        const Server* server;
        std::unique_ptr<ServerSession> session = {};
        Clock::time_point retryAt = {};
        Milliseconds backoff = {};
        std::string failure = {};
        bool isRefusal = false;
    };

    void StartAttempts();
    void Start(Candidate& candidate);
    void AdvanceOne(Candidate& candidate);
    void Follow(Candidate& candidate);
    void Fail(Candidate& candidate, const std::string& reason);
    void ReportLoss(Candidate& candidate, const std::string& reason);
    void ReportFailures();

    const Servers& servers_;
    const TlsContext tls_;
    Replica& replica_;
    SyncPosition& position_;
    std::vector<Candidate> candidates_;
    Candidate* followed_ = nullptr;
    Clock::time_point followedSince_;
    Clock::time_point nextStart_;  // time of the next attempt
    size_t next_ = 0;              // index of the next candidate
    bool isLost_ = false;          // a server was followed, and none is now
    std::string reported_;         // the failures that were last reported
    std::minstd_rand random_{std::random_device()()};
};

}  // namespace sources::ovsdb
