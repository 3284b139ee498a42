/**
 * @file
 * @brief Table walks: all interfaces, all ports, all VLANs.
 *
 * A walk steps through the records of a table in the database's order and yields one value of each.
 * A First function opens the walk and yields the first value, a Next function each following value,
 * a Finish function closes the walk:
 *
 * @code{.c}
 * uint32_t ifIndex;
 * uint32_t ret = QRB_GetFirstIfIndex(&ifIndex);
 * if (ret == 0) {
 *     do {
 *         Use(ifIndex);
 *     } while (QRB_GetNextIfIndex(&ifIndex) == 0);
 *     QRB_ScanIfIndexFinish();
 * }
 * @endcode
 *
 * The process has one walk of each kind, kept in a pair of variables. Walks of different kinds are
 * independent. Each function exists under two names: the QRB names, and names of the older modules,
 * whose outputs are 0 if no value is yielded.
 *
 * @par Results
 * 0 if a value was yielded. 1 at the end of the table, after a failure, if a First function finds
 * the walk already open (it is not affected then) and if a Next function finds it not open.
 * Result 1 does not distinguish these cases.
 * @par Closing
 * A First function that fails has closed the walk, unless it failed because the walk was already
 * open. A Next function never closes the walk: call Finish also after a Next function that failed.
 * @par Null pointers
 * Pointers must not be null: they are not checked.
 * @par Threads
 * There is no lock. Using one walk from several threads at once is undefined: callers serialise
 * every use of a walk, from First to Finish.
 * @par Log
 * Priority 3, with the database's code. The end of the table is not logged, nor a First or Next
 * function that finds the walk in the wrong state.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Session of the interface walk; 0 if the walk is not open. For reading. */
extern ORM_SESSION g_ScanIndexSession;
/** Scan of the interface walk; 0 if the walk is not open. For reading. */
extern ORM_SCAN g_IndexScanHandle;
/** Session of the port walk; 0 if the walk is not open. For reading. */
extern ORM_SESSION g_ScanPortSession;
/** Scan of the port walk; 0 if the walk is not open. For reading. */
extern ORM_SCAN g_PortScanHandle;
/** Session of the VLAN walk; 0 if the walk is not open. For reading. */
extern ORM_SESSION g_ScanVlanSession;
/** Scan of the VLAN walk; 0 if the walk is not open. For reading. */
extern ORM_SCAN g_VlanScanHandle;

/**
 * Opens the walk over all interfaces and yields the first value.
 *
 * @param[out] ifIndex  interface index
 *
 * @retval 0  the value was written; the walk is open
 * @retval 1  the walk was already open, the table is empty, or a step failed
 *
 * @par After a failure
 * ifIndex is unchanged. The walk is closed, unless it was already open.
 * @par Log
 * Each failing step; a failing end of the scan or close, under the name QRB_ScanIfIndexFinish.
 * @par Source
 * "if_base", if_index.
 */
uint32_t QRB_GetFirstIfIndex(uint32_t* ifIndex);

/**
 * Yields the next value of the walk over all interfaces.
 *
 * @param[out] ifIndex  interface index
 *
 * @retval 0  the value was written
 * @retval 1  the walk is not open, the end of the table was reached, or a step failed
 *
 * @par After a failure
 * ifIndex is unchanged. An open walk stays open.
 * @par Log
 * The failing step.
 * @par Source
 * "if_base", if_index.
 */
uint32_t QRB_GetNextIfIndex(uint32_t* ifIndex);

/**
 * Closes the walk over all interfaces.
 *
 * @retval 0  the walk was closed
 * @retval 1  the walk was not open, or ending the scan or closing the session failed
 *
 * @par After a failure
 * The walk is closed.
 * @par Log
 * Ending the scan or closing the session failed, which includes a walk that was not open.
 * @par Source
 * "if_base".
 */
uint32_t QRB_ScanIfIndexFinish(void);

