/**
 * @file
 * @brief Access control lists: existence, group id, name, number and rule count.
 *
 * An ACL belongs to a virtual system (vsid, vsysid) and a family (IPv4 or IPv6), and has a number,
 * a name or both. Tables: "acl_group" has a record for each ACL with its group id, "acl_group_id"
 * the name and number of each group, "acl_adv" the IPv4 rules and "acl_rule_id" the IPv6 rules.
 *
 * Of the four existence checks, only ACL_IsACLNodeExistByNumber() reports whether the ACL exists.
 * The other three report only that the scan ran; whether it found the ACL shows in the group id.
 *
 * @par Scan conditions
 * Numbers and names are formatted into a scan condition of at most 63 characters. If it does not
 * fit, the function fails without a log line. A lookup by name has room for 11 characters: the
 * digits of vsid and vsysid, and the name. A lookup by number has room for 9: the digits of vsid,
 * vsysid and the ACL number. ACLIPv6_IsACLNodeExistByNumber() has a longer condition, which fits
 * any number.
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * Any thread may call any function. No state is kept between calls.
 * @par Log
 * Priority 3, unless a function's description names another priority.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ACL_GROUP_NAME_SIZE 65u /**< Size of a group name buffer in bytes, NUL included. */

/**
 * Checks whether an IPv4 ACL with a number exists, and reads its group id.
 *
 * @param[in]  vsid       first number of the virtual system
 * @param[in]  vsysid     second number of the virtual system
 * @param[in]  aclNumber  ACL number
 * @param[out] groupId    group id
 *
 * @retval 1  the ACL exists
 * @retval 0  no such ACL, a step failed, or the numbers do not fit the scan condition
 *
 * @par After a failure
 * groupId is unchanged. If only ending the scan or closing the session failed, it is written.
 * @par Log
 * No such ACL; each failing database step. Numbers that do not fit are not logged.
 * @par Source
 * "acl_group", field 0, of the first record with this vsid, vsysid and acl_number and isipv6 0.
 */
uint32_t ACL_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                    uint32_t* groupId);

/**
 * Looks up the group id of an IPv6 ACL by number. Does not report whether the ACL exists.
 *
 * @param[in]  vsid       first number of the virtual system
 * @param[in]  vsysid     second number of the virtual system
 * @param[in]  aclNumber  ACL number
 * @param[out] groupId    group id; written only if the ACL is found; null is refused, without a log
 *                        line
 *
 * @retval 1  the scan ran, whether or not it found the ACL
 * @retval 0  groupId is null, or a step failed
 *
 * @par After a failure
 * groupId is unchanged. If only ending the scan or closing the session failed, it is written if the
 * ACL was found.
 * @par Log
 * Each failing database step. An ACL that is not found is not logged.
 * @par Source
 * "acl_group", field 0, of the first record with this vsid, vsysid and acl_number and isipv6 1.
 */
uint32_t ACLIPv6_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                        uint32_t* groupId);

/**
 * Looks up the group id of an IPv4 ACL by name or number. Does not report whether the ACL exists.
 *
 * @param[in]  vsid       first number of the virtual system
 * @param[in]  vsysid     second number of the virtual system
 * @param[in]  aclNumber  ACL number; used only if name is null
 * @param[in]  name       ACL name; null selects the lookup by number
 * @param[out] groupId    group id; written only if the ACL is found
 *
 * @retval 1  the scan ran, whether or not it found the ACL
 * @retval 0  a step failed, or the name or number does not fit the scan condition
 *
 * @par After a failure
 * groupId is unchanged. If only ending the scan or closing the session failed, it is written if the
 * ACL was found.
 * @par Log
 * Each failing database step. An ACL that is not found and a condition that does not fit
 * are not logged.
 * @par Source
 * "acl_group", field 0, of the first record with this vsid, vsysid and acl_name (or acl_number) and
 * isipv6 0.
 */
uint32_t ACL_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                     uint32_t* groupId);

/**
 * Looks up the group id of an IPv6 ACL by name or number. Does not report whether the ACL exists.
 *
 * @param[in]  vsid       first number of the virtual system
 * @param[in]  vsysid     second number of the virtual system
 * @param[in]  aclNumber  ACL number; used only if name is null
 * @param[in]  name       ACL name; null selects the lookup by number
 * @param[out] groupId    group id; written only if the ACL is found
 *
 * @retval 1  the scan ran, whether or not it found the ACL
 * @retval 0  a step failed, or the name or number does not fit the scan condition
 *
 * @par After a failure
 * groupId is unchanged. If only ending the scan or closing the session failed, it is written if the
 * ACL was found.
 * @par Log
 * Each failing database step. An ACL that is not found and a condition that does not fit
 * are not logged.
 * @par Source
 * "acl_group", field 0, of the first record with this vsid, vsysid and acl_name (or acl_number) and
 * isipv6 1.
 */
