/*
 * Events: which ones the library raises, what they pass, and how to raise one.
 *
 * The library raises its own on its listener thread, as changes arrive, one after another; several
 * for one change in the order in which they stand here. Modules may raise any event, on their own
 * threads; who registers, and what a callback may do, is told in tarnd_qrb/event_registry.h.
 * Callbacks' results are ignored.
 *
 * Layer-2 events, from table "port"; the value is 0. Records and what is pointed to are for
 * reading.
 *
 *     event                     when                    data               argument
 *     L2IF_EVT_SWITCH_PORT_ON   switch_port 0 to 1      uint32_t if_index  uint8_t: the new
 *                                                                          switch_port
 *     L2IF_EVT_SWITCH_PORT_OFF  switch_port 1 to 0      the same           the same
 *     L2IF_EVT_VLAN_ADD_PORT    a VLAN bitmap grew      new QRB_PORT_S     QRB_VLAN_CHANGE_S
 *     L2IF_EVT_VLAN_DEL_PORT    a VLAN bitmap shrank    old QRB_PORT_S     QRB_VLAN_CHANGE_S
 *     L2IF_EVT_PORT_ADD         a row was inserted      new QRB_PORT_S     its vlan_bitmap_2
 *     L2IF_EVT_PORT_DEL         a row was deleted       old QRB_PORT_S     its vlan_bitmap_2
 *
 * Interface events, all sub-events of IF_EVT_STATE, from tables "if_phy" and "if_route".
 *
 *     sub-event                 when                    flag               first, second
 *     IF_SUB_EVT_PHY_STATE      phy_state 0 to 1        IF_EVT_FLAG_UP     null, null
 *                               phy_state 1 to 0        IF_EVT_FLAG_DOWN   null, null
 *     IF_SUB_EVT_PHY_UP         phy_state 0 to 1, or    IF_EVT_FLAG_UP     null, null
 *                               inserted with 1
 *     IF_SUB_EVT_ROUTE_STATE    route_state 0 to 1      IF_EVT_FLAG_UP     uint32_t 1; uint32_t 0,
 *                               route_state 1 to 0      IF_EVT_FLAG_DOWN   not read afterwards
 *
 * Interface notifications, from tables "if_base" and "if_phy"; both values are 0.
 *
 *     command                   when
 *     IF_NOTIFY_CREATED         an if_base row was inserted
 *     IF_NOTIFY_DELETED         an if_base row was deleted
 *     IF_NOTIFY_UP              phy_state 0 to 1, or inserted with 1
 *     IF_NOTIFY_DOWN            phy_state 1 to 0, or inserted with 0
 */
#pragma once

#include <stdint.h>

#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/layout.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/util_list.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Layer-2 event ids. */
#define L2IF_EVT_VLAN_ADD_PORT 11u
#define L2IF_EVT_VLAN_DEL_PORT 12u
#define L2IF_EVT_SWITCH_PORT_ON 13u
#define L2IF_EVT_SWITCH_PORT_OFF 14u
#define L2IF_EVT_PORT_ADD 36u
#define L2IF_EVT_PORT_DEL 37u

/* The interface event id, its sub-event ids and flags. */
#define IF_EVT_STATE 9u
#define IF_SUB_EVT_PHY_STATE 2u
#define IF_SUB_EVT_ROUTE_STATE 3u
#define IF_SUB_EVT_PHY_UP 8u
#define IF_EVT_FLAG_UP 0u
#define IF_EVT_FLAG_DOWN 1u

/* Notification commands. 2 is not raised by the library. */
#define IF_NOTIFY_CREATED 0u
#define IF_NOTIFY_DELETED 1u
#define IF_NOTIFY_UP 3u
#define IF_NOTIFY_DOWN 4u

/* Which of a port's VLAN bitmaps changed. */
#define QRB_VLAN_BITMAP_2 0u
#define QRB_VLAN_BITMAP_1 1u

/* What changed in a port's VLANs. */
typedef struct {
    uint32_t bitmap;    /* QRB_VLAN_BITMAP_1 or QRB_VLAN_BITMAP_2 */
    uint32_t portCount; /* always 1 */
    uint32_t ifIndex;   /* the port's, from the old row */
    uint8_t reserved_12[508];
} QRB_VLAN_CHANGE_S;
QRB_RECORD_SIZE(QRB_VLAN_CHANGE_S, 520);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, bitmap, 0, 4);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, portCount, 4, 4);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, ifIndex, 8, 4);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, reserved_12, 12, 508);

/*
 * Calls the callbacks of a layer-2 event, with data, value and argument handed through.
 *
 * 0, also when nobody is registered; 1 (logged) for an event id of L2IF_EVT_COUNT or more, for a
 * table that is not built, and when it comes to an entry without a callback: those before it have
 * been called, those after it are not.
 */
uint32_t L2IF_SH_EvtPublishEvent(uint32_t eventId, const void* data, uint32_t value,
                                 void* argument);

/*
 * The callbacks of an interface event or sub-event, for the publisher to call.
 *
 * subId  a sub-event id, or IF_EVT_WHOLE.
 * first  the first node, null where nobody is registered; the elements are IF_EVT_CB_S.
 * count  their number.
 *
 * 0; 1 (logged), outputs untouched, for an event or sub-event that doesn't exist, and for a tree
 * that is not built. Null is not checked.
 *
 * The library can't know where such a publisher is: its callbacks must leave the event's entries
 * alone while it walks, unlike those that the library calls.
 */
uint32_t IF_SH_EvtPublishEventGetEventNode(uint32_t eventId, uint32_t subId,
                                           UTIL_LIST_NODE_S** first, uint64_t* count);

/* Calls every notification callback, with these arguments. 0; 1 (logged) where the list is not
   built, that is, until IF_NotifyFuncRegTbl_Init or the first IF_RegNotifyFunc. */
uint32_t IF_NotifyAll(uint32_t ulIfIndex, uint32_t ulCmd, uint32_t a, uint32_t b);

#ifdef __cplusplus
}
#endif
