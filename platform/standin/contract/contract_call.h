// Helpers shared by the contract's functions.
#pragma once

#include <exception>

#include "contract/refusal.h"
#include "session/session_pool.h"
#include "tarnd_platform/orm.h"

namespace standin {

// Converts exceptions into result codes: none may leave the library.
template <typename Action>
uint32_t Guarded(Action action)
{
    try {
        return action();
    } catch (const std::exception&) {
        return Refusal::OutOfResources;
    }
}

// Passes the open session of this kind to action, or refuses the handle.
template <typename Action>
uint32_t OnSession(uint64_t handle, Action action, HandleKind kind = HandleKind::Session)
{
    Session* session = FindSession(kind, handle);
    if (session == nullptr) {
        return Refusal::UnknownHandle;
    }
    return Guarded([&] { return action(*session); });
}

// The same for a session in this state only.
template <typename Action>
uint32_t OnSessionIn(SessionState state, uint64_t handle, Action action)
{
    return OnSession(handle, [&](Session& session) -> uint32_t {
        return session.state == state ? action(session) : Refusal::WrongOrder;
    });
}

// Passes the current row of a session or message to action; returns a refusal if there is none.
template <typename Action>
uint32_t OnCurrentRow(uint64_t handle, Action action)
{
    const bool isMessage = KindOf(handle) == HandleKind::Message;
    Session* session = FindSession(isMessage ? HandleKind::Message : HandleKind::Session, handle);
    if (session == nullptr) {
        return Refusal::UnknownHandle;
    }
    return session->current.IsSet() ? action(session->current) : Refusal::WrongOrder;
}

template <typename... Pointer>
bool AnyNull(Pointer... pointer)
{
    return ((pointer == nullptr) || ...);
}

}  // namespace standin
