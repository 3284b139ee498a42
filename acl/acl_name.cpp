// Between names, group ids and ACL numbers: a scan and a keyed read of "acl_group_id".
#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/records.h>

#include "acl/condition.h"
#include "db/access.h"

using namespace qrb;

namespace {

constexpr char TABLE[] = "acl_group_id";
constexpr uint32_t FIELD_ACL_NUMBER = 5;

// Where the accessor of the whole record puts the name.
struct QRB_PACKED ACL_GROUP_ID_FIELDS_S {
    uint32_t nameCapacity;
    char* name;
    uint8_t reserved_12[17];
};
QRB_RECORD_SIZE(ACL_GROUP_ID_FIELDS_S, 29);
QRB_FIELD_AT(ACL_GROUP_ID_FIELDS_S, nameCapacity, 0, 4);
QRB_FIELD_AT(ACL_GROUP_ID_FIELDS_S, name, 4, 8);

// The primary key.
struct QRB_PACKED ACL_GROUP_ID_KEY_S {
    const char* name;
    uint8_t kind;
};
QRB_RECORD_SIZE(ACL_GROUP_ID_KEY_S, 9);
QRB_FIELD_AT(ACL_GROUP_ID_KEY_S, name, 0, 8);
QRB_FIELD_AT(ACL_GROUP_ID_KEY_S, kind, 8, 1);

uint32_t ReadName(ORM_SESSION session, void* name, uint32_t /*index*/)
{
    ACL_GROUP_ID_FIELDS_S fields = {ACL_GROUP_NAME_SIZE, static_cast<char*>(name), {}};
    return OrmgAclGroupIdGetAllFieldsInner(session, &fields, sizeof(fields));
}

uint32_t SetKey(ORM_SESSION session, const void* key)
{
    return OrmgAclGroupIdSetKeyPrimaryKeyInner(session, key, sizeof(ACL_GROUP_ID_KEY_S));
}

uint32_t ReadNumber(ORM_SESSION session, void* aclNumber)
{
    return ReadField(session, FIELD_ACL_NUMBER, static_cast<uint32_t*>(aclNumber));
}

}  // namespace

uint32_t ACL_GetNameByGroupId(uint32_t groupId, char* name)
{
    char condition[ACL_CONDITION_SIZE];
    if (sprintf_s(condition, sizeof(condition), "id = %u", groupId) <= 0) {
        return FAIL;
    }
    uint32_t count = 0;
    const uint32_t ret = QRB_DB_Scan(TABLE, name, 1, ReadName, &count, condition, nullptr);
    if (ret != OK || count == 0) {
        QRB_ERROR("QRB_DB_Scan failed, ret = %u\n", ret);
        return FAIL;
    }
    return OK;
}

uint32_t ACLIPv6_GetNameByGroupId(uint32_t groupId, char* name)
{
    return ACL_GetNameByGroupId(groupId, name);
}

uint32_t BDS_AclGetAclNumberByName(const char* name, uint8_t kind, uint32_t, uint32_t,
                                   uint32_t* aclNumber)
{
    const ACL_GROUP_ID_KEY_S key = {name, kind};
    return QRB_DB_Get(TABLE, &key, aclNumber, SetKey, ReadNumber) == OK ? OK : FAIL;
}
