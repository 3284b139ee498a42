/*
 * Change detection: from the database's messages to events.
 *
 * A table callback gets one delivery, which is one or more row messages of one event type (the
 * ORM_EVENT_* of tarnd_platform/orm_subscription.h), compares each message's old row with its new
 * one and publishes what the change means; tarnd_qrb/event_publish.h says what each event passes.
 *
 *     table     event type                change                      published, in this order
 *     if_base   insert                                                IF_NOTIFY_CREATED
 *               delete                                                IF_NOTIFY_DELETED
 *     if_phy    insert, replace without   phy_state 1                 PHY_UP, IF_NOTIFY_UP
 *               an old row                phy_state 0                 IF_NOTIFY_DOWN
 *               update, replace           phy_state 0 to 1            PHY_STATE up, PHY_UP,
 *                                                                     IF_NOTIFY_UP
 *                                         phy_state 1 to 0            PHY_STATE down,
 *                                                                     IF_NOTIFY_DOWN
 *     if_route  update, replace           route_state 0 to 1, 1 to 0  ROUTE_STATE up, down
 *     port      insert, replace without                               PORT_ADD
 *               an old row
 *               delete                                                PORT_DEL
 *               update, replace           switch_port 0 to 1, 1 to 0  SWITCH_PORT_ON, _OFF
 *                                         then vlan_bitmap_2 or, if   VLAN_ADD_PORT or
 *                                         it is the same, _1          VLAN_DEL_PORT
 *
 * Everything else publishes nothing. A delivery of another event type is logged and dropped; that
 * includes a deletion from if_phy.
 *
 * Failures are logged. A message that can't be fetched ends its delivery, and so does a row that
 * can't be extracted, except that of an insertion into if_phy or port, or of a deletion from port:
 * only that message is skipped. A publication that fails stops nothing.
 *
 * Threads: the database client runs the callbacks on the listener thread, one after another, and
 * everything is published from there. Nothing is kept between messages. Message handles are good
 * during the callback that got them; rows and buffers are the caller's. Null is checked where a
 * comment says so.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm_subscription.h>
#include <tarnd_qrb/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What an interface notification from "if_phy" is about, from the new row. */
typedef struct {
    uint32_t ifIndex;
    uint32_t phyState;
} QRB_IF_PHY_NOTICE_S;

/* The callback of "if_base": handles insert and delete. */
void QRB_EVENT_IfBaseTableCallback(ORM_MESSAGE message, uint32_t eventType);

/* The if_index and if_name of one object (ORM_OBJECT_OLD or ORM_OBJECT_NEW) of the current message;
   the rest of the row is left alone. 0, or 1 on a failure. */
uint32_t QRB_EVENT_GetIfBaseFromSession(ORM_MESSAGE message, uint32_t object, QRB_IF_BASE_S* row);

/* The callback of "if_phy": handles insert, update and replace. */
void QRB_EVENT_IfPhyTableCallback(ORM_MESSAGE message, uint32_t eventType);

/* The current message's old or new row of "if_phy". What the database leaves out of it reads as
   zero. 0, or 1 on a failure. */
uint32_t QRB_EVENT_IfPhyOrmGetOldData(ORM_MESSAGE message, QRB_IF_PHY_S* row);
uint32_t QRB_EVENT_IfPhyOrmGetNewData(ORM_MESSAGE message, QRB_IF_PHY_S* row);

/* Publishes an insertion into "if_phy". row and notice are filled from the current message's new
   row. */
void QRB_EVENT_IfPhyInsert(ORM_MESSAGE message, QRB_IF_PHY_S* row, QRB_IF_PHY_NOTICE_S* notice);

/* Publishes a change of phy_state; notice is filled where there is one. */
void QRB_EVENT_IfPhyUpdate(const QRB_IF_PHY_S* oldRow, const QRB_IF_PHY_S* newRow,
                           QRB_IF_PHY_NOTICE_S* notice);

/* The callback of "if_route": handles update and replace. */
void QRB_EVENT_IfRouteTableCallback(ORM_MESSAGE message, uint32_t eventType);

/* The current message's old or new row of "if_route". What the database leaves out of it reads as
   zero. 0, or 1 on a failure. */
uint32_t QRB_EVENT_IfRouteOrmGetOldData(ORM_MESSAGE message, QRB_IF_ROUTE_S* row);
uint32_t QRB_EVENT_IfRouteOrmGetNewData(ORM_MESSAGE message, QRB_IF_ROUTE_S* row);

/* Publishes a change of route_state. */
void QRB_EVENT_IfRouteUpdate(const QRB_IF_ROUTE_S* oldRow, const QRB_IF_ROUTE_S* newRow);

/* The callback of "port": handles insert, delete, update and replace. */
void QRB_EVENT_PortTableCallback(ORM_MESSAGE message, uint32_t eventType);

/* The current message's old or new row of "port". What the database leaves out of it reads as zero.
   0, or 1 on a failure. */
uint32_t QRB_EVENT_PortOrmGetOldData(ORM_MESSAGE message, QRB_PORT_S* row);
uint32_t QRB_EVENT_PortOrmGetNewData(ORM_MESSAGE message, QRB_PORT_S* row);

/* Publishes an insertion into "port". row is filled from the current message's new row. */
void QRB_EVENT_PortInsert(ORM_MESSAGE message, QRB_PORT_S* row);

/* Publishes a deletion from "port". row is filled from the current message's old row. */
void QRB_EVENT_PortDelete(ORM_MESSAGE message, QRB_PORT_S* row);

/* Publishes a change of switch_port. */
void QRB_EVENT_PortUpdateSwitchPortUse(const QRB_PORT_S* oldRow, const QRB_PORT_S* newRow);

/*
 * Publishes a change of one VLAN bitmap, by its first byte that differs: the port joined VLANs
 * where the new value is the greater number, and left some where it is the smaller.
 *
 * length  bytes to compare, at most QRB_VLAN_SET_SIZE.
 * which   1 for vlan_bitmap_1, else vlan_bitmap_2.
 *
 * 1 where nothing differs or a row is null (logged); 0 where something does, published or not.
 */
uint32_t QRB_EVENT_PortCheckIsVlanBitMapChange(const QRB_PORT_S* newRow, const QRB_PORT_S* oldRow,
                                               int32_t length, uint8_t which);

/* A hook that does nothing. */
void QRB_EVENT_PrintIfLink(const QRB_IF_LINK_S* row);
void QRB_EVENT_PrintIfPhy(const QRB_IF_PHY_S* row);
void QRB_EVENT_PrintIfRoute(const QRB_IF_ROUTE_S* row);
void QRB_EVENT_PrintPort(const QRB_PORT_S* row);

#ifdef __cplusplus
}
#endif
