// What the contract's functions have in common.
#pragma once

#include <exception>

#include "contract/refusal.h"
#include "session/session_pool.h"
#include "tarnd_platform/orm.h"

namespace standin {

// Hands the session to action, or refuses the handle.
template <typename Action>
uint32_t OnSession(uint64_t handle, Action action)
{
    Session* session = FindSession(HandleKind::Session, handle);
    return session == nullptr ? Refusal::UnknownHandle : action(*session);
}

// The same for whatever has a current record: a session or a message.
template <typename Action>
uint32_t OnPosition(uint64_t handle, Action action)
{
    const bool isMessage = KindOf(handle) == HandleKind::Message;
    Session* session = FindSession(isMessage ? HandleKind::Message : HandleKind::Session, handle);
    return session == nullptr ? Refusal::UnknownHandle : action(session->position);
}

// No exception leaves the library.
template <typename Action>
uint32_t Guarded(Action action)
{
    try {
        return action();
    } catch (const std::exception&) {
        return Refusal::OutOfResources;
    }
}

template <typename... Pointer>
bool AnyNull(Pointer... pointer)
{
    return ((pointer == nullptr) || ...);
}

}  // namespace standin
