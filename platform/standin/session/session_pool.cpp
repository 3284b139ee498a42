#include "session/session_pool.h"

#include <mutex>
#include <utility>
#include <vector>

#include "store/limbo.h"
#include "store/thread_slot.h"

namespace standin {

constinit SessionPool sessionPool;

namespace {

std::mutex mutex;

// Closed sessions that are no thread's spare.
std::vector<Session*>& Idle()
{
    static auto& idle = *new std::vector<Session*>;
    return idle;
}

Session* AddSession()
{
    const uint32_t place = sessionPool.placesUsed;
    if (place == sessionPool.sessions.size()) {
        return nullptr;
    }
    auto* session = new Session(place);
    sessionPool.sessions[place].store(session, std::memory_order_release);
    sessionPool.placesUsed.store(place + 1, std::memory_order_release);
    return session;
}

Session* TakeSession()
{
    const std::lock_guard lock(mutex);
    if (Idle().empty()) {
        return AddSession();
    }
    Session* session = Idle().back();
    Idle().pop_back();
    return session;
}

void KeepSession(Session& session)
{
    ThreadSlot& thread = OwnSlot();
    if (thread.spare == nullptr) {
        thread.spare = &session;
        return;
    }
    const std::lock_guard lock(mutex);
    Idle().push_back(&session);
}

}  // namespace

Session* OpenSession(HandleKind kind, uint64_t* handle)
{
    Session* session = std::exchange(OwnSlot().spare, nullptr);
    if (session == nullptr) {
        session = TakeSession();
    }
    if (session != nullptr) {
        *handle = MakeHandle(kind, session->place, ++session->uses);
        session->handle.store(*handle, std::memory_order_relaxed);
    }
    return session;
}

void CloseSession(Session& session)
{
    session.handle.store(0, std::memory_order_relaxed);
    session.Reset();
    KeepSession(session);
    SweepLimbo();
}

}  // namespace standin
