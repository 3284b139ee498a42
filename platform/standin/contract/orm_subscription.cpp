// The contract's subscriptions and messages.
#include "tarnd_platform/orm_subscription.h"

#include "contract/contract_call.h"
#include "notify/subscriber.h"

using namespace standin;

// There is only one database, so the names in a parameter object are ignored.
uint32_t OrmCreateSessionParam(const char* channel, const char* kind, ORM_SESSION_PARAM* param)
{
    if (AnyNull(channel, kind, param)) {
        return Refusal::NullArgument;
    }
    return OpenSession(HandleKind::Parameter, param) != nullptr ? ORM_OK : Refusal::OutOfResources;
}

uint32_t OrmSessionParamSetConnName(ORM_SESSION_PARAM param, const char* name)
{
    if (name == nullptr) {
        return Refusal::NullArgument;
    }
    return FindSession(HandleKind::Parameter, param) != nullptr ? ORM_OK : Refusal::UnknownHandle;
}

void OrmDestroySessionParam(ORM_SESSION_PARAM param)
{
    if (Session* open = FindSession(HandleKind::Parameter, param)) {
        CloseSession(*open);
    }
}

namespace {

uint32_t OpenSubscriptionSession(ORM_FD_CONTROL control, ORM_SESSION* session)
{
    const auto subscriber = Subscriber::Open(control);
    if (subscriber == nullptr) {
        return Refusal::NotWatched;
    }
    Session* opened = OpenSession(HandleKind::Subscription, session);
    if (opened == nullptr) {
        subscriber->Close();
        return Refusal::OutOfResources;
    }
    opened->subscriber = subscriber;
    return ORM_OK;
}

uint32_t SelectObject(Session& message, uint32_t object)
{
    const Change* change = message.delivery->LastOf(message.fetched);
    if (change == nullptr) {
        return Refusal::WrongOrder;
    }
    const RowReference& row = object == ORM_OBJECT_OLD ? change->before : change->after;
    if (!row) {
        message.current.Clear();
        return ORM_NO_RECORD;
    }
    message.current.Set(*change->store, row);
    return ORM_OK;
}

}  // namespace

uint32_t OrmOpenSubSession(ORM_SESSION_PARAM param, ORM_FD_CONTROL control, ORM_SESSION* session)
{
    if (session == nullptr) {
        return Refusal::NullArgument;
    }
    if (FindSession(HandleKind::Parameter, param) == nullptr) {
        return Refusal::UnknownHandle;
    }
    return Guarded([&] { return OpenSubscriptionSession(control, session); });
}

uint32_t OrmSubscribe(ORM_SESSION session, const char* name, const char* definition,
                      ORM_SUB_CALLBACK callback, void* /*argument*/, const char* owner)
{
    if (AnyNull(name, definition, owner) || callback == nullptr) {
        return Refusal::NullArgument;
    }
    const auto subscribe = [=](Session& open) -> uint32_t {
        const auto parsed = ParseDefinition(definition);
        if (!parsed) {
            return Refusal::BadDefinition;
        }
        open.subscriber->Subscribe(*parsed, callback);
        return ORM_OK;
    };
    return OnSession(session, subscribe, HandleKind::Subscription);
}

uint32_t OrmSubFetchNext(ORM_MESSAGE message, uint8_t* end)
{
    if (end == nullptr) {
        return Refusal::NullArgument;
    }
    const auto fetch = [=](Session& open) -> uint32_t {
        const size_t rows = open.delivery->changes.size();
        open.current.Clear();
        open.fetched = std::min(open.fetched + 1, rows + 1);
        if (open.fetched > rows) {
            *end = 1;
        }
        return ORM_OK;
    };
    return OnSession(message, fetch, HandleKind::Message);
}

uint32_t OrmSubExtractData(ORM_MESSAGE message, uint32_t object, uint32_t flags)
{
    if (object > ORM_OBJECT_NEW || flags != 0) {
        return Refusal::UnknownMode;
    }
    const auto select = [=](Session& open) { return SelectObject(open, object); };
    return OnSession(message, select, HandleKind::Message);
}

uint32_t DbcHandleEvent(int32_t descriptor)
{
    return Guarded([=]() -> uint32_t {
        const auto subscriber = Subscriber::Find(descriptor);
        return subscriber == nullptr ? Refusal::UnknownDescriptor : subscriber->Dispatch();
    });
}
