/**
 * @file
 * @brief VLANs: activity, existence, member ports, default VLAN of a port, description, name.
 *
 * Source: tables "vlan" and "port". A VLAN's record has a key of two scope numbers and the VLAN id.
 * Functions that have only the VLAN id use scope (0, 0), unless their description says otherwise.
 * The range of a VLAN id is not checked.
 *
 * @par Results
 * VLAN_Is functions return 0 for yes and 1 for no. BDS_L2IF functions return 1 for yes and 0 for
 * no.
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * Any thread may call any function. No state is kept between calls.
 * @par Log
 * Priority 3, with the database's code, unless a function's description says otherwise.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Checks whether a VLAN is active in any scope, by a scan of the table.
 *
 * Records of the VLAN whose state is 0 are skipped. The scan ends at the first record of the VLAN
 * whose state is not 0: the VLAN is active if that state is 1.
 *
 * @param[in] vlanId  VLAN id
 *
 * @retval 0  the VLAN is active
 * @retval 1  it is not active or does not exist, or a step failed
 *
 * @par Log
 * Each failing step. Errors of ending the scan or closing the session are not logged and do not
 * change the result.
 * @par Source
 * "vlan", fields 2 (VLAN id) and 9 (state).
 */
uint32_t VLAN_IsVlanActive(uint16_t vlanId);

/**
 * Checks whether a VLAN is active in any scope: VLAN_IsVlanActive() with the opposite result.
 *
 * @param[in] vlanId  VLAN id
 *
 * @retval 1  the VLAN is active
 * @retval 0  it is not active or does not exist, or a step failed
 *
 * @par Log
 * What VLAN_IsVlanActive() logs, under that name.
 * @par Source
 * "vlan", fields 2 (VLAN id) and 9 (state).
 */
uint32_t BDS_L2IF_VLAN_IsActive(uint16_t vlanId);

/**
 * Checks whether a VLAN exists.
 *
 * @param[in] vlanId  VLAN id
 *
 * @retval 0  the VLAN has a record in scope (0, 0)
 * @retval 1  it has none, or the record cannot be read
 *
 * @par Log
 * A record that is missing or cannot be read.
 * @par Source
 * "vlan", by the primary key (0, 0, vlanId).
 */
uint32_t VLAN_IsVlanUsed(uint16_t vlanId);

/**
 * Checks whether a VLAN exists: VLAN_IsVlanUsed() with the opposite result.
 *
 * @param[in] vlanId  VLAN id
 *
 * @retval 1  the VLAN has a record in scope (0, 0)
 * @retval 0  it has none, or the record cannot be read
 *
 * @par Log
 * What VLAN_IsVlanUsed() logs, under that name.
 * @par Source
 * "vlan", by the primary key (0, 0, vlanId).
 */
uint32_t BDS_L2IF_VLAN_IsUsed(uint16_t vlanId);

/**
 * Extracts a port's position in the member sets of VLANs from its port index.
 *
 * @param[in] portIndex  port_index of "port"
 *
 * @return the position, 0 to 255: bits 8 to 15 of portIndex
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint8_t VLAN_PortIndex2PortIdx(uint32_t portIndex);

/**
 * Checks whether a port is a member of a VLAN: whether it is in one of the VLAN's two member sets.
 *
 * A port without a record is treated as position 0 in scope (0, 0). A VLAN without a record has no
 * members.
 *
 * @param[in] ifIndex  interface index of the port
 * @param[in] vlanId   VLAN id, in the scope of the port's record
 *
 * @retval 0  the port is a member
 * @retval 1  it is not, or a record cannot be read
 *
 * @par Log
 * A record that cannot be read. A missing record and a port that is no member are not logged.
 * @par Source
 * "port", port_index, vlan_scope0 and vlan_scope1, by if_index; "vlan", member_bitmap_1 and
 * member_bitmap_2, by the primary key (vlan_scope0, vlan_scope1, vlanId).
 */
