#include "session/session_pool.h"

#include <mutex>
#include <new>
#include <vector>

namespace standin {

constinit std::array<std::atomic<Session*>, size_t{1} << SESSION_BITS> sessions = {};

namespace {

std::mutex mutex;  // protects the variables below
uint32_t sessionCount = 0;

// Closed sessions. Never destroyed: other threads may still run when the process ends.
std::vector<Session*>& Closed()
{
    static auto& closed = *new std::vector<Session*>;
    return closed;
}

// Adds a closed session; fails at the maximum number, or if out of memory.
void AddSession()
{
    if (sessionCount < sessions.size()) {
        try {
            Closed().reserve(sessionCount + 1);  // so that closing never fails
            Closed().push_back(new Session(sessionCount));
            sessions[sessionCount++].store(Closed().back(), std::memory_order_release);
        } catch (const std::bad_alloc&) {
            return;
        }
    }
}

}  // namespace

Session* OpenSession(HandleKind kind, uint64_t* handle)
{
    const std::lock_guard lock(mutex);
    if (Closed().empty()) {
        AddSession();
    }
    if (Closed().empty()) {
        return nullptr;
    }
    Session* session = Closed().back();
    Closed().pop_back();
    *handle = MakeHandle(kind, session->number, ++session->uses);
    session->handle.store(*handle, std::memory_order_relaxed);
    return session;
}

void CloseSession(Session& session)
{
    session.handle.store(0, std::memory_order_relaxed);
    session.current.Clear();
    session.scan.Stop();
    session.condition.Clear();
    session.state = SessionState::Open;
    session.delivery = nullptr;
    session.fetched = 0;
    const std::lock_guard lock(mutex);
    Closed().push_back(&session);
}

}  // namespace standin
