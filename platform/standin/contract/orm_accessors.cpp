// The contract's accessors, one short family for each table.
#include "tarnd_platform/orm_accessors.h"

#include <cstring>

#include "contract/contract_call.h"
#include "store/gate.h"

using namespace standin;

namespace {

uint32_t ReadOne(const TableStore& store, const void* key, uint32_t keyLength, void* record,
                 uint32_t recordLength)
{
    const Table& table = store.Description();
    if (AnyNull(key, record)) {
        return Refusal::NullArgument;
    }
    if (keyLength != table.keys.front().width || recordLength != table.recordSize) {
        return Refusal::WrongSize;
    }
    const Inside inside;
    const StoredRow* row = store.Find(0, key);
    if (row == nullptr) {
        return ORM_NO_RECORD;
    }
    std::memcpy(record, row->Record(), recordLength);
    return ORM_OK;
}

uint32_t CopyCurrent(const TableStore& store, ORM_SESSION session, void* record,
                     uint32_t recordLength)
{
    if (record == nullptr) {
        return Refusal::NullArgument;
    }
    return OnPosition(session, [&](const CurrentRow& position) -> uint32_t {
        if (!position.IsOn(store.Description())) {
            return Refusal::WrongOrder;
        }
        if (recordLength != store.Description().recordSize) {
            return Refusal::WrongSize;
        }
        std::memcpy(record, position.Row()->Record(), recordLength);
        return ORM_OK;
    });
}

uint32_t SetKey(const TableStore& store, ORM_SESSION session, std::string_view name,
                const void* key, uint32_t keyLength)
{
    if (key == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSession(session, [&](Session& open) -> uint32_t {
        ReadKey* read = open.Key();
        return read == nullptr || !read->IsOf(store) ? Refusal::WrongOrder
                                                     : read->SetWholeKey(name, key, keyLength);
    });
}

const TableStore& IfBase()
{
    static const TableStore& store = *FindStore("if_base");
    return store;
}

const TableStore& IfPhy()
{
    static const TableStore& store = *FindStore("if_phy");
    return store;
}

const TableStore& IfLink()
{
    static const TableStore& store = *FindStore("if_link");
    return store;
}

const TableStore& IfRoute()
{
    static const TableStore& store = *FindStore("if_route");
    return store;
}

const TableStore& Port()
{
    static const TableStore& store = *FindStore("port");
    return store;
}

const TableStore& Vlan()
{
    static const TableStore& store = *FindStore("vlan");
    return store;
}

const TableStore& AmIpv4Address()
{
    static const TableStore& store = *FindStore("am_ipv4_address");
    return store;
}

const TableStore& AclGroupId()
{
    static const TableStore& store = *FindStore("acl_group_id");
    return store;
}

const TableStore& QosIntegration()
{
    static const TableStore& store = *FindStore("qos_integration");
    return store;
}

}  // namespace

uint32_t OrmgIfBaseReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength)
{
    return ReadOne(IfBase(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfBaseGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(IfBase(), session, record, recordLength);
}

uint32_t OrmgIfBaseSetKeyLocalKeyInner(ORM_SESSION session, const void* key, uint32_t keyLength)
{
    return SetKey(IfBase(), session, "local_key", key, keyLength);
}

uint32_t OrmgIfPhyReadInner(const void* key, uint32_t keyLength, void* record,
                            uint32_t recordLength)
{
    return ReadOne(IfPhy(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfPhyGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(IfPhy(), session, record, recordLength);
}

uint32_t OrmgIfLinkReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength)
{
    return ReadOne(IfLink(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfRouteReadInner(const void* key, uint32_t keyLength, void* record,
                              uint32_t recordLength)
{
    return ReadOne(IfRoute(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfRouteGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(IfRoute(), session, record, recordLength);
}

uint32_t OrmgPortReadInner(const void* key, uint32_t keyLength, void* record, uint32_t recordLength)
{
    return ReadOne(Port(), key, keyLength, record, recordLength);
}

uint32_t OrmgPortGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(Port(), session, record, recordLength);
}

uint32_t OrmgVlanReadInner(const void* key, uint32_t keyLength, void* record, uint32_t recordLength)
{
    return ReadOne(Vlan(), key, keyLength, record, recordLength);
}

uint32_t OrmgVlanGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(Vlan(), session, record, recordLength);
}

uint32_t OrmgAmIpv4AddressSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                uint32_t keyLength)
{
    return SetKey(AmIpv4Address(), session, "primary_key", key, keyLength);
}

uint32_t OrmgQosIntegrationSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                 uint32_t keyLength)
{
    return SetKey(QosIntegration(), session, "primary_key", key, keyLength);
}

// The names of ACL groups are handed over by address: in the key the text, in the record a buffer
// and its capacity.
namespace {

struct [[gnu::packed]] GroupKey {
    const char* name;
    uint8_t kind;
};

struct [[gnu::packed]] GroupRecord {
    uint32_t capacity;
    char* name;
    uint8_t untouched[17];
};

constexpr uint32_t groupNameWidth = 65;

}  // namespace

uint32_t OrmgAclGroupIdSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                             uint32_t keyLength)
{
    if (key == nullptr) {
        return Refusal::NullArgument;
    }
    if (keyLength != sizeof(GroupKey)) {
        return Refusal::WrongSize;
    }
    GroupKey given;
    std::memcpy(&given, key, sizeof(given));
    if (given.name == nullptr || strnlen(given.name, groupNameWidth) == groupNameWidth) {
        return Refusal::BadKeyValue;
    }
    char stored[groupNameWidth + sizeof(given.kind)] = {};
    std::memcpy(stored, given.name, strnlen(given.name, groupNameWidth));
    std::memcpy(stored + groupNameWidth, &given.kind, sizeof(given.kind));
    return SetKey(AclGroupId(), session, "primary_key", stored, sizeof(stored));
}

uint32_t OrmgAclGroupIdGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    if (record == nullptr) {
        return Refusal::NullArgument;
    }
    if (recordLength != sizeof(GroupRecord)) {
        return Refusal::WrongSize;
    }
    GroupRecord given;
    std::memcpy(&given, record, sizeof(given));
    if (given.name == nullptr) {
        return Refusal::NullArgument;
    }
    return OnPosition(session, [&](const CurrentRow& position) -> uint32_t {
        char name[groupNameWidth];
        if (!position.IsOn(AclGroupId().Description())) {
            return Refusal::WrongOrder;
        }
        const uint32_t read = position.CopyField("name", name, sizeof(name));
        const size_t size = strnlen(name, sizeof(name) - 1) + 1;
        if (read != ORM_OK || size > given.capacity) {
            return Refusal::WrongSize;
        }
        std::memcpy(given.name, name, size);
        return ORM_OK;
    });
}
