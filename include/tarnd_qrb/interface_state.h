/**
 * @file
 * @brief State, slot, port, card and MAC address of interfaces; slot texts; classes of interface
 *        index.
 *
 * Source: tables "if_link", "if_route", "if_phy" and "port".
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * A refused null pointer is a failure and is logged as "Null value provided".
 * @par Threads
 * Any thread may call any function. No state is kept between calls.
 * @par Log
 * Priority 3, with the database's code, unless a function's description says otherwise. A missing
 * record is logged like any other failure.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define QRB_IF_STATE_UP 1u   /**< Line or link state: up. */
#define QRB_IF_STATE_DOWN 2u /**< Line or link state: down. */

#define QRB_SLOT_TEXT_SIZE 64 /**< Size of a slot text buffer in bytes, NUL included. */

/**
 * Reads the line state of an interface: up if both the link and layer 3 are up.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] state    QRB_IF_STATE_UP if neither link_state nor route_state is 0, else
 *                      QRB_IF_STATE_DOWN; null is refused
 *
 * @retval 0  the state was written
 * @retval 1  state is null, or a record is missing or cannot be read
 *
 * @par After a failure
 * state is unchanged.
 * @par Log
 * A null state; a record that is missing or cannot be read.
 * @par Source
 * "if_link", link_state, and "if_route", route_state, by if_index.
 */
uint32_t IF_INTF_GetIfLineState(uint32_t ifIndex, uint32_t* state);

/**
 * Reads the line state of an interface. Same as IF_INTF_GetIfLineState().
 *
 * @param[in]  ifIndex  interface index
 * @param[out] state    QRB_IF_STATE_UP if neither link_state nor route_state is 0, else
 *                      QRB_IF_STATE_DOWN; null is refused
 *
 * @retval 0  the state was written
 * @retval 1  state is null, or a record is missing or cannot be read
 *
 * @par After a failure
 * state is unchanged.
 * @par Log
 * A null state; a record that is missing or cannot be read; under the name IF_INTF_GetIfLineState.
 * @par Source
 * "if_link", link_state, and "if_route", route_state, by if_index.
 */
uint32_t BDS_IfnetGetLineState(uint32_t ifIndex, uint32_t* state);

/**
 * Reads the link state of an interface.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] state    QRB_IF_STATE_UP if link_state is 1, else QRB_IF_STATE_DOWN; null is refused
 *
 * @retval 0  the state was written
 * @retval 1  state is null, or the record is missing or cannot be read
 *
 * @par After a failure
 * state is unchanged.
 * @par Log
 * A null state; a record that is missing or cannot be read.
 * @par Source
 * "if_link", link_state, by if_index.
 */
uint32_t IF_INTF_GetIfLinkState(uint32_t ifIndex, uint32_t* state);

/**
 * Reads the link state of an interface. Same as IF_INTF_GetIfLinkState().
 *
 * @param[in]  ifIndex  interface index
 * @param[out] state    QRB_IF_STATE_UP if link_state is 1, else QRB_IF_STATE_DOWN; null is refused
 *
 * @retval 0  the state was written
 * @retval 1  state is null, or the record is missing or cannot be read
 *
 * @par After a failure
 * state is unchanged.
 * @par Log
 * A null state; a record that is missing or cannot be read; under the name IF_INTF_GetIfLinkState.
 * @par Source
 * "if_link", link_state, by if_index.
 */
uint32_t BDS_IfnetGetLinkState(uint32_t ifIndex, uint32_t* state);

/**
 * Reads the physical state of an interface.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] state    physical state as stored, 1 byte: 1 up, 0 down
 *
 * @retval 0  the state was written
 * @retval 1  the record is missing, or a step failed
 *
 * @par After a failure
 * state is unchanged. If only closing the session failed, it is written.
 * @par Log
 * Each failing step, including a missing record.
 * @par Source
 * "if_phy", "phy_state", by if_index.
 */
uint32_t BDS_IfnetGetIfPhyState(uint32_t ifIndex, uint8_t* state);

/**
 * Checks whether an interface is used as a layer-2 (switch) port.
 *
 * @param[in] ifIndex  interface index
 *
 * @retval 1  switch_port is not 0
 * @retval 0  switch_port is 0, the interface has no port record, or the database failed
 *
 * @par Log
 * A database failure. A missing record is not logged.
 * @par Source
 * "port", switch_port, by if_index.
 */
uint32_t BDS_IfnetIsSwitchPort(uint32_t ifIndex);

/**
 * Reads the number of the slot of an interface.
 *
 * @param[in] ifIndex  interface index
 *
 * @return the slot number as stored
 * @retval 0xFFFFFFFF  the record is missing or cannot be read
 *
 * @par Log
 * A record that is missing or cannot be read.
 * @par Source
 * "if_phy", slot_id, by if_index.
 */
uint32_t IF_INTF_GetSlotByIndex(uint32_t ifIndex);

/**
 * Reads the position of an interface below its slot.
 *
 * @param[in] ifIndex  interface index
 *
 * @return the position as stored
 * @retval 0xFFFFFFFF  the record is missing or cannot be read
 *
 * @par Log
 * A record that is missing or cannot be read.
 * @par Source
 * "if_phy", port_id, by if_index.
 */
uint32_t IF_INTF_GetPortByIndex(uint32_t ifIndex);

