// Every session there is. Sessions are used again and never freed, so a stale handle can be looked
// up safely on any thread.
#pragma once

#include <array>
#include <atomic>

#include "session/orm_session.h"

namespace standin {

// Opens a session and gives its handle to *handle; null where there are too many.
Session* OpenSession(HandleKind kind, uint64_t* handle);
void CloseSession(Session& session);

struct SessionPool {
    std::array<std::atomic<Session*>, size_t{1} << placeBits> sessions = {};
    std::atomic<uint32_t> placesUsed = 0;
};
extern constinit SessionPool sessionPool;

// The session at the place that a handle names, open or not; null where there was none yet.
inline Session* SessionAt(uint64_t handle)
{
    return sessionPool.sessions[PlaceOf(handle)].load(std::memory_order_acquire);
}

// The open session that a handle of this kind stands for, or null.
inline Session* FindSession(HandleKind kind, uint64_t handle)
{
    Session* session = KindOf(handle) == kind ? SessionAt(handle) : nullptr;
    return session != nullptr && session->handle.load(std::memory_order_relaxed) == handle
               ? session
               : nullptr;
}

template <typename OnSession>
void ForEachSession(OnSession onSession)
{
    const uint32_t places = sessionPool.placesUsed.load(std::memory_order_acquire);
    for (uint32_t place = 0; place < places; place++) {
        onSession(*sessionPool.sessions[place].load(std::memory_order_acquire));
    }
}

}  // namespace standin
