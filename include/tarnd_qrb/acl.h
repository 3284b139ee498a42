/*
 * Access control lists: existence, group ids and names, numbers, rule counts.
 *
 * An ACL stands in "acl_group" under its virtual system (vsid, vsysid), its number or name and its
 * family. Only ACL_IsACLNodeExistByNumber tells whether one exists; its three kin tell whether it
 * could be looked for. Numbers and names go into scan conditions of limited length; one that does
 * not fit is a failure, and silent. With two single-digit virtual-system numbers, names up to 9
 * characters fit. Other failures are logged, unless a comment calls them silent.
 *
 * Every function runs on any thread and keeps nothing between calls. Null is checked where a
 * comment says so.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ACL_GROUP_NAME_SIZE 65u /* a group's name and its NUL */

/* Whether an IPv4 ACL with a number exists, and its group id (field 0). 1 yes; 0 no, which is
   logged too, or a failure. *groupId is written when the ACL is met, even where a later step fails.
 */
uint32_t ACL_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                    uint32_t* groupId);

/* Whether an IPv6 ACL could be looked for: 1 when the scan ran, whether or not it met the ACL; 0
   for a failure or a null groupId. *groupId is written only when the ACL is met. */
uint32_t ACLIPv6_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                        uint32_t* groupId);

/* Whether an IPv4 or an IPv6 ACL could be looked for, by name, or by number where name is null. As
   ACLIPv6_IsACLNodeExistByNumber: 1 when the scan ran, whether or not it met the ACL, 0 for a
   failure, *groupId written only when the ACL is met. groupId is not checked for null. */
uint32_t ACL_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                     uint32_t* groupId);
uint32_t ACLIPv6_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                         uint32_t* groupId);

/* The row step of the scans for an ACL, a QRB_ENTRY_FUNC: reads the group id (field 0) of the
   session's current record into groupId, an address of uint32_t. The database's code. */
uint32_t ACL_DB_ScanAclGroupId(ORM_SESSION session, void* groupId, uint32_t index);

/*
 * Adds the number of an ACL's rules ("acl_adv" for IPv4, "acl_rule_id" for IPv6) to *count, which
 * the caller sets to 0 first.
 *
 * 0, also where the scan of the rules stopped on an error (silent), with those counted so far; 1
 * when the check of existence by number above answers 0 or the scan can't start. So an IPv6 ACL
 * that does not exist counts the rules of group 0.
 */
uint32_t ACL_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count);
uint32_t ACLIPv6_GetRuleCount(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, uint32_t* count);

/* The name of a group, from "acl_group_id". name holds ACL_GROUP_NAME_SIZE bytes. 0; 1 when there
   is no such group or for a failure (logged). name is written where only a later step fails. */
uint32_t ACL_GetNameByGroupId(uint32_t groupId, char* name);
uint32_t ACLIPv6_GetNameByGroupId(uint32_t groupId, char* name);

/* The ACL number (field 5) of the record of "acl_group_id" with a name and a kind, the two members
   of its key. 0, or 1: logged, with *aclNumber untouched; silently, with *aclNumber written,
   where only the close failed. The two arguments in the middle are not looked at. */
uint32_t BDS_AclGetAclNumberByName(const char* name, uint8_t kind, uint32_t unused1,
                                   uint32_t unused2, uint32_t* aclNumber);

#ifdef __cplusplus
}
#endif
