/**
 * @file
 * @brief Route inquiry: the next hops of an IPv4 destination.
 *
 * Three tables are joined. A forwarding entry ("Fib.ConfigIpv4Fwd") has a prefix and the id of a
 * next-hop group. The members of a group ("Fib.ConfigNhpGroupNode") have next-hop indexes. An index
 * has a next hop ("Fib.ConfigNhpStandard"). Each table is scanned, in a session of its own and
 * without a condition. The first forwarding entry whose prefix contains the destination is used,
 * even if a later entry has a longer prefix.
 *
 * An address is a 32-bit number whose most significant byte is the first octet.
 *
 * @par Results
 * The inquiries return 1 for every failure. The scan functions return 1 if the scan cannot be
 * started, and 0xFFFFFFFF if nothing is found or the scan stopped on an error.
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * Any thread may call any function. No state is kept between calls. If a table changes between the
 * scans of one inquiry, the inquiry may fail or combine old and new records.
 * @par Log
 * Priority 3. A scan that reaches the end of its table logs this like an error ("OrmScanNext ret:0,
 * isEof:1"), also where it is the normal outcome. Errors of ending a scan or closing a session are
 * not logged and do not change the result.
 */
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

#define FIB_GROUP_MEMBERS_MAX 8u /**< Maximum number of next-hop indexes read of one group. */

/** Key of an inquiry. */
typedef struct {
    uint32_t reserved_0[2]; /**< not read */
    uint32_t destAddr;      /**< destination address */
} FIB_KEY_S;
static_assert(offsetof(FIB_KEY_S, destAddr) == 8, "FIB_KEY_S.destAddr is off its position");

/** A next hop. The meaning of the two values is the database's. */
typedef struct {
    uint32_t firstValue;    /**< field 3 of "Fib.ConfigNhpStandard" */
    uint32_t secondValue;   /**< field 4 of "Fib.ConfigNhpStandard" */
    uint32_t reserved_8[5]; /**< never written */
} FIB_NHP_S;
static_assert(sizeof(FIB_NHP_S) == 28, "FIB_NHP_S has the wrong size");
static_assert(offsetof(FIB_NHP_S, secondValue) == 4, "FIB_NHP_S.secondValue is off its position");

/** A prefix. */
typedef struct {
    uint32_t address;  /**< address */
    uint8_t prefixLen; /**< prefix length, 0 to 32; a longer prefix contains nothing */
} FIB_PREFIX_S;
static_assert(offsetof(FIB_PREFIX_S, prefixLen) == 4, "FIB_PREFIX_S.prefixLen is off its position");

/**
 * Reads one next hop of a destination: that of the group's first member.
 *
 * @param[in]  pstFibKey  key with the destination; null is refused
 * @param[out] pstFibNhp  next hop; null is refused
 *
 * @retval 0  the next hop was written
 * @retval 1  a pointer is null, a record is missing, or a step failed
 *
 * @par After a failure
 * pstFibNhp is unchanged if no next-hop index was found or the scan for the next hop cannot be
 * started; its two values are 0 if the index has no next hop or that scan stopped on an error.
 * @par Log
 * A null pointer; which scan failed; what FIB_ScanIp4Forward(), FIB_ScanNhpGroupNode() and
 * FIB_ScanNhpStd() log. A value that cannot be read is 0 and is not logged.
 * @par Source
 * "Fib.ConfigIpv4Fwd", "Fib.ConfigNhpGroupNode" and "Fib.ConfigNhpStandard".
 */
uint32_t FIB_InquiryRoute(const FIB_KEY_S* pstFibKey, FIB_NHP_S* pstFibNhp);

/**
 * Reads the next hops of a destination, in the order of the group's members.
 *
 * @param[in]     pstFibKey  key with the destination; null is refused
 * @param[out]    pstFibNhp  array of count elements; null is refused
 * @param[in,out] count      in: capacity of the array, not 0; out: number of next hops, at most
 *                           FIB_GROUP_MEMBERS_MAX (8); null is refused
 *
 * @retval 0  the next hops were written
 * @retval 1  a pointer is null, the capacity is 0, a record is missing, or a step failed
 *
 * @par After a failure
 * If the forwarding entry or the group's members were not found, count and pstFibNhp are unchanged.
 * If a next hop was not found, count is the lowered count, the elements before the failing one are
 * written, the two values of the failing one are 0 (unchanged if the scan cannot be started), and
 * the elements after it are unchanged.
 * @par Log
 * A refused argument; which scan failed; what FIB_ScanIp4Forward(), FIB_ScanNhpGroupNode() and
 * FIB_ScanNhpStd() log: thus one line, the end of the group table, for each call that succeeds.
 * @par Source
 * "Fib.ConfigIpv4Fwd", "Fib.ConfigNhpGroupNode" and "Fib.ConfigNhpStandard".
 */
