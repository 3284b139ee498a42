// The number of an ACL's rules: its group, then a scan of "acl_adv" or "acl_rule_id" for that.
#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/acl.h>

#include "acl/condition.h"
#include "db/access.h"

using namespace qrb;

namespace {

uint32_t StartScan(const char* function, ORM_SESSION session, const char* table,
                   const char* condition, ORM_SCAN* scan)
{
    uint32_t ret = OrmPrepare(session, table, QRB_ORM_OP_SCAN);
    if (ret != OK) {
        QRB_ERROR_AT(function, "DB error: %d\n", ret);
        return FAIL;
    }
    ret = OrmSetScanCond(session, condition);
    if (ret != OK) {
        QRB_ERROR_AT(function, "OrmSetScanCond failed, ret = %d\n", ret);
        return FAIL;
    }
    ret = OrmScanStart(session, scan);
    if (ret != OK) {
        QRB_ERROR_AT(function, "OrmScanStart failed, ret = %d\n", ret);
        return FAIL;
    }
    return OK;
}

// Adds the matching records to *count. An error in the middle ends the counting like the end of
// the table.
uint32_t CountRecords(const char* function, const char* table, const char* condition,
                      uint32_t* count)
{
    ORM_SESSION    session = 0;
    const uint32_t opened  = OrmOpenSessionByDefault(&session);
    if (opened != OK) {
        QRB_ERROR_AT(function, "Failed to fetch DB, ret=%d\n", opened);
        return FAIL;
    }
    ORM_SCAN       scan    = 0;
    const uint32_t started = StartScan(function, session, table, condition, &scan);
    if (started == OK) {
        uint8_t end = 0;
        while (OrmScanNext(session, scan, &end) == OK && end == 0) {
            (*count)++;
        }
        OrmScanEnd(session, scan);
    }
    OrmCloseSession(session);
    return started;
}

}  // namespace

uint32_t ACL_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count)
{
    uint32_t groupId = 0;
    if (ACL_IsACLNodeExistByNumber(vsid, vsysid, aclNumber, &groupId) == 0) {
        return FAIL;
    }
    char condition[ACL_CONDITION_SIZE];
    if (sprintf_s(condition, sizeof(condition), "acl_group_id = %u", groupId) <= 0) {
        QRB_ERROR("sprintf_s failed\n");
        return FAIL;
    }
    return CountRecords(__func__, "acl_adv", condition, count);
}

uint32_t ACLIPv6_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count)
{
    uint32_t groupId = 0;
    if (ACLIPv6_IsACLNodeExistByNumber(vsid, vsysid, aclNumber, &groupId) != 1) {
        return FAIL;
    }
    char condition[ACL_CONDITION_SIZE];
    if (sprintf_s(condition, sizeof(condition), "groupId = %u", groupId) <= 0) {
        QRB_ERROR("sprintf_s failed\n");
        return FAIL;
    }
    return CountRecords(__func__, "acl_rule_id", condition, count);
}
