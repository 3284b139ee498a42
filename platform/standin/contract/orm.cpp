// The contract's sessions, keyed reads and scans.
#include "tarnd_platform/orm.h"

#include "contract/contract_call.h"
#include "notify/subscriber.h"
#include "store/reader_writer_lock.h"

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

uint32_t OrmCloseSession(ORM_SESSION session)
{
    const bool isSubscription = KindOf(session) == HandleKind::Subscription;
    const auto close = [](Session& open) -> uint32_t {
        const auto subscriber = std::exchange(open.subscriber, nullptr);
        CloseSession(open);
        if (subscriber != nullptr) {
            subscriber->Close();
        }
        return ORM_OK;
    };
    return OnSession(session, close,
                     isSubscription ? HandleKind::Subscription : HandleKind::Session);
}

uint32_t OrmPrepare(ORM_SESSION session, const char* table, uint32_t operation)
{
    if (table == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSession(session, [=](Session& open) -> uint32_t {
        if (open.state == SessionState::Scanning) {
            return Refusal::WrongOrder;
        }
        if (operation != QRB_ORM_OP_READ && operation != QRB_ORM_OP_SCAN) {
            return Refusal::UnknownMode;
        }
        const TableStore* store = FindStore(table);
        if (store == nullptr) {
            return Refusal::UnknownTable;
        }
        open.current.Clear();
        open.condition.Clear();
        open.key.Prepare(*store);
        open.store = store;
        open.state = operation == QRB_ORM_OP_READ ? SessionState::Read : SessionState::Scan;
        return ORM_OK;
    });
}

uint32_t OrmSetKeyName(ORM_SESSION session, const char* key)
{
    if (key == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSessionIn(SessionState::Read, session,
                       [=](Session& open) { return open.key.Choose(key); });
}

uint32_t OrmSetIndexKeyValue(ORM_SESSION session, uint32_t member, uint32_t valueType,
                             const void* value, uint32_t valueSize)
{
    if (value == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSessionIn(SessionState::Read, session, [=](Session& open) {
        return open.key.SetMember(member, valueType, value, valueSize);
    });
}

uint32_t OrmExecute(ORM_SESSION session)
{
    return OnSessionIn(SessionState::Read, session, [](Session& open) -> uint32_t {
        if (!open.key.IsComplete()) {
            return Refusal::WrongOrder;
        }
        open.current.Clear();
        const ReadGuard guard;
        const StoredRow* row = open.key.Find();
        if (row == nullptr) {
            return ORM_NO_RECORD;
        }
        open.current.Set(*open.store, RowReference(*row));
        return ORM_OK;
    });
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
    return OnSessionIn(SessionState::Scan, session, [=](Session& open) -> uint32_t {
        auto parsed = ScanCondition::Parse(open.store->Description(), condition);
        if (!parsed) {
            return Refusal::BadCondition;
        }
        open.condition = std::move(*parsed);
        return ORM_OK;
    });
}

uint32_t OrmScanStart(ORM_SESSION session, ORM_SCAN* scan)
{
    if (scan == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSessionIn(SessionState::Scan, session, [=](Session& open) -> uint32_t {
        open.scan.Start(*open.store, open.condition);
        open.state = SessionState::Scanning;
        open.scanHandle = MakeHandle(HandleKind::Scan, open.number, ++open.uses);
        *scan = open.scanHandle;
        return ORM_OK;
    });
}

uint32_t OrmScanNext(ORM_SESSION session, ORM_SCAN scan, uint8_t* end)
{
    if (end == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSession(session, [=](Session& open) -> uint32_t {
        if (open.state != SessionState::Scanning || open.scanHandle != scan) {
            return Refusal::UnknownHandle;
        }
        RowReference row = open.scan.Next();
        if (row) {
            open.current.Set(*open.store, std::move(row));
        } else {
            open.current.Clear();
            *end = 1;
        }
        return ORM_OK;
    });
}

uint32_t OrmScanEnd(ORM_SESSION session, ORM_SCAN scan)
{
    return OnSession(session, [=](Session& open) -> uint32_t {
        if (open.state != SessionState::Scanning || open.scanHandle != scan) {
            return Refusal::UnknownHandle;
        }
        open.scan.Stop();
        open.current.Clear();
        open.state = SessionState::Scan;
        return ORM_OK;
    });
}