/**
 * Reads the card number of an interface. It is the position that IF_INTF_GetPortByIndex() returns.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] card     card number; null is refused
 *
 * @retval 0  the card number was written
 * @retval 1  card is null, or the record is missing or cannot be read
 *
 * @par After a failure
 * card is unchanged.
 * @par Log
 * A null card; a record that is missing or cannot be read.
 * @par Source
 * "if_phy", port_id, by if_index.
 */
uint32_t BDS_IfnetGetCardByIfIndex(uint32_t ifIndex, uint32_t* card);

/**
 * Reads the MAC address of an interface.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] mac      QRB_MAC_SIZE (6) bytes, first byte of the address first; null is refused
 *
 * @retval 0  the address was written
 * @retval 1  mac is null, or the record is missing or cannot be read or copied
 *
 * @par After a failure
 * mac is unchanged.
 * @par Log
 * A null mac. Other failures are not logged.
 * @par Source
 * "if_phy", mac_addr, by if_index.
 */
uint32_t BDS_IfnetGetIfMacByIfIndex(uint32_t ifIndex, uint8_t* mac);

/**
 * Reads the MAC address of an interface. Same as BDS_IfnetGetIfMacByIfIndex().
 *
 * @param[in]  ifIndex  interface index
 * @param[out] mac      QRB_MAC_SIZE (6) bytes, first byte of the address first; null is refused
 *
 * @retval 0  the address was written
 * @retval 1  mac is null, or the record is missing or cannot be read or copied
 *
 * @par After a failure
 * mac is unchanged.
 * @par Log
 * A null mac, under the name BDS_IfnetGetIfMacByIfIndex. Other failures are not logged.
 * @par Source
 * "if_phy", mac_addr, by if_index.
 */
uint32_t IF_GetMacAddrByIfIndex(uint32_t ifIndex, uint8_t* mac);

/**
 * Writes a slot number as decimal text.
 *
 * @param[in]  slotId  slot number, signed
 * @param[out] output  QRB_SLOT_TEXT_SIZE (64) bytes; null is refused by the copy
 *
 * @retval 0  the text was written
 * @retval 1  output is null, or formatting or copying failed
 *
 * @par After a failure
 * output is unchanged.
 * @par Log
 * A failing format or copy, without its code.
 * @par Source
 * No database.
 */
uint32_t IF_GetSlotStrBySlotId(int32_t slotId, char* output);

/**
 * Reads the slot number at the beginning of a text, as strtol() with base 10 does.
 *
 * "3/0/1" gives 3; a text that does not begin with a number gives 0.
 *
 * @param[in] text  text of at most 63 bytes; null is refused
 *
 * @return the slot number; a negative one as its 32-bit two's complement
 * @retval 1  text is null or does not fit; also the result for slot 1
 *
 * @par Log
 * A null text; a failing copy, without its code.
 * @par Source
 * No database.
 */
uint32_t BDS_IfnetGetSlotIdBySlotStr(const char* text);

/**
 * Checks whether an interface index is that of a VAP interface: 0x61000000 to 0x61FFFFFF.
 *
 * @param[in] ifIndex  interface index
 *
 * @retval 1  it is
 * @retval 0  it is not
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t IF_INIF_IsVapByIfIndex(uint32_t ifIndex);

/**
 * Checks whether an interface index is that of an AP tunnel interface: 0x60000000 to 0x60FFFFFF.
 *
 * @param[in] ifIndex  interface index
 *
 * @retval 1  it is
 * @retval 0  it is not
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t IF_INIF_IsAPtunnleByIfIndex(uint32_t ifIndex);

/**
 * Returns slot 0 for every interface. Kept for existing callers.
 *
 * @param[in] ifName  not used
 *
 * @retval 0  always
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t IF_INTF_GetSlotByIfName(const char* ifName);

/**
 * Reports every interface as not temporary. Kept for existing callers.
 *
 * @param[in] ifIndex  not used
 *
 * @retval 0  always
 *
 * @par Log
 * One line for each call, "STUB for IF_INTF_IsTempIf".
 * @par Source
 * No database.
 */
uint32_t IF_INTF_IsTempIf(uint32_t ifIndex);

/**
 * Reports every port as not in a trunk. Kept for existing callers.
 *
 * @param[in] ifIndex  not used
 *
 * @retval 0  always
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t BDS_TrunkIsPortInTrunk(uint32_t ifIndex);

/**
 * Fails for every port. Kept for existing callers.
 *
 * @param[in]  ifIndex     not used
 * @param[out] trunkIndex  never written; may be null
 *
 * @retval 1  always
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t BDS_TrunkGetTrunkIndex(uint32_t ifIndex, uint32_t* trunkIndex);

/**
 * Reports every interface as not a layer-3 interface. Kept for existing callers.
 *
 * @param[in] ifIndex  not used
 *
 * @retval 0  always
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t BDS_IfnetIsL3IF(uint32_t ifIndex);

/**
 * Fails for every interface. Kept for existing callers.
 *
 * @param[in]  ifIndex    not used
 * @param[out] etherType  never written; may be null
 *
 * @retval 1  always
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t BDS_QINQ_INTF_GetEthType(uint32_t ifIndex, uint16_t* etherType);

#ifdef __cplusplus
}
#endif
