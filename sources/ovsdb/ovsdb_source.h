// A cluster of ovsdb-servers (RFC 7047) as the device: its contents are copied into the database
// and followed; writes go to the servers. docs/cluster.md describes it.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <standin/event_descriptor.h>

#include "sources/ovsdb/ovsdb_selection.h"
#include "sources/source.h"

namespace sources {

// The source owns the tables: rows that others write there are deleted.
//
// Of the servers of a cluster it follows the leader, which has every change first; a single server
// is followed whether or not it is a leader. Each transaction of the servers becomes one of the
// database. Changes that arrive together, after a reconnection or because this process was slow,
// are one transaction, in which a row that changed several times changes once.
//
// If the connection is lost, the tables keep their contents, the loss is reported to the system
// log, and the servers are tried again. The next server sends the changes since the last
// transaction, or all contents, which are then compared with the tables.
class OvsdbSource final : public Source {
public:
    // Fills the tables. servers: "unix:/run/a.sock,tcp:192.0.2.1:6641", see ovsdb_servers.h. onWait
    // is called when a wait, here or in Commit, has taken a second; its argument names what is
    // waited for. Throws std::runtime_error if no server can be followed or a file can't be used.
    explicit OvsdbSource(const std::string& servers, const OvsdbLimits& limits = {},
                         std::function<void(const std::string&)> onWait = nullptr);
    ~OvsdbSource() override;

    // Starts a thread that writes each change, until the source is destroyed.
    void Follow() override;

    // Executes the writes on the servers; only after Follow; any thread. When it returns, the
    // tables have the changes. Throws standin::Error if the servers refuse the writes (with their
    // reason), if there is no server, and if there is no reply in time.
    void Commit(const std::vector<RowWrite>& writes) override;

    // The server that is followed; empty while there is none. Any thread.
    std::string Server() const;

    SourceState State() const override;

private:
    using SharedRequest = std::shared_ptr<ovsdb::Request>;

    void Run(const std::stop_token& stop);
    void Step(ovsdb::Clock::time_point until);
    void PublishState();
    void SendRequests();
    SharedRequest TakeRequest();
    void ReportWait() const;
    bool Withdraw(const SharedRequest& request);

    const ovsdb::Servers servers_;
    const std::function<void(const std::string&)> onWait_;
    ovsdb::Replica replica_;
    ovsdb::SyncPosition position_;
    ovsdb::ServerSelection selection_;  // used by the follower thread only
    standin::EventDescriptor stopEvent_;
    standin::EventDescriptor requestEvent_;

    mutable std::mutex mutex_;  // protects the next three members
    std::deque<SharedRequest> requests_;
    SourceState state_;
    ovsdb::Clock::time_point followedSince_;  // of state_.server

    std::jthread follower_;  // last: it stops before the members that it uses are destroyed
};

}  // namespace sources