/**
 * Opens the walk over all ports and yields the first value.
 *
 * @param[out] portIndex  port index (port_index), not the interface index
 *
 * @retval 0  the value was written; the walk is open
 * @retval 1  the walk was already open, the table is empty, or a step failed
 *
 * @par After a failure
 * portIndex is unchanged. The walk is closed, unless it was already open.
 * @par Log
 * Each failing step; a failing end of the scan or close, under the name QRB_ScanPortFinish.
 * @par Source
 * "port", port_index.
 */
uint32_t QRB_GetFirstPort(uint32_t* portIndex);

/**
 * Yields the next value of the walk over all ports.
 *
 * @param[out] portIndex  port index (port_index), not the interface index
 *
 * @retval 0  the value was written
 * @retval 1  the walk is not open, the end of the table was reached, or a step failed
 *
 * @par After a failure
 * portIndex is unchanged. An open walk stays open.
 * @par Log
 * The failing step.
 * @par Source
 * "port", port_index.
 */
uint32_t QRB_GetNextPort(uint32_t* portIndex);

/**
 * Closes the walk over all ports.
 *
 * @retval 0  the walk was closed
 * @retval 1  the walk was not open, or ending the scan or closing the session failed
 *
 * @par After a failure
 * The walk is closed.
 * @par Log
 * Ending the scan or closing the session failed, which includes a walk that was not open.
 * @par Source
 * "port".
 */
uint32_t QRB_ScanPortFinish(void);

/**
 * Opens the walk over all VLANs and yields the first value.
 *
 * @param[out] vlanId  VLAN id, widened to 32 bits
 *
 * @retval 0  the value was written; the walk is open
 * @retval 1  the walk was already open, the table is empty, or a step failed
 *
 * @par After a failure
 * vlanId is unchanged. The walk is closed, unless it was already open.
 * @par Log
 * Each failing step; a failing end of the scan or close, under the name QRB_ScanVlanFinish.
 * @par Source
 * "vlan", vlan_id.
 */
uint32_t QRB_GetFirstVlan(uint32_t* vlanId);

/**
 * Yields the next value of the walk over all VLANs.
 *
 * @param[out] vlanId  VLAN id, widened to 32 bits
 *
 * @retval 0  the value was written
 * @retval 1  the walk is not open, the end of the table was reached, or a step failed
 *
 * @par After a failure
 * vlanId is unchanged. An open walk stays open.
 * @par Log
 * The failing step.
 * @par Source
 * "vlan", vlan_id.
 */
uint32_t QRB_GetNextVlan(uint32_t* vlanId);

/**
 * Closes the walk over all VLANs.
 *
 * @retval 0  the walk was closed
 * @retval 1  the walk was not open, or ending the scan or closing the session failed
 *
 * @par After a failure
 * The walk is closed.
 * @par Log
 * Ending the scan or closing the session failed, which includes a walk that was not open.
 * @par Source
 * "vlan".
 */
uint32_t QRB_ScanVlanFinish(void);

/**
 * Opens the walk over all interfaces and yields the first value. QRB_GetFirstIfIndex() under the
 * name of the older modules.
 *
 * @param[out] ifIndex  interface index; 0 if no value is yielded
 *
 * @retval 0  the value was written; the walk is open
 * @retval 1  the walk was already open, the table is empty, or a step failed
 *
 * @par After a failure
 * ifIndex is 0. The walk is closed, unless it was already open.
 * @par Log
 * What QRB_GetFirstIfIndex() logs, under that name.
 * @par Source
 * "if_base", if_index.
 */
uint32_t IF_INTF_GetFirstIfIndex(uint32_t* ifIndex);

/**
 * Yields the next value of the walk over all interfaces. QRB_GetNextIfIndex() under the name of the
 * older modules.
 *
 * @param[in]  current  not used: the walk keeps its position itself
 * @param[out] ifIndex  interface index; 0 if no value is yielded
 *
 * @retval 0  the value was written
 * @retval 1  the walk is not open, the end of the table was reached, or a step failed
 *
 * @par After a failure
 * ifIndex is 0. An open walk stays open.
 * @par Log
 * What QRB_GetNextIfIndex() logs, under that name.
 * @par Source
 * "if_base", if_index.
 */
