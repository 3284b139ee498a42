// Existence, names, numbers and rule counts of ACLs: "acl_group" holds the ACLs, "acl_group_id"
// their names, "acl_adv" (IPv4) and "acl_rule_id" (IPv6) their rules.
#include <tarnd_platform/bounded.h>
#include <tarnd_platform/orm_accessors.h>
#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/records.h>

#include "db/access.h"

using namespace qrb;

namespace {

constexpr uint32_t EXISTS = 1;
constexpr uint32_t ABSENT = 0;

constexpr uint32_t IPV4 = 0;  // values of the field "isipv6"
constexpr uint32_t IPV6 = 1;

// Sizes of a condition and its terminating NUL. A longer condition is a failure.
constexpr size_t CONDITION_SIZE = 64;
constexpr size_t WIDE_CONDITION_SIZE = 128;

// Selects an ACL in "acl_group".
struct ACL_S {
    uint16_t vsid;
    uint16_t vsysid;
    uint32_t number;
    const char* name;  // null: selected by number
    uint32_t isIpv6;
};

// Returns false if the condition does not fit.
bool FormatCondition(const ACL_S& acl, char* condition, size_t size)
{
    if (acl.name != nullptr) {
        return sprintf_s(condition, size,
                         "vsid = %u and vsysid = %u and acl_name = %s and isipv6 = %u", acl.vsid,
                         acl.vsysid, acl.name, acl.isIpv6) > 0;
    }
    return sprintf_s(condition, size,
                     "vsid = %u and vsysid = %u and acl_number = %u and isipv6 = %u", acl.vsid,
                     acl.vsysid, acl.number, acl.isIpv6) > 0;
}

// Reads the id of the first group that matches. *matches receives 1 if there is one, else 0.
uint32_t FindGroup(const char* condition, uint32_t* groupId, uint32_t* matches)
{
    *matches = 0;
    return QRB_DB_Scan("acl_group", groupId, 1, ACL_DB_ScanAclGroupId, matches, condition, nullptr);
}

// EXISTS means only that the condition fits and the scan ran, for three of the four existence
// checks.
uint32_t CheckScanned(const ACL_S& acl, size_t capacity, uint32_t* groupId)
{
    char condition[WIDE_CONDITION_SIZE];
    uint32_t matches = 0;
    const bool scanned =
        FormatCondition(acl, condition, capacity) && FindGroup(condition, groupId, &matches) == OK;
    return scanned ? EXISTS : ABSENT;
}

constexpr char GROUP_ID_TABLE[] = "acl_group_id";
constexpr uint32_t FIELD_ACL_NUMBER = 5;

// Output record of OrmgAclGroupIdGetAllFieldsInner, which copies the name to a caller's buffer.
struct QRB_PACKED ACL_GROUP_ID_FIELDS_S {
    uint32_t nameCapacity;
    char* name;
    uint8_t reserved_12[17];
};
QRB_RECORD_SIZE(ACL_GROUP_ID_FIELDS_S, 29);
QRB_FIELD_AT(ACL_GROUP_ID_FIELDS_S, nameCapacity, 0, 4);
QRB_FIELD_AT(ACL_GROUP_ID_FIELDS_S, name, 4, 8);

// Primary key of "acl_group_id".
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

// Adds the number of matching records to *count. A failing advance ends the count as the end of the
// table does.
uint32_t CountMatches(const char* function, ORM_SESSION session, const char* condition,
                      uint32_t* count)
{
    uint32_t ret = OrmSetScanCond(session, condition);
    if (ret != OK) {
        QRB_ERROR_AT(function, "OrmSetScanCond failed, ret = %d\n", ret);
        return FAIL;
    }
    ORM_SCAN scan = 0;
    ret = OrmScanStart(session, &scan);
    if (ret != OK) {
        QRB_ERROR_AT(function, "OrmScanStart failed, ret = %d\n", ret);
        return FAIL;
    }
    uint8_t end = 0;
    while (NextRow(session, scan, &end, &ret)) {
        (*count)++;
    }
    OrmScanEnd(session, scan);
    return OK;
}

// CountMatches in a session of its own. A failing close is ignored.
uint32_t CountRecords(const char* function, const char* table, const char* condition,
                      uint32_t* count)
{
    ORM_SESSION session = 0;
    uint32_t ret = OrmOpenSessionByDefault(&session);
    if (ret != OK) {
        QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", ret);
        return FAIL;
    }
    ret = OrmPrepare(session, table, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        OrmCloseSession(session);
        QRB_ERROR_AT(function, "DB error: %d\n", ret);
        return FAIL;
    }
    ret = CountMatches(function, session, condition, count);
    OrmCloseSession(session);
    return ret;
}

}  // namespace

