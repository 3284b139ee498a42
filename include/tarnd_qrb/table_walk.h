/*
 * Walks over whole tables: interfaces ("if_base"), ports ("port") and VLANs ("vlan").
 *
 * First opens a walk and yields the first row's value, Next yields the following ones, Finish
 * closes the walk. There is one walk of each kind in the process, kept in a pair of variables. Call
 * First; then Next until it answers 1; then Finish, also after a failing Next. A failing First has
 * closed the walk itself, unless it failed because the walk was open already: that one goes on
 * undisturbed.
 *
 * All answer 0 when a value was written, 1 when there is none: the end of the table, a walk that is
 * not open (First: is open), or a failure (logged). Rows come in the database's order. No lock:
 * callers serialise their use of each walk. Null is not checked.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The walks: both of a pair are 0, or both belong to an open walk. */
extern ORM_SESSION g_ScanIndexSession;
extern ORM_SCAN g_IndexScanHandle;
extern ORM_SESSION g_ScanPortSession;
extern ORM_SCAN g_PortScanHandle;
extern ORM_SESSION g_ScanVlanSession;
extern ORM_SCAN g_VlanScanHandle;

/* Under their own names. First and Next leave the output untouched when they answer 1. Finish
   closes the walk whatever happens; 1 when that fails, as it does for a walk that is not open (both
   logged). */

/* Interfaces: if_index. */
uint32_t QRB_GetFirstIfIndex(uint32_t* ifIndex);
uint32_t QRB_GetNextIfIndex(uint32_t* ifIndex);
uint32_t QRB_ScanIfIndexFinish(void);

/* Ports: port_index, which is not the interface index. */
uint32_t QRB_GetFirstPort(uint32_t* portIndex);
uint32_t QRB_GetNextPort(uint32_t* portIndex);
uint32_t QRB_ScanPortFinish(void);

/* VLANs: vlan_id. */
uint32_t QRB_GetFirstVlan(uint32_t* vlanId);
uint32_t QRB_GetNextVlan(uint32_t* vlanId);
uint32_t QRB_ScanVlanFinish(void);

/* Under the names of the older modules. The same walks; outputs are 0 when First and Next answer 1.
   Finish is the walk's own. */

/* Interfaces: if_index. The walk's position alone decides: current is not looked at. */
uint32_t IF_INTF_GetFirstIfIndex(uint32_t* ifIndex);
uint32_t IF_INTF_GetNextIfIndex(uint32_t current, uint32_t* ifIndex);
uint32_t IF_INTF_ScanFinish(void);

/* Ports: port_index. */
uint32_t L2IF_GetFirstPort(uint32_t* portIndex);
uint32_t L2IF_GetNextPort(uint32_t* portIndex);
uint32_t L2IF_ScanFinish(void);

/* VLANs: vlan_id. */
uint32_t L2IF_GetFirstVlan(uint16_t* vlanId);
uint32_t L2IF_GetNextVlan(uint16_t* vlanId);
uint32_t L2IF_ScanVlanFinish(void);

#ifdef __cplusplus
}
#endif