uint32_t IF_INTF_GetNextIfIndex(uint32_t current, uint32_t* ifIndex);

/**
 * Closes the walk over all interfaces. QRB_ScanIfIndexFinish() under the name of the older modules.
 *
 * @retval 0  the walk was closed
 * @retval 1  the walk was not open, or ending the scan or closing the session failed
 *
 * @par After a failure
 * The walk is closed.
 * @par Log
 * What QRB_ScanIfIndexFinish() logs, under that name.
 * @par Source
 * "if_base".
 */
uint32_t IF_INTF_ScanFinish(void);

/**
 * Opens the walk over all ports and yields the first value. QRB_GetFirstPort() under the name of
 * the older modules.
 *
 * @param[out] portIndex  port index (port_index), not the interface index; 0 if no value is yielded
 *
 * @retval 0  the value was written; the walk is open
 * @retval 1  the walk was already open, the table is empty, or a step failed
 *
 * @par After a failure
 * portIndex is 0. The walk is closed, unless it was already open.
 * @par Log
 * What QRB_GetFirstPort() logs, under that name.
 * @par Source
 * "port", port_index.
 */
uint32_t L2IF_GetFirstPort(uint32_t* portIndex);

/**
 * Yields the next value of the walk over all ports. QRB_GetNextPort() under the name of the older
 * modules.
 *
 * @param[out] portIndex  port index (port_index), not the interface index; 0 if no value is yielded
 *
 * @retval 0  the value was written
 * @retval 1  the walk is not open, the end of the table was reached, or a step failed
 *
 * @par After a failure
 * portIndex is 0. An open walk stays open.
 * @par Log
 * What QRB_GetNextPort() logs, under that name.
 * @par Source
 * "port", port_index.
 */
uint32_t L2IF_GetNextPort(uint32_t* portIndex);

/**
 * Closes the walk over all ports. QRB_ScanPortFinish() under the name of the older modules.
 *
 * @retval 0  the walk was closed
 * @retval 1  the walk was not open, or ending the scan or closing the session failed
 *
 * @par After a failure
 * The walk is closed.
 * @par Log
 * What QRB_ScanPortFinish() logs, under that name.
 * @par Source
 * "port".
 */
uint32_t L2IF_ScanFinish(void);

/**
 * Opens the walk over all VLANs and yields the first value. QRB_GetFirstVlan() under the name of
 * the older modules.
 *
 * @param[out] vlanId  VLAN id; 0 if no value is yielded
 *
 * @retval 0  the value was written; the walk is open
 * @retval 1  the walk was already open, the table is empty, or a step failed
 *
 * @par After a failure
 * vlanId is 0. The walk is closed, unless it was already open.
 * @par Log
 * What QRB_GetFirstVlan() logs, under that name.
 * @par Source
 * "vlan", vlan_id.
 */
uint32_t L2IF_GetFirstVlan(uint16_t* vlanId);

/**
 * Yields the next value of the walk over all VLANs. QRB_GetNextVlan() under the name of the older
 * modules.
 *
 * @param[out] vlanId  VLAN id; 0 if no value is yielded
 *
 * @retval 0  the value was written
 * @retval 1  the walk is not open, the end of the table was reached, or a step failed
 *
 * @par After a failure
 * vlanId is 0. An open walk stays open.
 * @par Log
 * What QRB_GetNextVlan() logs, under that name.
 * @par Source
 * "vlan", vlan_id.
 */
uint32_t L2IF_GetNextVlan(uint16_t* vlanId);

/**
 * Closes the walk over all VLANs. QRB_ScanVlanFinish() under the name of the older modules.
 *
 * @retval 0  the walk was closed
 * @retval 1  the walk was not open, or ending the scan or closing the session failed
 *
 * @par After a failure
 * The walk is closed.
 * @par Log
 * What QRB_ScanVlanFinish() logs, under that name.
 * @par Source
 * "vlan".
 */
uint32_t L2IF_ScanVlanFinish(void);

#ifdef __cplusplus
}
#endif
