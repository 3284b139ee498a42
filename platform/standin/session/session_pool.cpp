#include "session/session_pool.h"

#include <mutex>
#include <new>
#include <vector>

namespace standin {

constinit std::array<std::atomic<Session*>, size_t{1} << SESSION_BITS> sessions = {};

namespace {

std::mutex mutex;  // of the variables below
uint32_t sessionCount = 0;

// Closed sessions. Never destroyed: other threads may still run when the process ends.
std::vector<Session*>& Closed()
{
    static auto& closed = *new std::vector<Session*>;
    return closed;
}

Session* AddSession()
{
    if (sessionCount == sessions.size()) {
        return nullptr;
    }
    Closed().reserve(sessionCount + 1);  // so that closing never fails
    auto* session = new Session(sessionCount);
    sessions[sessionCount++].store(session, std::memory_order_release);
    return session;
}

Session* TakeSession()
{
    const std::lock_guard lock(mutex);
    if (Closed().empty()) {
        return AddSession();
    }
    Session* session = Closed().back();
    Closed().pop_back();
    return session;
}

}  // namespace

Session* OpenSession(HandleKind kind, uint64_t* handle)
{
    Session* session = nullptr;
    try {
        session = TakeSession();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    if (session != nullptr) {
        *handle = MakeHandle(kind, session->number, ++session->uses);
        session->handle.store(*handle, std::memory_order_relaxed);
    }
    return session;
}

void CloseSession(Session& session)
{
    session.handle.store(0, std::memory_order_relaxed);
    session.Reset();
    const std::lock_guard lock(mutex);
    Closed().push_back(&session);
}

}  // namespace standin
