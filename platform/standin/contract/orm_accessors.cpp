// The contract's accessors, one short family for each table.
#include "tarnd_platform/orm_accessors.h"

#include <cstring>

#include "contract/contract_call.h"
#include "store/reader_writer_lock.h"

using namespace standin;

namespace {

constexpr char IF_BASE[] = "if_base";
constexpr char IF_PHY[] = "if_phy";
constexpr char IF_LINK[] = "if_link";
constexpr char IF_ROUTE[] = "if_route";
constexpr char PORT[] = "port";
constexpr char VLAN[] = "vlan";
constexpr char AM_IPV4_ADDRESS[] = "am_ipv4_address";
constexpr char ACL_GROUP_ID[] = "acl_group_id";
constexpr char QOS_INTEGRATION[] = "qos_integration";

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
    const ReadGuard guard;
    const StoredRow* row = store.Find(0, static_cast<const uint8_t*>(key));
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
    return OnCurrentRow(session, [&](const CurrentRow& current) -> uint32_t {
        if (&current.Description() != &store.Description()) {
            return Refusal::WrongOrder;
        }
        if (recordLength != store.Description().recordSize) {
            return Refusal::WrongSize;
        }
        std::memcpy(record, current.Row().Record(), recordLength);
        return ORM_OK;
    });
}

uint32_t SetKey(const TableStore& store, ORM_SESSION session, std::string_view name,
                const void* key, uint32_t keyLength)
{
    if (key == nullptr) {
        return Refusal::NullArgument;
    }
    return OnSessionIn(SessionState::Read, session, [&](Session& open) -> uint32_t {
        return open.store == &store ? open.key.SetWhole(name, key, keyLength) : Refusal::WrongOrder;
    });
}

// The store of a table, looked up once.
template <const auto& name>
const TableStore& StoreNamed()
{
    static const TableStore& store = *FindStore(name);
    return store;
}

}  // namespace

uint32_t OrmgIfBaseReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength)
{
    return ReadOne(StoreNamed<IF_BASE>(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfBaseGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(StoreNamed<IF_BASE>(), session, record, recordLength);
}

uint32_t OrmgIfBaseSetKeyLocalKeyInner(ORM_SESSION session, const void* key, uint32_t keyLength)
{
    return SetKey(StoreNamed<IF_BASE>(), session, "local_key", key, keyLength);
}

uint32_t OrmgIfPhyReadInner(const void* key, uint32_t keyLength, void* record,
                            uint32_t recordLength)
{
    return ReadOne(StoreNamed<IF_PHY>(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfPhyGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(StoreNamed<IF_PHY>(), session, record, recordLength);
}

uint32_t OrmgIfLinkReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength)
{
    return ReadOne(StoreNamed<IF_LINK>(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfRouteReadInner(const void* key, uint32_t keyLength, void* record,
                              uint32_t recordLength)
{
    return ReadOne(StoreNamed<IF_ROUTE>(), key, keyLength, record, recordLength);
}

uint32_t OrmgIfRouteGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(StoreNamed<IF_ROUTE>(), session, record, recordLength);
}

uint32_t OrmgPortReadInner(const void* key, uint32_t keyLength, void* record, uint32_t recordLength)
{
    return ReadOne(StoreNamed<PORT>(), key, keyLength, record, recordLength);
}

uint32_t OrmgPortGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(StoreNamed<PORT>(), session, record, recordLength);
}

uint32_t OrmgVlanReadInner(const void* key, uint32_t keyLength, void* record, uint32_t recordLength)
{
    return ReadOne(StoreNamed<VLAN>(), key, keyLength, record, recordLength);
}

uint32_t OrmgVlanGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength)
{
    return CopyCurrent(StoreNamed<VLAN>(), session, record, recordLength);
}

uint32_t OrmgAmIpv4AddressSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                uint32_t keyLength)
{
    return SetKey(StoreNamed<AM_IPV4_ADDRESS>(), session, "primary_key", key, keyLength);
}

uint32_t OrmgQosIntegrationSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                 uint32_t keyLength)
{
    return SetKey(StoreNamed<QOS_INTEGRATION>(), session, "primary_key", key, keyLength);
}

// Names of ACL groups are passed by address: the key has a pointer to the text, the record a buffer
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

constexpr uint32_t GROUP_NAME_WIDTH = 65;

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
    if (given.name == nullptr || strnlen(given.name, GROUP_NAME_WIDTH) == GROUP_NAME_WIDTH) {
        return Refusal::BadKeyValue;
    }
    char stored[GROUP_NAME_WIDTH + sizeof(given.kind)] = {};
    std::memcpy(stored, given.name, strnlen(given.name, GROUP_NAME_WIDTH));
    std::memcpy(stored + GROUP_NAME_WIDTH, &given.kind, sizeof(given.kind));
    return SetKey(StoreNamed<ACL_GROUP_ID>(), session, "primary_key", stored, sizeof(stored));
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
    return OnCurrentRow(session, [&](const CurrentRow& current) -> uint32_t {
        const Table& table = StoreNamed<ACL_GROUP_ID>().Description();
        if (&current.Description() != &table) {
            return Refusal::WrongOrder;
        }
        const Field& field = *FindField(table.fields, "name");
        const auto* name = reinterpret_cast<const char*>(current.Row().Record() + field.offset);
        const size_t size = strnlen(name, GROUP_NAME_WIDTH - 1) + 1;
        if (size > given.capacity) {
            return Refusal::WrongSize;
        }
        std::memcpy(given.name, name, size);
        return ORM_OK;
    });
}
