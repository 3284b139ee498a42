/*
 * Route inquiry: the next hops of an IPv4 destination.
 *
 * A forwarding entry ("Fib.ConfigIpv4Fwd") names a next-hop group, the group's members
 * ("Fib.ConfigNhpGroupNode") name next-hop indexes, and each index has a record
 * ("Fib.ConfigNhpStandard"). Three scans of whole tables, each in a session of its own, join them;
 * the first forwarding entry that covers the destination wins, whatever its prefix length. A table
 * that changes between the scans can make an inquiry fail or mix old and new.
 *
 * Addresses are 32-bit numbers whose most significant byte is the first octet. Every function runs
 * on any thread and keeps nothing between calls. The scans log the end of a table like an error.
 * Null is checked where a comment says so.
 */
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

#define FIB_GROUP_MEMBERS_MAX 8u /* the most next-hop indexes gathered for one group */

/* What is asked for. The first two members are not looked at. */
typedef struct {
    uint32_t reserved_0[2];
    uint32_t destAddr;
} FIB_KEY_S;
static_assert(offsetof(FIB_KEY_S, destAddr) == 8, "FIB_KEY_S.destAddr is off its position");

/* One next hop. What the two values mean, the database says; reserved members are never written. */
typedef struct {
    uint32_t firstValue;  /* field 3 of the next hop's record */
    uint32_t secondValue; /* field 4 */
    uint32_t reserved_8[5];
} FIB_NHP_S;
static_assert(sizeof(FIB_NHP_S) == 28, "FIB_NHP_S has the wrong size");
static_assert(offsetof(FIB_NHP_S, secondValue) == 4, "FIB_NHP_S.secondValue is off its position");

typedef struct {
    uint32_t address;
    uint8_t prefixLen; /* 0 to 32; a longer prefix covers nothing */
} FIB_PREFIX_S;
static_assert(offsetof(FIB_PREFIX_S, prefixLen) == 4, "FIB_PREFIX_S.prefixLen is off its position");

/* One next hop of a destination: that of the group's first member. 0, or 1 (logged); null is
   refused with 1. *pstFibNhp is written as FIB_ScanNhpStd does, once an index is known. */
uint32_t FIB_InquiryRoute(const FIB_KEY_S* pstFibKey, FIB_NHP_S* pstFibNhp);

/*
 * The next hops of a destination, in the order of the group's members.
 *
 * pstFibNhp  array of *count records.
 * count      in: the array's capacity, not 0; out: the records filled, at most
 *            FIB_GROUP_MEMBERS_MAX.
 *
 * 0, or 1 (logged); null and a capacity of 0 are refused with 1. When a next hop has no record, the
 * records before it stay filled, its own values are 0, and *count stays lowered.
 */
uint32_t FIB_InquiryRoutes(const FIB_KEY_S* pstFibKey, FIB_NHP_S* pstFibNhp, uint32_t* count);

/* A stub: looks at nothing, logs that it is one and answers 0. */
uint32_t FIB6_InquiryRe6(const void* pstFibKey, void* pstFibNhp);

/* 1 when every address of the probe lies in the prefix, else 0. Prefix length 0 covers every probe.
   Bits behind a prefix's length do not count. No database. */
uint32_t FIB_AM_PrefixMatch(const FIB_PREFIX_S* prefix, const FIB_PREFIX_S* probe);

/* The group (field 10) of the first forwarding entry whose prefix (fields 4 and 5) covers an
   address. 0; 0xFFFFFFFF when there is none or the scan stopped on an error (silent where a row
   can't be read), *groupId 0; 1 when the scan can't start (silent), *groupId untouched. */
uint32_t FIB_ScanIp4Forward(uint32_t destination, uint32_t* groupId);

/* Opens a session and starts a scan of the group members, both for the caller to end. 0, or 1
   (silent), nothing open and both handles 0. */
uint32_t FIB_ScanNhpGroupNodeValidate(ORM_SESSION* session, ORM_SCAN* scan);

/*
 * The next-hop indexes (field 5) of the members of a group (field 3).
 *
 * multiple  0: only the first member's index, in element 0 of nhpIndexes; count is not looked at.
 *           Else all: each goes to element *count, which then grows; what finds 8 there is dropped.
 * count     with multiple: in, elements in use; out, the same with the new ones.
 *
 * 0; 0xFFFFFFFF when no member was found or, with multiple, when the scan stopped on an error (what
 * was found before stays); 1 when the scan can't start. Failures are logged, and the end of the
 * table is.
 */
uint32_t FIB_ScanNhpGroupNode(uint32_t groupId, uint32_t* nhpIndexes, uint8_t multiple,
                              uint32_t* count);

/* The two values (fields 3 and 4) of the next hop with an index (field 2). 0; 0xFFFFFFFF when there
   is none or the scan stopped on an error, both values 0; 1 when the scan can't start (silent),
   both untouched. A value that can't be read is 0 (silent). */
uint32_t FIB_ScanNhpStd(uint32_t nhpIndex, uint32_t* firstValue, uint32_t* secondValue);

#ifdef __cplusplus
}
#endif
