/**
 * @file
 * @brief Quality-of-service profiles: index by name, remark settings, committed access rates (CAR).
 *
 * Source: table "qos_integration". A profile's remark settings and CAR entries are lists of its
 * record: "remark_dscp_list", "remark_8021p_list" and "car_list".
 *
 * QOS_PROFILE_INFO_S has two slots for each list. Item 1 of a list is stored in the second slot,
 * every other item in the first: item 2 and the following replace item 0. The record is not
 * cleared: the caller sets it to zero. Members that no item sets keep the caller's values; members
 * that were stored before a failure keep the stored values.
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * Any thread may call any function. No state is kept between calls.
 * @par Log
 * Priority 3, with the database's code, unless a function's description says otherwise. A list that
 * the record does not have is logged. A list whose size cannot be read counts as empty and is not
 * logged.
 */
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Result if a name does not fit its buffer or a list item cannot be read. */
#define QOS_FAIL 200u

/** A CAR entry. Field 3 precedes field 2. The meaning of the fields is the database's. */
typedef struct {
    uint32_t present; /**< 1 if the entry is set */
    uint32_t field1;  /**< field 1 of the item */
    uint32_t field3;  /**< field 3 of the item */
    uint32_t field2;  /**< field 2 of the item */
    uint32_t field4;  /**< field 4 of the item */
} QOS_CAR_S;

/** Remark settings and CAR entries of a profile. 50 bytes are used, without gaps. */
typedef struct {
    uint32_t valid;        /**< 1 if any member is set */
    QOS_CAR_S car0;        /**< first slot of "car_list" */
    QOS_CAR_S car1;        /**< second slot of "car_list" */
    uint8_t pri8021pValid; /**< 1 if an 802.1p priority is set */
    uint8_t pri8021p0;     /**< first slot of "remark_8021p_list": low byte of field 1 */
    uint8_t pri8021p1;     /**< second slot of "remark_8021p_list" */
    uint8_t dscpValid;     /**< 1 if a DSCP is set */
    uint8_t dscp0;         /**< first slot of "remark_dscp_list": low byte of field 1 */
    uint8_t dscp1;         /**< second slot of "remark_dscp_list" */
} QOS_PROFILE_INFO_S;
static_assert(sizeof(QOS_CAR_S) == 20, "QOS_CAR_S has the wrong size");
static_assert(offsetof(QOS_PROFILE_INFO_S, car0) == 4, "car0 is off its position");
static_assert(offsetof(QOS_PROFILE_INFO_S, car1) == 24, "car1 is off its position");
static_assert(offsetof(QOS_PROFILE_INFO_S, pri8021pValid) == 44,
              "pri8021pValid is off its position");
static_assert(offsetof(QOS_PROFILE_INFO_S, dscp1) == 49, "dscp1 is off its position");

/**
 * Looks up the index of a profile by name, by a scan of the whole table.
 *
 * @param[in]  unused  not used
 * @param[in]  name    profile name, at most 63 bytes; a longer name or null is a failure (QOS_FAIL)
 * if the table has a record
 * @param[out] index   index of the last profile with this name; unchanged if there is none
 *
 * @retval 0         the scan is complete, whether or not a profile has the name
 * @retval QOS_FAIL  (200) name, or a name in the table, has 64 bytes or more
 * @retval other     code of the failing step
 *
 * @par After a failure
 * index is unchanged, or written if a profile before the failure has the name.
 * @par Log
 * The failing step; QOS_FAIL. Errors of ending the scan or closing the session are not logged and
 * do not change the result. A name that is not found is not logged.
 * @par Source
 * "qos_integration", fields 0 (index) and 1 (name).
 */
uint32_t QOS_GetProfileIdByName(uint32_t unused, const char* name, uint32_t* index);

/**
 * Reads the index of the session's current "qos_integration" record if it has a name. The step of
 * QOS_GetProfileIdByName().
 *
 * @param[in]  session  session positioned on a record of "qos_integration"
 * @param[in]  name     profile name, at most 63 bytes; a longer name or null is a failure
 * (QOS_FAIL)
 * @param[out] index    profile index; unchanged if the record has another name
 *
 * @retval 0         the names differ, or the index was written
 * @retval QOS_FAIL  (200) one of the names has 64 bytes or more
 * @retval other     code of the database
 *
 * @par After a failure
 * index is unchanged.
 * @par Log
 * A field that cannot be read. QOS_FAIL is not logged.
 * @par Source
 * "qos_integration", fields 0 (index) and 1 (name).
 */
