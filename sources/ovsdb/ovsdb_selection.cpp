#include "sources/ovsdb/ovsdb_selection.h"

#include <syslog.h>

#include <algorithm>
#include <exception>

namespace sources::ovsdb {

ServerSelection::ServerSelection(const Servers& servers, Replica& replica, SyncPosition& position)
    : servers_(servers), tls_(servers.credentials), replica_(replica), position_(position)
{
    for (const Server& server : servers.all) {
        Candidate& candidate = candidates_.emplace_back();
        candidate.server = &server;
        candidate.backoff = servers.limits.initialBackoff;
    }
}

Clock::time_point ServerSelection::AddPollEntries(std::vector<pollfd>& entries) const
{
    auto due = Clock::time_point::max();
    for (const Candidate& candidate : candidates_) {
        if (candidate.session) {
            entries.push_back(candidate.session->PollEntry());
            due = std::min(due, candidate.session->Due());
        } else if (followed_ == nullptr) {
            due = std::min(due, std::max(candidate.retryAt, nextStart_));
        }
    }
    return due;
}

void ServerSelection::Advance()
{
    if (followed_ == nullptr) {
        StartAttempts();
    }
    for (Candidate& candidate : candidates_) {
        if (candidate.session) {
            AdvanceOne(candidate);
        }
    }
}

void ServerSelection::Send(const std::shared_ptr<Request>& request)
{
    try {
        followed_->session->Send(request);
    } catch (const std::exception& error) {
        Fail(*followed_, error.what());
    }
}

std::string ServerSelection::FollowedName() const
{
    return followed_ != nullptr ? followed_->server->name : "";
}

std::string ServerSelection::FollowedRole() const
{
    return followed_ != nullptr ? followed_->session->Role() : "";
}

std::string ServerSelection::Failures() const
{
    std::string all;
    for (const Candidate& candidate : candidates_) {
        if (!candidate.failure.empty()) {
            all += (all.empty() ? "" : "; ") + candidate.server->name + ": " + candidate.failure;
        }
    }
    return all;
}

bool ServerSelection::AllRefused() const
{
    return std::ranges::all_of(candidates_, &Candidate::isRefusal);
}

void ServerSelection::Close()
{
    followed_ = nullptr;
    for (Candidate& candidate : candidates_) {
        candidate.session.reset();
    }
}

// Starts at most one attempt, on the next candidate. While a server is sending its contents, the
// next attempt is delayed, so that large contents are not requested twice.
void ServerSelection::StartAttempts()
{
    constexpr int LOADING_FACTOR = 8;
    const auto now = Clock::now();
    for (size_t i = 0; i < candidates_.size() && now >= nextStart_; ++i) {
        Candidate& candidate = candidates_[(next_ + i) % candidates_.size()];
        if (candidate.session || now < candidate.retryAt) {
            continue;
        }
        next_ = (next_ + i + 1) % candidates_.size();
        const bool anyLoading = std::ranges::any_of(candidates_, [](const Candidate& other) {
            return other.session && other.session->IsLoading();
        });
        nextStart_ = now + servers_.limits.attemptDelay * (anyLoading ? LOADING_FACTOR : 1);
        Start(candidate);
        return;
    }
}

void ServerSelection::Start(Candidate& candidate)
{
    try {
        candidate.session = std::make_unique<ServerSession>(
            *candidate.server, tls_, servers_.limits, replica_, position_, candidates_.size() > 1);
    } catch (const std::exception& error) {
        Fail(candidate, error.what());
    }
}

void ServerSelection::AdvanceOne(Candidate& candidate)
{
    try {
        candidate.session->Advance();
        if (candidate.session->IsFollowing() && followed_ == nullptr) {
            Follow(candidate);
        }
    } catch (const ServerRefusal& refusal) {
        Fail(candidate, refusal.what());
        candidate.isRefusal = true;
    } catch (const std::exception& error) {
        Fail(candidate, error.what());
    }
}

void ServerSelection::Follow(Candidate& candidate)
{
    if (isLost_) {
        syslog(LOG_NOTICE, "%s is followed\n", candidate.server->name.c_str());
    }
    isLost_ = false;
    followed_ = &candidate;
    followedSince_ = Clock::now();
    for (Candidate& other : candidates_) {
        other.failure.clear();
        other.isRefusal = false;
        if (&other != &candidate) {
            other.session.reset();
        }
    }
}

void ServerSelection::Fail(Candidate& candidate, const std::string& reason)
{
    candidate.failure = reason;
    candidate.isRefusal = false;
    if (followed_ == &candidate) {
        ReportLoss(candidate, reason);
    }
    candidate.session.reset();

    // Random, so that clients that lose a server together do not reconnect at the same moment.
    const Milliseconds pause = candidate.backoff;
    std::uniform_int_distribution spread(pause.count() / 2, pause.count());
    candidate.retryAt = Clock::now() + Milliseconds(spread(random_));
    candidate.backoff = std::min(pause * 2, servers_.limits.longestBackoff);
    nextStart_ = {};
    ReportFailures();
}

void ServerSelection::ReportLoss(Candidate& candidate, const std::string& reason)
{
    syslog(LOG_WARNING, "%s: %s: the tables stay as they are until a server is found\n",
           candidate.server->name.c_str(), reason.c_str());
    isLost_ = true;
    followed_ = nullptr;
    reported_.clear();
    next_ = static_cast<size_t>(&candidate - candidates_.data()) + 1;
    if (Clock::now() - followedSince_ >= servers_.limits.stableAfter) {
        for (Candidate& other : candidates_) {
            other.backoff = servers_.limits.initialBackoff;
            other.retryAt = {};
        }
    }
}

// Reports that no server can be followed, unless the reasons are the same as in the last report.
void ServerSelection::ReportFailures()
{
    const bool allFailed = std::ranges::none_of(
        candidates_, [](const Candidate& candidate) { return candidate.failure.empty(); });
    if (!isLost_ || !allFailed) {
        return;
    }
    const std::string failures = Failures();
    if (failures != reported_) {
        syslog(LOG_WARNING, "no server can be followed: %s\n", failures.c_str());
        reported_ = failures;
    }
}

}  // namespace sources::ovsdb
