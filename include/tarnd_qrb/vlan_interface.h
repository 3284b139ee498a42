/*
 * VLAN interfaces: the layer-3 interface of a VLAN, named "Vlanif" and the VLAN id.
 *
 * Two ways lead from a VLAN id to an interface index, a fixed numbering and a lookup of the name in
 * "if_base"; nothing compares their answers. Every function runs on any thread and keeps nothing
 * between calls. Failures are logged unless a comment calls them silent. Null is checked where a
 * comment says so.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The fixed numbering: 10000 + vlanId. 0, or 1: vlanId is 0 or ifIndex is null. No database. */
uint32_t BDS_L2IF_VLAN_GetIfIndexByVlanId(uint16_t vlanId, uint32_t* ifIndex);

/* The index of the interface with the VLAN's name. 0, or 1. Where there is none or it can't be
   read, *ifIndex becomes 0xFFFFFFFF. */
uint32_t BDS_L2_VlanGetIfIndex(uint16_t vlanId, uint32_t* ifIndex);

/* The index of the interface with the VLAN's name, as a value: 0xFFFFFFFF where there is none or it
   can't be read, 1 where no name can be made; silently, but for what QRB_CreatDbSession logs. */
uint32_t BDS_L2IF_VLAN_GetVlanIfIndex(uint16_t vlanId);

/*
 * The decimal digits that end an interface's name.
 *
 * output  receives the digits and a NUL; untouched on a failure.
 * size    capacity of output in bytes.
 *
 * 0, or 1: silently when there are no digits, fewer than two characters before them, or too many
 * for size. A null name or output and a size of 0 are refused with 1. No database.
 */
uint32_t BDS_IfnetGetVlanIdByIfName(const char* name, char* output, uint32_t size);

/* The VLAN id (1 to 9999) of a VLAN interface: if_type must be 8, the id is what ends if_name. 0,
   or 1. A null output is refused with 1. *vlanId is written once digits are found, so it is 0 after
   a failure for "Vlanif0"; other failures leave it. */
uint32_t BDS_IfnetGetVlanIdByIfIndex(uint32_t ifIndex, uint32_t* vlanId);

#ifdef __cplusplus
}
#endif
