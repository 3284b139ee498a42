#include "sources/ovsdb/ovsdb_source.h"

#include <poll.h>
#include <syslog.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "sources/ovsdb/ovsdb_write.h"

namespace sources {

using ovsdb::Clock;

OvsdbSource::OvsdbSource(const std::string& servers, const OvsdbTiming& timing)
    : servers_(ovsdb::ParseServers(servers)),
      timing_(timing),
      tls_(servers_.credentials),
      pause_(timing.firstPause)
{
    const auto deadline = Clock::now() + timing_.patience;
    while (Server().empty()) {
        Step();
        if (Server().empty() && Clock::now() > deadline) {
            throw standin::Error("no server can be followed: " +
                                 (failures_.empty() ? "none has answered yet" : failures_));
        }
    }
}

void OvsdbSource::Follow()
{
    follower_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

void OvsdbSource::Commit(const std::vector<RowWrite>& writes)
{
    const ovsdb::Operations operations(writes, [this] { return replica_.NextPlace(); });
    const auto request =
        std::make_shared<ovsdb::Request>(ovsdb::Request{operations.Parameters(), {}});
    auto answer = request->outcome.get_future();
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(request);
    }
    requestEvent_.Raise();
    if (answer.wait_for(timing_.patience) == std::future_status::timeout) {
        const std::lock_guard lock(mutex_);
        if (std::erase(requests_, request) != 0) {
            throw standin::Error("no server can be followed: " + failures_);
        }
    }
    const auto [results, refusal] = answer.get();
    if (!refusal.empty()) {
        throw standin::Error(refusal);
    }
    operations.Check(results);
}

std::string OvsdbSource::Server() const
{
    const std::lock_guard lock(mutex_);
    return followed_;
}

void OvsdbSource::Run(const std::stop_token& stop)
{
    const std::stop_callback onStop(stop, [this] { stopEvent_.Raise(); });
    while (!stop.stop_requested()) {
        Step();
    }
}

void OvsdbSource::Step()
{
    try {
        if (!session_) {
            Connect();
        }
        session_->Attend(requestEvent_.Descriptor(), stopEvent_.Descriptor());
        if (!session_->IsFollowing()) {
            return;
        }
        if (Server().empty()) {
            Find();
        }
        HandOverRequests();
    } catch (const std::exception& error) {
        Lose(error.what());
    }
}

void OvsdbSource::Connect()
{
    const ovsdb::Server& server = servers_.all[current_];
    ovsdb::Stream stream(server, tls_, stopEvent_.Descriptor(), timing_.silence);
    session_.emplace(ovsdb::Connection(std::move(stream), timing_.silence), replica_, position_,
                     servers_.all.size() > 1);
}

void OvsdbSource::Find()
{
    const std::string& name = servers_.all[current_].name;
    if (isLost_) {
        syslog(LOG_NOTICE, "%s is followed\n", name.c_str());
    }
    isLost_ = false;
    pause_ = timing_.firstPause;
    round_.clear();
    const std::lock_guard lock(mutex_);
    followed_ = name;
    failures_.clear();
}

void OvsdbSource::Lose(const std::string& reason)
{
    const std::string failure = servers_.all[current_].name + ": " + reason;
    if (!Server().empty()) {
        syslog(LOG_WARNING, "%s: the tables stay as they are until a server is found\n",
               failure.c_str());
        isLost_ = true;
        const std::lock_guard lock(mutex_);
        followed_.clear();
    }
    session_.reset();
    current_ = (current_ + 1) % servers_.all.size();
    round_.push_back(failure);
    if (round_.size() == servers_.all.size()) {
        EndRound();
    }
}

// No server was any good. Says so, unless nothing has changed since it last did, and waits.
void OvsdbSource::EndRound()
{
    std::string failures;
    for (const std::string& failure : std::exchange(round_, {})) {
        failures += (failures.empty() ? "" : "; ") + failure;
    }
    {
        const std::lock_guard lock(mutex_);
        std::swap(failures_, failures);
    }
    if (failures_ != failures && isLost_) {
        syslog(LOG_WARNING, "no server can be followed: %s\n", failures_.c_str());
    }

    // Boards that lost a server together are not to come back together.
    std::uniform_int_distribution spread(pause_.count() / 2, pause_.count());
    pollfd stop = {stopEvent_.Descriptor(), POLLIN, 0};
    poll(&stop, 1, static_cast<int>(spread(random_)));
    pause_ = std::min(pause_ * 2, timing_.longestPause);
}

void OvsdbSource::HandOverRequests()
{
    requestEvent_.Lower();
    while (const Request request = TakeRequest()) {
        session_->Send(request);
    }
}

OvsdbSource::Request OvsdbSource::TakeRequest()
{
    const std::lock_guard lock(mutex_);
    if (requests_.empty()) {
        return nullptr;
    }
    Request first = requests_.front();
    requests_.pop_front();
    return first;
}

}  // namespace sources