uint32_t FIB_InquiryRoutes(const FIB_KEY_S* pstFibKey, FIB_NHP_S* pstFibNhp, uint32_t* count);

/**
 * Returns 0 and no next hop: IPv6 is not supported. Kept for existing callers.
 *
 * @param[in]  pstFibKey  not used
 * @param[out] pstFibNhp  never written; may be null
 *
 * @retval 0  always
 *
 * @par Log
 * One line for each call, "STUB for FIB6_InquiryRe6".
 * @par Source
 * No database.
 */
uint32_t FIB6_InquiryRe6(const void* pstFibKey, void* pstFibNhp);

/**
 * Checks whether a prefix contains every address of another prefix.
 *
 * A prefix of length 0 contains every prefix. Bits after the prefix length are ignored.
 *
 * @param[in] prefix  the containing prefix
 * @param[in] probe   the contained prefix; length 32 for an address
 *
 * @retval 1  prefix contains probe
 * @retval 0  it does not
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t FIB_AM_PrefixMatch(const FIB_PREFIX_S* prefix, const FIB_PREFIX_S* probe);

/**
 * Looks up the next-hop group of a destination: that of the first forwarding entry whose prefix
 * contains it.
 *
 * @param[in]  destination  destination address
 * @param[out] groupId      group id; 0 if it cannot be read
 *
 * @retval 0           an entry contains the destination
 * @retval 0xFFFFFFFF  no entry contains it, or the scan stopped on an error
 * @retval 1           the scan cannot be started
 *
 * @par After a failure
 * groupId is 0 after 0xFFFFFFFF, unchanged after 1.
 * @par Log
 * A failing step to the next entry; the end of the table. A scan that cannot be started and an
 * entry that cannot be read are not logged.
 * @par Source
 * "Fib.ConfigIpv4Fwd", fields 4 (address), 5 (prefix length, low 8 bits) and 10 (group id).
 */
uint32_t FIB_ScanIp4Forward(uint32_t destination, uint32_t* groupId);

/**
 * Opens a session and starts a scan of the group members.
 *
 * @param[out] session  session, which the caller closes with OrmCloseSession() after it ends the
 * scan
 * @param[out] scan     scan, which the caller ends with OrmScanEnd()
 *
 * @retval 0  the scan is started
 * @retval 1  a step failed
 *
 * @par After a failure
 * Nothing is open; session and scan are 0.
 * @par Log
 * Nothing is logged.
 * @par Source
 * "Fib.ConfigNhpGroupNode".
 */
uint32_t FIB_ScanNhpGroupNodeValidate(ORM_SESSION* session, ORM_SCAN* scan);

/**
 * Reads the next-hop indexes of the members of a group.
 *
 * @param[in]     groupId     group id
 * @param[out]    nhpIndexes  1 element, or FIB_GROUP_MEMBERS_MAX (8) elements if multiple is not 0
 * @param[in]     multiple    0: read the first member only, into element 0; other: read all members
 * @param[in,out] count       if multiple is not 0, in: number of elements in use, normally 0; out:
 * the same with the new ones, at most 8, further members are dropped; if multiple is 0, not used
 * and may be null
 *
 * @retval 0           a member was found and, if multiple is not 0, the end of the table was
 * reached
 * @retval 0xFFFFFFFF  the group has no member, or the scan stopped on an error
 * @retval 1           the scan cannot be started
 *
 * @par After a failure
 * The indexes found before the failure are written and counted.
 * @par Log
 * A scan that cannot be started, without its code; each failing step; the end of the table.
 * @par Source
 * "Fib.ConfigNhpGroupNode", fields 3 (group id) and 5 (next-hop index).
 */
uint32_t FIB_ScanNhpGroupNode(uint32_t groupId, uint32_t* nhpIndexes, uint8_t multiple,
                              uint32_t* count);

/**
 * Reads the next hop of a next-hop index.
 *
 * @param[in]  nhpIndex     next-hop index
 * @param[out] firstValue   first value; 0 if it cannot be read
 * @param[out] secondValue  second value; 0 if it cannot be read
 *
 * @retval 0           the index has a next hop
 * @retval 0xFFFFFFFF  it has none, or the scan stopped on an error
 * @retval 1           the scan cannot be started
 *
 * @par After a failure
 * Both values are 0 after 0xFFFFFFFF, unchanged after 1.
 * @par Log
 * A failing step to the next record; an index that cannot be read; the end of the table. A scan
 * that cannot be started and a value that cannot be read are not logged.
 * @par Source
 * "Fib.ConfigNhpStandard", fields 2 (index), 3 and 4 (values).
 */
uint32_t FIB_ScanNhpStd(uint32_t nhpIndex, uint32_t* firstValue, uint32_t* secondValue);

#ifdef __cplusplus
}
#endif
