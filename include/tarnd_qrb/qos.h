/*
 * Quality-of-service profiles, answered from "qos_integration": a profile's index by name, its
 * remark settings, its committed access rates (CAR).
 *
 * Remarks and CAR entries are lists of a profile's row. Item 1 of a list goes to the second slot of
 * the record, every other item to the first, so a later one takes an earlier one's place. Records
 * are never cleared: what no item sets keeps the caller's value, and values read before a failure
 * stay. Failures are logged, a missing list among them, unless a comment calls them silent. A list
 * whose size can't be had counts as empty, silently.
 *
 * Every function runs on any thread and keeps nothing between calls. Null is not checked. Arguments
 * called unused are not looked at.
 */
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

#define QOS_FAIL 200u /* a name too long for its buffer, or a list item that can't be read */

/* One entry of "car_list". The fields stand in this order, 3 before 2. */
typedef struct {
    uint32_t present; /* 1 once the entry is set */
    uint32_t field1;
    uint32_t field3;
    uint32_t field2;
    uint32_t field4;
} QOS_CAR_S;

/* What is known of one profile. The members leave no gaps; nothing is written behind the last. */
typedef struct {
    uint32_t valid; /* 1 once anything is set */
    QOS_CAR_S car0;
    QOS_CAR_S car1;
    uint8_t pri8021pValid; /* 1 once an 802.1p priority is set */
    uint8_t pri8021p0;     /* low byte of field 1 of "remark_8021p_list" */
    uint8_t pri8021p1;
    uint8_t dscpValid; /* 1 once a DSCP is set */
    uint8_t dscp0;     /* low byte of field 1 of "remark_dscp_list" */
    uint8_t dscp1;
} QOS_PROFILE_INFO_S;
static_assert(sizeof(QOS_CAR_S) == 20, "QOS_CAR_S has the wrong size");
static_assert(offsetof(QOS_PROFILE_INFO_S, car0) == 4, "car0 is off its position");
static_assert(offsetof(QOS_PROFILE_INFO_S, car1) == 24, "car1 is off its position");
static_assert(offsetof(QOS_PROFILE_INFO_S, pri8021pValid) == 44,
              "pri8021pValid is off its position");
static_assert(offsetof(QOS_PROFILE_INFO_S, dscp1) == 49, "dscp1 is off its position");

/* The index of the last profile with a name, by a scan of the whole table. 0 after a complete scan:
   *index is written only when a profile has the name. Else the failing step's code, or QOS_FAIL
   once a row is met, for a wanted or a stored name of 64 bytes or more; an earlier match stays
   written. */
uint32_t QOS_GetProfileIdByName(uint32_t unused, const char* name, uint32_t* index);

/* The step of QOS_GetProfileIdByName's scan: writes the current row's index (field 0) if its name
   (field 1) is this one. 0; QOS_FAIL, silently, for a name of 64 bytes or more; or the database's
   code. */
uint32_t QOS_GetIdByName(ORM_SESSION session, const char* name, uint32_t* index);

/* Opens a session positioned on a profile's row. 0: the caller closes it. Else the failing step's
   code: *session is 0 and nothing is open. */
uint32_t QOS_SetQosIntePk(ORM_SESSION* session, uint32_t index);

/* A profile's remarks: DSCP, then 802.1p; without a DSCP list neither. Always 0: the record's flags
   tell what was found. */
uint32_t QOS_GetRemarkInfo(uint32_t unused, uint32_t index, QOS_PROFILE_INFO_S* info);

/* The items of one remark list. 0, or QOS_FAIL. */
uint32_t QOS_GetDscp(ORM_NODE list, QOS_PROFILE_INFO_S* info);
uint32_t QOS_Get8021(ORM_NODE list, QOS_PROFILE_INFO_S* info);

/* A profile's CAR entries. Always 0: the record's flags tell what was found. */
uint32_t QOS_GetCarInfo(uint32_t unused, uint32_t index, QOS_PROFILE_INFO_S* info);

/* Stores one CAR entry, that of list item number item, with the values of its fields 1 to 4. */
void QOS_AssignCars(QOS_PROFILE_INFO_S* info, uint32_t item, uint32_t field1, uint32_t field2,
                    uint32_t field3, uint32_t field4);

#ifdef __cplusplus
}
#endif
