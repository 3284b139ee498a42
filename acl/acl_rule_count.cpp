// The number of an ACL's rules: its group, then a scan of "acl_adv" or "acl_rule_id" for that.
#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/acl.h>

#include "acl/condition.h"
#include "db/access.h"

using namespace qrb;

namespace {

// Adds the matching records to *count. An error in the middle ends the counting like the end of
// the table.
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
    while (OrmScanNext(session, scan, &end) == OK && end == 0) {
        (*count)++;
    }
    OrmScanEnd(session, scan);
    return OK;
}

// The same in a session of its own. What CountMatches reports is not reported again.
uint32_t CountRecords(const char* function, const char* table, const char* condition,
                      uint32_t* count)
{
    uint32_t counted = FAIL;
    InSession(function, IGNORED, [&](ORM_SESSION session) -> uint32_t {
        QRB_TRY(OrmPrepare(session, table, QRB_ORM_OP_SCAN));
        counted = CountMatches(function, session, condition, count);
        return OK;
    });
    return counted;
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
