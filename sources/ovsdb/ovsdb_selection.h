// Which server is followed: attempts on several servers side by side, the first that can be
// followed wins.
#pragma once

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "sources/ovsdb/ovsdb_session.h"

namespace sources::ovsdb {

// Each server is tried at once, attemptDelay after the one before it, and again after pauses that
// grow. Once one is followed the attempts on others end. When it is lost, which is reported to the
// system log, the others are tried again.
class ServerSelection {
public:
    ServerSelection(const Servers& servers, Replica& replica, SyncPosition& position);

    // Adds what to wait for before the next Advance, and returns until when.
    Clock::time_point AddWanted(std::vector<pollfd>& wanted) const;
    void Advance();

    bool IsFollowing() const { return followed_ != nullptr; }
    // Only while following. The outcome of the request is set in any case.
    void Send(const std::shared_ptr<Request>& request);
    // The name of the server; empty while none is followed.
    std::string FollowedName() const;
    // "leader", "follower" or, outside of a cluster, "standalone"; empty while none is followed.
    std::string FollowedRole() const;
    // When the last server that was followed became it.
    Clock::time_point FollowedSince() const { return followedSince_; }
    // Why each server that was tried since the last one was followed can't be.
    std::string Failures() const;
    // Whether every server has refused what was requested, so that waiting is of no use.
    bool AllRefuse() const;

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
    Clock::time_point nextStart_;  // of another attempt
    size_t next_ = 0;              // candidate, in turn
    bool isLost_ = false;          // a server was followed, and none is now
    std::string reported_;         // failures, last
    std::minstd_rand random_{std::random_device()()};
};

}  // namespace sources::ovsdb
