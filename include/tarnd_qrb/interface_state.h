/*
 * States and hardware attributes of interfaces, slot texts, and what an interface index alone
 * tells; from "if_link", "if_route", "if_phy" and "port".
 *
 * Every function runs on any thread and keeps nothing between calls. Failures are logged, a missing
 * record too, and leave outputs untouched, unless a comment says otherwise. Null is checked where a
 * comment says so.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Answers about line and link. */
#define QRB_IF_STATE_UP 1u
#define QRB_IF_STATE_DOWN 2u

#define QRB_SLOT_TEXT_SIZE 64 /* a slot text and its NUL */

/* The line is up when neither the link (link_state) nor layer 3 (route_state) is 0; state receives
   QRB_IF_STATE_UP or QRB_IF_STATE_DOWN. 0, or 1; null is refused with 1. */
uint32_t IF_INTF_GetIfLineState(uint32_t ifIndex, uint32_t* state);
uint32_t BDS_IfnetGetLineState(uint32_t ifIndex, uint32_t* state);

/* The link is up when link_state is 1, and down for any other value. 0, or 1; null is refused with
   1. */
uint32_t IF_INTF_GetIfLinkState(uint32_t ifIndex, uint32_t* state);
uint32_t BDS_IfnetGetLinkState(uint32_t ifIndex, uint32_t* state);

/* The physical state as stored ("phy_state"): 1 up, 0 down. 0, or 1; state keeps what was read
   where only the closing of the session fails. */
uint32_t BDS_IfnetGetIfPhyState(uint32_t ifIndex, uint8_t* state);

/* Whether the port is used in layer 2 (switch_port): 1 yes; 0 no, no record (silent), or a failure.
 */
uint32_t BDS_IfnetIsSwitchPort(uint32_t ifIndex);

/* The slot that holds the interface (slot_id), or 0xFFFFFFFF. */
uint32_t IF_INTF_GetSlotByIndex(uint32_t ifIndex);

/* The interface's position below its slot (port_id), or 0xFFFFFFFF. */
uint32_t IF_INTF_GetPortByIndex(uint32_t ifIndex);

/* The card, which is the position below the slot (port_id). 0, or 1; null is refused with 1. */
uint32_t BDS_IfnetGetCardByIfIndex(uint32_t ifIndex, uint32_t* card);

/* The MAC address (mac_addr), 6 bytes, first byte first. 0, or 1 (silent); null is refused with 1
   and logged. */
uint32_t BDS_IfnetGetIfMacByIfIndex(uint32_t ifIndex, uint8_t* mac);
uint32_t IF_GetMacAddrByIfIndex(uint32_t ifIndex, uint8_t* mac);

/* A slot number as a text: decimal, signed. output holds QRB_SLOT_TEXT_SIZE bytes. 0, or 1. No
   database. */
uint32_t IF_GetSlotStrBySlotId(int32_t slotId, char* output);

/* The slot number that a text of at most 63 characters begins with, as strtol reads it: "3/0/1"
   gives 3, a text without digits 0. Null, or a longer text, gives 1, which may be slot 1 as well.
   No database. */
uint32_t BDS_IfnetGetSlotIdBySlotStr(const char* text);

/* By the interface index alone: 1 yes, 0 no. VAP interfaces are 0x61000000 to 0x61FFFFFF, AP tunnel
   interfaces 0x60000000 to 0x60FFFFFF. No database. */
uint32_t IF_INIF_IsVapByIfIndex(uint32_t ifIndex);
uint32_t IF_INIF_IsAPtunnleByIfIndex(uint32_t ifIndex);

/*
 * Fixed answers, kept for modules that still ask. They read no argument, write no output and touch
 * no database.
 */
uint32_t IF_INTF_GetSlotByIfName(const char* ifName);                    /* 0: slot 0 */
uint32_t IF_INTF_IsTempIf(uint32_t ifIndex);                             /* 0: no; logs each call */
uint32_t BDS_TrunkIsPortInTrunk(uint32_t ifIndex);                       /* 0: no */
uint32_t BDS_TrunkGetTrunkIndex(uint32_t ifIndex, uint32_t* trunkIndex); /* 1: failure */
uint32_t BDS_IfnetIsL3IF(uint32_t ifIndex);                              /* 0: no */
uint32_t BDS_QINQ_INTF_GetEthType(uint32_t ifIndex, uint16_t* etherType); /* 1: failure */

#ifdef __cplusplus
}
#endif
