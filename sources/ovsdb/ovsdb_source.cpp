#include "sources/ovsdb/ovsdb_source.h"

#include <poll.h>
#include <syslog.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "sources/ovsdb/ovsdb_write.h"

namespace sources {

using ovsdb::Clock;

namespace {

using namespace std::chrono_literals;

constexpr auto SHORT_WAIT = 1s;  // a longer one is reported

constexpr auto NEVER = Clock::time_point::max();

int MillisecondsUntil(Clock::time_point time)
{
    if (time == NEVER) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now());
    return static_cast<int>(std::clamp<int64_t>(left.count(), 0, INT32_MAX));
}

}  // namespace

OvsdbSource::OvsdbSource(const std::string& servers, const OvsdbLimits& limits,
                         std::function<void(const std::string&)> onWait)
    : servers_(ovsdb::ParseServers(servers, limits)),
      onWait_(std::move(onWait)),
      selection_(servers_, replica_, position_)
{
    const auto begin = Clock::now();
    const auto deadline = begin + servers_.limits.requestTimeout;
    bool isReported = false;
    while (Server().empty()) {
        if (selection_.AllRefused() || Clock::now() >= deadline) {
            throw standin::Error("no server can be followed: " + (state_.lastError.empty()
                                                                      ? "none has replied yet"
                                                                      : state_.lastError));
        }
        if (!isReported && Clock::now() >= begin + SHORT_WAIT) {
            ReportWait();
            isReported = true;
        }
        Step(isReported ? deadline : std::min<Clock::time_point>(begin + SHORT_WAIT, deadline));
    }
}

OvsdbSource::~OvsdbSource() = default;

void OvsdbSource::Follow()
{
    follower_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

void OvsdbSource::Commit(const std::vector<RowWrite>& writes)
{
    const ovsdb::Operations operations(writes, replica_);
    const auto request =
        std::make_shared<ovsdb::Request>(ovsdb::Request{operations, operations.Parameters()});
    auto outcome = request->outcome.get_future();
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(request);
    }
    requestEvent_.Raise();
    const auto shortWait =
        std::min<std::chrono::milliseconds>(SHORT_WAIT, servers_.limits.requestTimeout);
    if (outcome.wait_for(shortWait) == std::future_status::timeout) {
        ReportWait();
        outcome.wait_for(servers_.limits.requestTimeout - shortWait);
        if (Withdraw(request)) {
            const std::lock_guard lock(mutex_);
            throw standin::Error("no server can be followed: " + state_.lastError);
        }
    }
    const std::string refusal = outcome.get();  // the session limits the time to a reply
    if (!refusal.empty()) {
        throw standin::Error(refusal);
    }
}

std::string OvsdbSource::Server() const
{
    const std::lock_guard lock(mutex_);
    return state_.server;
}

SourceState OvsdbSource::State() const
{
    const std::lock_guard lock(mutex_);
    return state_;
}

void OvsdbSource::Run(const std::stop_token& stop)
{
    const std::stop_callback onStop(stop, [this] { stopEvent_.Raise(); });
    while (!stop.stop_requested()) {
        try {
            Step(NEVER);
        } catch (const std::exception& error) {
            syslog(LOG_ERR, "following the servers: %s\n", error.what());
            std::this_thread::sleep_for(100ms);  // a resource may be exhausted temporarily
        }
    }
    selection_.Close();
}

// Waits for the servers, a request or the time, then proceeds as far as possible without blocking.
void OvsdbSource::Step(Clock::time_point until)
{
    std::vector<pollfd> entries = {{stopEvent_.Descriptor(), POLLIN, 0},
                                   {requestEvent_.Descriptor(), POLLIN, 0}};
    const auto due = std::min(selection_.AddPollEntries(entries), until);
    poll(entries.data(), entries.size(), MillisecondsUntil(due));
    requestEvent_.Lower();
    selection_.Advance();
    PublishState();
    SendRequests();
}

void OvsdbSource::PublishState()
{
    const std::lock_guard lock(mutex_);
    const std::string server = selection_.FollowedName();
    if (server.empty() && !state_.server.empty()) {
        state_.lost = std::chrono::system_clock::now();
        state_.connected.reset();
    }
    if (!server.empty()) {
        if (selection_.FollowedSince() != followedSince_) {
            state_.connected = std::chrono::system_clock::now();
        }
        state_.lost.reset();
    }
    followedSince_ = selection_.FollowedSince();
    state_.server = server;
    state_.role = selection_.FollowedRole();
    state_.lastError = selection_.Failures();
}

void OvsdbSource::SendRequests()
{
    while (selection_.IsFollowing()) {
        const SharedRequest request = TakeRequest();
        if (request == nullptr) {
            return;
        }
        selection_.Send(request);
    }
}

OvsdbSource::SharedRequest OvsdbSource::TakeRequest()
{
    const std::lock_guard lock(mutex_);
    if (requests_.empty()) {
        return nullptr;
    }
    SharedRequest first = std::move(requests_.front());
    requests_.pop_front();
    return first;
}

// Returns false if the request has already been sent.
bool OvsdbSource::Withdraw(const SharedRequest& request)
{
    const std::lock_guard lock(mutex_);
    return std::erase(requests_, request) != 0;
}

void OvsdbSource::ReportWait() const
{
    if (!onWait_) {
        return;
    }
    std::string what;
    {
        const std::lock_guard lock(mutex_);
        if (!state_.server.empty()) {
            what = state_.server + " to commit a transaction";
        } else {
            what = "a server" + (state_.lastError.empty() ? "" : " (" + state_.lastError + ")");
        }
    }
    onWait_(what);
}

}  // namespace sources
