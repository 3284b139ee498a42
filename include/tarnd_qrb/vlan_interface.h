/**
 * @file
 * @brief VLAN interfaces: the layer-3 interface of a VLAN.
 *
 * The VLAN interface of VLAN 100 has the name "Vlanif100" and the type code 8 (if_type in
 * "if_base"). Two functions look its interface index up by name. BDS_L2IF_VLAN_GetIfIndexByVlanId()
 * computes an index instead; nothing checks that both agree.
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * A refused null pointer is a failure and is logged as "Null value provided".
 * @par Threads
 * Any thread may call any function. No state is kept between calls.
 * @par Log
 * Priority 3, unless a function's description says otherwise.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Computes the interface index of a VLAN interface: 10000 + vlanId.
 *
 * @param[in]  vlanId   VLAN id; 0 is refused
 * @param[out] ifIndex  interface index; null is refused
 *
 * @retval 0  the index was written
 * @retval 1  an argument is refused
 *
 * @par After a failure
 * ifIndex is unchanged.
 * @par Log
 * A refused argument, as "Null value provided".
 * @par Source
 * No database.
 */
uint32_t BDS_L2IF_VLAN_GetIfIndexByVlanId(uint16_t vlanId, uint32_t* ifIndex);

/**
 * Looks up the interface index of a VLAN interface by its name.
 *
 * @param[in]  vlanId   VLAN id
 * @param[out] ifIndex  interface index
 *
 * @retval 0  the index was written
 * @retval 1  no interface has the name, or a step failed
 *
 * @par After a failure
 * ifIndex is 0xFFFFFFFF; unchanged if the name cannot be formatted.
 * @par Log
 * A name that cannot be formatted; a failed lookup, including a missing interface; what
 * IF_INTF_GetIfIndexByFullName() logs.
 * @par Source
 * "if_base", field 0, by the local key.
 */
uint32_t BDS_L2_VlanGetIfIndex(uint16_t vlanId, uint32_t* ifIndex);

/**
 * Looks up the interface index of a VLAN interface by its name, with the index as result.
 *
 * @param[in] vlanId  VLAN id
 *
 * @return the interface index
 * @retval 0xFFFFFFFF  no interface has the name, or a step failed
 * @retval 1           the name cannot be formatted; also the result for interface index 1
 *
 * @par Log
 * What IF_INTF_GetIfIndexByFullName() logs. A name that cannot be formatted is not logged.
 * @par Source
 * "if_base", field 0, by the local key.
 */
uint32_t BDS_L2IF_VLAN_GetVlanIfIndex(uint16_t vlanId);

/**
 * Copies the decimal digits at the end of an interface name.
 *
 * @param[in]  name    interface name; null is refused
 * @param[out] output  the digits and a NUL; bytes after the NUL are unchanged; null is refused
 * @param[in]  size    capacity of output in bytes, at least the number of digits plus 1; 0 is
 * refused
 *
 * @retval 0  the digits were written
 * @retval 1  an argument is refused, the name has no digits at its end, fewer than two characters
 *            precede them, they do not fit, or the copy failed
 *
 * @par After a failure
 * output is unchanged.
 * @par Log
 * A refused argument, as "Null value provided"; a failing copy. Digits that are missing or do not
 * fit are not logged.
 * @par Source
 * No database.
 */
uint32_t BDS_IfnetGetVlanIdByIfName(const char* name, char* output, uint32_t size);

/**
 * Reads the VLAN id of a VLAN interface: the number at the end of its name.
 *
 * @param[in]  ifIndex  interface index of a VLAN interface
 * @param[out] vlanId   VLAN id, 1 to 9999; null is refused
 *
 * @retval 0  the VLAN id was written
 * @retval 1  vlanId is null; the interface has no record or another type code than 8; its name ends
 *            with no digit, more than four, or 0; or a step failed
 *
 * @par After a failure
 * vlanId is unchanged; 0 if the digits are those of 0.
 * @par Log
 * Each failure; the first failing step is logged by the function that runs it, too.
 * @par Source
 * "if_base", "if_type" and if_name, by if_index, in two reads.
 */
uint32_t BDS_IfnetGetVlanIdByIfIndex(uint32_t ifIndex, uint32_t* vlanId);

#ifdef __cplusplus
}
#endif
