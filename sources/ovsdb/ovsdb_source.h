// A cluster of ovsdb-servers (RFC 7047) as the device: its contents, mirrored into the database and
// followed as they change; writes go to the servers. docs/cluster.md shows it.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <standin/event_descriptor.h>

#include "sources/ovsdb/ovsdb_session.h"
#include "sources/source.h"

namespace sources {

struct OvsdbTiming {
    using Milliseconds = std::chrono::milliseconds;

    Milliseconds patience{10'000};  // with which the first contents, and writes, await a server
    Milliseconds silence{5'000};    // until a server is asked whether it is there; thrice: lost
    Milliseconds firstPause{100};   // when no server was any good; doubles every time
    Milliseconds longestPause{5'000};
};

// The tables are its own: rows that others put there go.
//
// Of several servers of a cluster it follows the leader, so that nobody's news take a detour; one
// alone is taken as it is. Each transaction of the servers becomes one of the database's. What they
// send in one piece because we were slow, or away, is one transaction too, which shows a row that
// changed several times as one that changed once.
//
// Connection lost: the tables stay as they are, the loss is reported to the system log, and the
// next server is tried, with pauses that grow. Then come the changes that were missed, or else
// everything is compared.
class OvsdbSource final : public Source {
public:
    // servers: "unix:/run/a.sock,tcp:192.0.2.1:6641", see ovsdb_servers.h. Fills the tables. Throws
    // std::runtime_error where no server can be followed, or a file is no use.
    explicit OvsdbSource(const std::string& servers, const OvsdbTiming& timing = {});

    // From here on a thread writes each change as it comes, until the cluster is destroyed.
    void Follow() override;

    // Carries the writes out on the servers. Only while following; any thread. When it returns
    // the tables have the changes. Throws standin::Error with the servers' reason where they refuse
    // it, and where no server is found or the answer is lost.
    void Commit(const std::vector<RowWrite>& writes) override;

    // The server that is followed now; empty while there is none. Any thread.
    std::string Server() const;

private:
    using Request = std::shared_ptr<ovsdb::Request>;

    void Run(const std::stop_token& stop);
    void Step();
    void Connect();
    void Find();
    void Lose(const std::string& reason);
    void EndRound();
    void HandOverRequests();
    Request TakeRequest();

    const ovsdb::Servers servers_;
    const OvsdbTiming timing_;
    const ovsdb::TlsContext tls_;
    ovsdb::Replica replica_;
    ovsdb::SyncPosition position_;
    standin::EventDescriptor stopEvent_;
    standin::EventDescriptor requestEvent_;

    // The follower's.
    std::optional<ovsdb::ServerSession> session_;
    size_t current_ = 0;              // the server that is spoken to
    bool isLost_ = false;             // one was followed, and none is now
    std::vector<std::string> round_;  // what was wrong with those tried since
    OvsdbTiming::Milliseconds pause_;
    std::minstd_rand random_{std::random_device()()};

    mutable std::mutex mutex_;  // for the rest
    std::deque<Request> requests_;
    std::string followed_;
    std::string failures_;  // of the last round over all servers

    std::jthread follower_;  // last: it ends before what it uses
};

}  // namespace sources