uint32_t ACLIPv6_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                         uint32_t* groupId);

/**
 * Reads the group id of the session's current "acl_group" record. A QRB_ENTRY_FUNC for
 * QRB_DB_Scan().
 *
 * @param[in]  session  session positioned on a record of "acl_group"
 * @param[out] groupId  address of a uint32_t
 * @param[in]  index    number of the record; not used
 *
 * @retval 0      the group id was written
 * @retval other  code of the database
 *
 * @par After a failure
 * groupId is unchanged.
 * @par Log
 * Nothing is logged.
 * @par Source
 * "acl_group", field 0.
 */
uint32_t ACL_DB_ScanAclGroupId(ORM_SESSION session, void* groupId, uint32_t index);

/**
 * Counts the rules of an IPv4 ACL. The number of rules is added to count.
 *
 * @param[in]     vsid       first number of the virtual system
 * @param[in]     vsysid     second number of the virtual system
 * @param[in]     aclNumber  ACL number
 * @param[in,out] count      counter; the caller sets it to 0
 *
 * @retval 0  the rules were counted, or the scan of the rules stopped on an error
 * @retval 1  ACL_IsACLNodeExistByNumber() returned 0, or the scan of the rules cannot be started
 *
 * @par After a failure
 * count is unchanged after 1. If the scan of the rules stopped on an error, it includes the rules
 * counted so far.
 * @par Log
 * What ACL_IsACLNodeExistByNumber() logs; each failing step up to the start of the scan of the
 * rules. An error during or after that scan is not logged.
 * @par Source
 * Records of "acl_adv" with acl_group_id equal to the ACL's group id.
 */
uint32_t ACL_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count);

/**
 * Counts the rules of an IPv6 ACL. The number of rules is added to count.
 *
 * An ACL that does not exist is not detected: the rules of group 0 are counted instead.
 *
 * @param[in]     vsid       first number of the virtual system
 * @param[in]     vsysid     second number of the virtual system
 * @param[in]     aclNumber  ACL number
 * @param[in,out] count      counter; the caller sets it to 0
 *
 * @retval 0  the rules were counted, or the scan of the rules stopped on an error
 * @retval 1  ACLIPv6_IsACLNodeExistByNumber() returned 0, or the scan of the rules cannot be
 * started
 *
 * @par After a failure
 * count is unchanged after 1. If the scan of the rules stopped on an error, it includes the rules
 * counted so far.
 * @par Log
 * What ACLIPv6_IsACLNodeExistByNumber() logs; each failing step up to the start of the scan of the
 * rules. An error during or after that scan is not logged.
 * @par Source
 * Records of "acl_rule_id" with groupId equal to the ACL's group id.
 */
uint32_t ACLIPv6_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count);

/**
 * Reads the name of an ACL group.
 *
 * @param[in]  groupId  group id
 * @param[out] name     ACL_GROUP_NAME_SIZE (65) bytes
 *
 * @retval 0  the name was written
 * @retval 1  no such group, or a step failed
 *
 * @par After a failure
 * name is unchanged. If only ending the scan or closing the session failed, it is written.
 * @par Log
 * No such group; each failing database step.
 * @par Source
 * "acl_group_id", name, of the first record with this id.
 */
uint32_t ACL_GetNameByGroupId(uint32_t groupId, char* name);

/**
 * Reads the name of an ACL group. Same as ACL_GetNameByGroupId().
 *
 * @param[in]  groupId  group id
 * @param[out] name     ACL_GROUP_NAME_SIZE (65) bytes
 *
 * @retval 0  the name was written
 * @retval 1  no such group, or a step failed
 *
 * @par After a failure
 * name is unchanged. If only ending the scan or closing the session failed, it is written.
 * @par Log
 * No such group; each failing database step; both under the name ACL_GetNameByGroupId.
 * @par Source
 * "acl_group_id", name, of the first record with this id.
 */
uint32_t ACLIPv6_GetNameByGroupId(uint32_t groupId, char* name);

/**
 * Reads the ACL number of a name.
 *
 * @param[in]  name       name, first member of the key
 * @param[in]  kind       second member of the key, 8 bits
 * @param[in]  unused1    not used
 * @param[in]  unused2    not used
 * @param[out] aclNumber  ACL number
 *
 * @retval 0  the number was written
 * @retval 1  no record has the key, or a step failed
 *
 * @par After a failure
 * aclNumber is unchanged. If only closing the session failed, it is written.
 * @par Log
 * Each failing step, including a missing record, under the names of QRB_DB_Get() and the functions
 * it calls. A failing close is not logged.
 * @par Source
 * "acl_group_id", field 5, by primary key (name, kind).
 */
uint32_t BDS_AclGetAclNumberByName(const char* name, uint8_t kind, uint32_t unused1,
                                   uint32_t unused2, uint32_t* aclNumber);

#ifdef __cplusplus
}
#endif
