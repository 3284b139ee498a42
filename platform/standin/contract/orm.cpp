// The contract's sessions, keyed reads and scans.
#include "tarnd_platform/orm.h"

#include "contract/contract_call.h"
#include "notify/subscriber.h"

using namespace standin;

uint32_t OrmInit(uint32_t mode, uint32_t option)
{
    return mode == 1 && option == 0 ? ORM_OK : Refusal::UnknownMode;
}

uint32_t OrmOpenSessionByDefault(ORM_SESSION* session)
{
    if (session == nullptr) {
        return Refusal::NullArgument;
    }
    return OpenSession(HandleKind::Session, session) != nullptr ? ORM_OK : Refusal::OutOfResources;
}

namespace {

uint32_t CloseSubscriptionSession(ORM_SESSION handle)
{
    Session* session = FindSession(HandleKind::Subscription, handle);
    if (session == nullptr) {
        return Refusal::UnknownHandle;
    }
    const auto subscriber = std::exchange(session->subscriber, nullptr);
    CloseSession(*session);
    subscriber->Close();
    return ORM_OK;
}

}  // namespace

uint32_t OrmCloseSession(ORM_SESSION session)
{
    if (KindOf(session) == HandleKind::Subscription) {
        return CloseSubscriptionSession(session);
    }
    return OnSession(session, [](Session& open) -> uint32_t {
        CloseSession(open);
        return ORM_OK;
    });
}

uint32_t OrmPrepare(ORM_SESSION session, const char* table, uint32_t operation)
{
    if (table == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSession(session, [=](Session& open) { return open.Prepare(table, operation); });
}

namespace {

template <typename Action>
uint32_t OnKey(ORM_SESSION session, Action action)
{
    return OnSession(session, [&](Session& open) -> uint32_t {
        ReadKey* key = open.Key();
        return key == nullptr ? Refusal::WrongOrder : action(*key);
    });
}

}  // namespace

uint32_t OrmSetKeyName(ORM_SESSION session, const char* key)
{
    if (key == nullptr) {
        return Refusal::NullArgument;
    }
    return OnKey(session, [=](ReadKey& read) { return read.ChooseKey(key); });
}

uint32_t OrmSetIndexKeyValue(ORM_SESSION session, uint32_t member, uint32_t valueType,
                             const void* value, uint32_t valueSize)
{
    if (value == nullptr) {
        return Refusal::NullArgument;
    }
    return OnKey(session, [=](ReadKey& read) {
        return read.SetMember(member, valueType, value, valueSize);
    });
}

uint32_t OrmExecute(ORM_SESSION session)
{
    return OnSession(session, [](Session& open) { return open.Execute(); });
}

uint32_t OrmGetField(ORM_SESSION session, const char* field, void* destination, uint32_t size)
{
    if (AnyNull(field, destination)) {
        return Refusal::NullArgument;
    }
    return OnCurrentRow(session, [=](const CurrentRow& current) {
        const Field* found = FindField(current.Description().fields, field);
        return CopyField(found, current.Row().Record(), destination, size);
    });
}

uint32_t OrmGetFieldById(ORM_SESSION session, uint32_t field, void* destination, uint32_t size)
{
    if (destination == nullptr) {
        return Refusal::NullArgument;
    }
    return OnCurrentRow(session, [=](const CurrentRow& current) {
        const Field* found = FieldOfNumber(current.Description().fields, field);
        return CopyField(found, current.Row().Record(), destination, size);
    });
}

uint32_t OrmSetScanCond(ORM_SESSION session, const char* condition)
{
    if (condition == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSession(session, [=](Session& open) {
        return Guarded([&] { return open.SetCondition(condition); });
    });
}

uint32_t OrmScanStart(ORM_SESSION session, ORM_SCAN* scan)
{
    if (scan == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSession(session, [=](Session& open) { return open.StartScan(scan); });
}

uint32_t OrmScanNext(ORM_SESSION session, ORM_SCAN scan, uint8_t* end)
{
    if (end == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSession(session, [=](Session& open) { return open.MoveToNext(scan, end); });
}

uint32_t OrmScanEnd(ORM_SESSION session, ORM_SCAN scan)
{
    return OnSession(session, [=](Session& open) { return open.EndScan(scan); });
}