uint32_t VLAN_IsPortInVlan(uint32_t ifIndex, uint16_t vlanId);

/**
 * Checks whether a port is a member of a VLAN: VLAN_IsPortInVlan() with the opposite result.
 *
 * @param[in] ifIndex  interface index of the port
 * @param[in] vlanId   VLAN id, in the scope of the port's record
 *
 * @retval 1  the port is a member
 * @retval 0  it is not, or a record cannot be read
 *
 * @par Log
 * What VLAN_IsPortInVlan() logs, under that name.
 * @par Source
 * "port" and "vlan", as for VLAN_IsPortInVlan().
 */
uint32_t BDS_L2IF_VP_PortIsInVlan(uint32_t ifIndex, uint16_t vlanId);

/**
 * Returns 0 for every port and VLAN: tagged membership is not supported. Kept for existing callers.
 *
 * @param[in] ifIndex  not used
 * @param[in] vlanId   not used
 *
 * @retval 0  always
 *
 * @par Log
 * One line for each call, "STUB for BDS_L2IF_VP_PortIsInVlanWithTag".
 * @par Source
 * No database.
 */
uint32_t BDS_L2IF_VP_PortIsInVlanWithTag(uint32_t ifIndex, uint16_t vlanId);

/**
 * Reads the default VLAN of a port.
 *
 * @param[in]  ifIndex  interface index of the port
 * @param[out] pvid     VLAN id
 *
 * @retval 0      the VLAN id was written
 * @retval other  code of the database; ORM_NO_RECORD if the port has no record
 *
 * @par After a failure
 * pvid is 0; unchanged if the code is 1.
 * @par Log
 * Nothing is logged.
 * @par Source
 * "port", pvid, by if_index.
 */
uint32_t L2IF_GetPVIDByIfIndex(uint32_t ifIndex, uint16_t* pvid);

/**
 * Reads the description of a VLAN.
 *
 * @param[in]  vlanId       VLAN id
 * @param[out] description  QRB_VLAN_DESCRIPTION_SIZE (81) bytes; null is refused by the copy
 *
 * @retval 0  the description was written, or the record is missing or cannot be read
 * @retval 1  the copy failed
 *
 * @par After a failure
 * description is an empty text if the record is missing or cannot be read; unchanged if the
 * database's code is 1 or the copy failed.
 * @par Log
 * A failing copy. A record that is missing or cannot be read is not logged.
 * @par Source
 * "vlan", description, by the primary key (0, 0, vlanId).
 */
uint32_t L2IF_VLAN_GetDescript(uint16_t vlanId, char* description);

/**
 * Looks up the VLAN id of a name, in any scope.
 *
 * @param[in]  name    name; cut to its first 32 bytes; must not be null
 * @param[out] vlanId  VLAN id of the first record with this name
 *
 * @retval 0  the VLAN id was written
 * @retval 1  no VLAN has the name, no memory, or a step failed
 *
 * @par After a failure
 * vlanId is unchanged. If only ending the scan or closing the session failed, it is written.
 * @par Log
 * A name that is not found; each failing step.
 * @par Source
 * "vlan", field 2, of the first record with this name (field "name", 32 bytes, padded with zero
 * bytes).
 */
uint32_t L2IF_SH_VLAN_GetVlanidByName(const char* name, uint16_t* vlanId);

/**
 * Reads the VLAN id of the session's current "vlan" record. A QRB_ENTRY_FUNC for QRB_DB_Scan().
 *
 * @param[in]  session  session positioned on a record of "vlan"
 * @param[out] vlanId   address of a uint16_t
 * @param[in]  index    number of the record; not used
 *
 * @retval 0      the VLAN id was written
 * @retval other  code of the database
 *
 * @par After a failure
 * vlanId is unchanged.
 * @par Log
 * Nothing is logged.
 * @par Source
 * "vlan", field 2.
 */
uint32_t L2IF_DB_ScanVlanId(ORM_SESSION session, void* vlanId, uint32_t index);

#ifdef __cplusplus
}
#endif