uint32_t QOS_GetIdByName(ORM_SESSION session, const char* name, uint32_t* index);

/**
 * Opens a session positioned on the record of a profile.
 *
 * @param[out] session  the open session, which the caller closes with OrmCloseSession()
 * @param[in]  index    profile index
 *
 * @retval 0      the session is open and the record is its current record
 * @retval other  code of the failing step; ORM_NO_RECORD if there is no such profile
 *
 * @par After a failure
 * Nothing is open; session is 0.
 * @par Log
 * The failing step, including a missing record.
 * @par Source
 * "qos_integration", by the profile index.
 */
uint32_t QOS_SetQosIntePk(ORM_SESSION* session, uint32_t index);

/**
 * Reads the remark settings of a profile: DSCP values, then 802.1p priorities.
 *
 * If the DSCP list is missing or cannot be read, the 802.1p list is not read.
 *
 * @param[in]     unused  not used
 * @param[in]     index   profile index
 * @param[in,out] info    receives the values; valid, dscpValid and pri8021pValid show what was
 * found
 *
 * @retval 0  always
 *
 * @par After a failure
 * The values read before the failure are stored.
 * @par Log
 * What QOS_SetQosIntePk(), QOS_GetDscp() and QOS_Get8021() log; a list that is missing or cannot be
 * opened; a failed QOS_GetDscp(). A failing close is not logged.
 * @par Source
 * "qos_integration", "remark_dscp_list" and "remark_8021p_list", by the profile index.
 */
uint32_t QOS_GetRemarkInfo(uint32_t unused, uint32_t index, QOS_PROFILE_INFO_S* info);

/**
 * Reads the items of a DSCP list.
 *
 * @param[in]     list  the list, from OrmNodeGetChild()
 * @param[in,out] info  receives dscp0, dscp1, dscpValid and valid
 *
 * @retval 0         all items were stored; none if the list's size cannot be read
 * @retval QOS_FAIL  (200) an item cannot be read
 *
 * @par After a failure
 * The items before the failing one are stored.
 * @par Log
 * An item that cannot be read.
 * @par Source
 * Field 1 of each item, low byte.
 */
uint32_t QOS_GetDscp(ORM_NODE list, QOS_PROFILE_INFO_S* info);

/**
 * Reads the items of an 802.1p list.
 *
 * @param[in]     list  the list, from OrmNodeGetChild()
 * @param[in,out] info  receives pri8021p0, pri8021p1, pri8021pValid and valid
 *
 * @retval 0         all items were stored; none if the list's size cannot be read
 * @retval QOS_FAIL  (200) an item cannot be read
 *
 * @par After a failure
 * The items before the failing one are stored.
 * @par Log
 * An item that cannot be read.
 * @par Source
 * Field 1 of each item, low byte.
 */
uint32_t QOS_Get8021(ORM_NODE list, QOS_PROFILE_INFO_S* info);

/**
 * Reads the CAR entries of a profile.
 *
 * @param[in]     unused  not used
 * @param[in]     index   profile index
 * @param[in,out] info    receives car0, car1 and valid
 *
 * @retval 0  always
 *
 * @par After a failure
 * The entries before the failing item are stored.
 * @par Log
 * What QOS_SetQosIntePk() logs, and that it failed; a list that is missing or cannot be opened; an
 * item that cannot be read, with the sum of the codes of its fields; a failing close.
 * @par Source
 * "qos_integration", "car_list", fields 1 to 4 of each item, by the profile index.
 */
uint32_t QOS_GetCarInfo(uint32_t unused, uint32_t index, QOS_PROFILE_INFO_S* info);

/**
 * Stores one CAR entry. Does not set valid.
 *
 * @param[in,out] info    receives the entry: item 1 in car1, every other item in car0
 * @param[in]     item    number of the list item, counted from 0
 * @param[in]     field1  field 1 of the item
 * @param[in]     field2  field 2 of the item
 * @param[in]     field3  field 3 of the item
 * @param[in]     field4  field 4 of the item
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void QOS_AssignCars(QOS_PROFILE_INFO_S* info, uint32_t item, uint32_t field1, uint32_t field2,
                    uint32_t field3, uint32_t field4);

#ifdef __cplusplus
}
#endif
