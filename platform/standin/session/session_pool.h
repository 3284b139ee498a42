// The pool of all sessions. Sessions are reused and never freed, so that any thread can check a
// stale handle.
#pragma once

#include <array>
#include <atomic>

#include "session/orm_session.h"

namespace standin {

// Opens a session and stores its handle; returns null at the maximum number, or if out of memory.
Session* OpenSession(HandleKind kind, uint64_t* handle);
void CloseSession(Session& session);

extern std::array<std::atomic<Session*>, size_t{1} << SESSION_BITS> sessions;

// The session with the number that a handle contains, open or not; null if it does not exist yet.
inline Session* SessionAt(uint64_t handle)
{
    return sessions[SessionNumberOf(handle)].load(std::memory_order_acquire);
}

// The open session with a handle of this kind, or null.
inline Session* FindSession(HandleKind kind, uint64_t handle)
{
    Session* session = KindOf(handle) == kind ? SessionAt(handle) : nullptr;
    return session != nullptr && session->handle.load(std::memory_order_relaxed) == handle
               ? session
               : nullptr;
}

}  // namespace standin