uint32_t ACL_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                    uint32_t* groupId)
{
    char condition[CONDITION_SIZE];
    if (!FormatCondition({vsid, vsysid, aclNumber, nullptr, IPV4}, condition, sizeof(condition))) {
        return ABSENT;
    }
    uint32_t matches = 0;
    const uint32_t ret = FindGroup(condition, groupId, &matches);
    if (ret != OK || matches == 0) {
        QRB_ERROR("QRB_DB_Scan failed, ret = %u\n", ret);
        return ABSENT;
    }
    return EXISTS;
}

uint32_t ACLIPv6_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                        uint32_t* groupId)
{
    if (groupId == nullptr) {
        return ABSENT;
    }
    return CheckScanned({vsid, vsysid, aclNumber, nullptr, IPV6}, WIDE_CONDITION_SIZE, groupId);
}

uint32_t ACL_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                     uint32_t* groupId)
{
    return CheckScanned({vsid, vsysid, aclNumber, name, IPV4}, CONDITION_SIZE, groupId);
}

uint32_t ACLIPv6_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                         uint32_t* groupId)
{
    return CheckScanned({vsid, vsysid, aclNumber, name, IPV6}, CONDITION_SIZE, groupId);
}

uint32_t ACL_DB_ScanAclGroupId(ORM_SESSION session, void* groupId, uint32_t /*index*/)
{
    constexpr uint32_t FIELD_GROUP_ID = 0;
    return ReadField(session, FIELD_GROUP_ID, static_cast<uint32_t*>(groupId));
}

uint32_t ACL_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count)
{
    uint32_t groupId = 0;
    if (ACL_IsACLNodeExistByNumber(vsid, vsysid, aclNumber, &groupId) != EXISTS) {
        return FAIL;
    }
    char condition[CONDITION_SIZE];
    if (sprintf_s(condition, sizeof(condition), "acl_group_id = %u", groupId) <= 0) {
        QRB_ERROR("sprintf_s failed\n");
        return FAIL;
    }
    return CountRecords(__func__, "acl_adv", condition, count);
}

uint32_t ACLIPv6_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count)
{
    uint32_t groupId = 0;
    if (ACLIPv6_IsACLNodeExistByNumber(vsid, vsysid, aclNumber, &groupId) != EXISTS) {
        return FAIL;
    }
    char condition[CONDITION_SIZE];
    if (sprintf_s(condition, sizeof(condition), "groupId = %u", groupId) <= 0) {
        QRB_ERROR("sprintf_s failed\n");
        return FAIL;
    }
    return CountRecords(__func__, "acl_rule_id", condition, count);
}

uint32_t ACL_GetNameByGroupId(uint32_t groupId, char* name)
{
    char condition[CONDITION_SIZE];
    if (sprintf_s(condition, sizeof(condition), "id = %u", groupId) <= 0) {
        return FAIL;
    }
    uint32_t count = 0;
    const uint32_t ret = QRB_DB_Scan(GROUP_ID_TABLE, name, 1, ReadName, &count, condition, nullptr);
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
    return QRB_DB_Get(GROUP_ID_TABLE, &key, aclNumber, SetKey, ReadNumber) == OK ? OK : FAIL;
}
