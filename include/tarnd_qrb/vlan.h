/*
 * VLANs: activity, members, default VLAN, description, name; answered from "vlan" and "port".
 *
 * VLAN_Is* answer in status form, 0 for yes; BDS_L2IF_* ask the same and answer 1 for yes. VLAN ids
 * are passed through: no range is checked. A VLAN's record stands under two scope words and its id;
 * queries that know only the id look in scope (0, 0) unless a comment says otherwise. Every
 * function runs on any thread and keeps nothing between calls. Pointers are not checked for null.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Whether a VLAN is active (field 9 is 1) in any scope, by a scan of "vlan". 0 yes; 1 no, unknown,
   or the database failed (logged). */
uint32_t VLAN_IsVlanActive(uint16_t vlanId);

/* Whether a VLAN is active, as VLAN_IsVlanActive: 1 yes, 0 otherwise. */
uint32_t BDS_L2IF_VLAN_IsActive(uint16_t vlanId);

/* Whether a VLAN has a record in "vlan". 0 yes, 1 otherwise; also an absent record is logged as an
 * error. */
uint32_t VLAN_IsVlanUsed(uint16_t vlanId);

/* Whether a VLAN has a record, as VLAN_IsVlanUsed: 1 yes, 0 otherwise. */
uint32_t BDS_L2IF_VLAN_IsUsed(uint16_t vlanId);

/* A port's position in the member sets of a VLAN: bits 8 to 15 of its port_index. No database. */
uint8_t VLAN_PortIndex2PortIdx(uint32_t portIndex);

/* Whether a port is in one of a VLAN's two member sets (member_bitmap_1, member_bitmap_2). Scope
   words and port_index are those of the port's own record. 0 yes; 1 no, or a read failed (logged).
   An absent port is taken for position 0 in scope (0, 0), an absent VLAN has no members. */
uint32_t VLAN_IsPortInVlan(uint32_t ifIndex, uint16_t vlanId);

/* Whether a port is in a VLAN, as VLAN_IsPortInVlan: 1 yes, 0 otherwise. */
uint32_t BDS_L2IF_VP_PortIsInVlan(uint32_t ifIndex, uint16_t vlanId);

/* A stub: looks at nothing, logs that it is one and answers 0. */
uint32_t BDS_L2IF_VP_PortIsInVlanWithTag(uint32_t ifIndex, uint16_t vlanId);

/* A port's default VLAN (pvid). Answers the record reader's own code, silently. *pvid is written
   unless that code is 1; it is 0 where nothing was read. */
uint32_t L2IF_GetPVIDByIfIndex(uint32_t ifIndex, uint16_t* pvid);

/*
 * A VLAN's description, as stored.
 *
 * description  81 bytes (QRB_VLAN_DESCRIPTION_SIZE). Untouched when the record reader answers 1;
 *              an empty text where nothing was read.
 *
 * 0, or 1 when the text can't be copied (logged). A failed read is 0 too, and silent.
 */
uint32_t L2IF_VLAN_GetDescript(uint16_t vlanId, char* description);

/* The id of the first VLAN, in any scope, whose name (32 bytes, zero-padded) is the given one; a
   longer name is cut to 32. 0, or 1 (logged, also when no VLAN has the name). *vlanId is written
   when the VLAN is met, even where a later step fails. */
uint32_t L2IF_SH_VLAN_GetVlanidByName(const char* name, uint16_t* vlanId);

/* The row step of L2IF_SH_VLAN_GetVlanidByName's scan, a QRB_ENTRY_FUNC: reads vlan_id (field 2) of
   the session's current record into vlanId, an address of uint16_t. The database's code. */
uint32_t L2IF_DB_ScanVlanId(ORM_SESSION session, void* vlanId, uint32_t index);

#ifdef __cplusplus
}
#endif
