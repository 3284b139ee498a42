/**
 * @file
 * @brief Change detection: from row messages of the database to events.
 *
 * A table callback handles one delivery: one or more row messages of one event type, such as
 * ORM_EVENT_INSERT. It compares the old and the new row of each message and publishes the events of
 * the change (tarnd_qrb/event_publish.h), in this order:
 *
 * @verbatim
table     event type       change                      published
if_base   insert                                       IF_NOTIFY_CREATED
          delete                                       IF_NOTIFY_DELETED
if_phy    insert, replace  phy_state 1                 PHY_UP, IF_NOTIFY_UP
          of no old row    phy_state 0                 IF_NOTIFY_DOWN
          update, replace  phy_state 0 to 1            PHY_STATE up, PHY_UP,
                                                       IF_NOTIFY_UP
                           phy_state 1 to 0            PHY_STATE down,
                                                       IF_NOTIFY_DOWN
if_route  update, replace  route_state 0 to 1, 1 to 0  ROUTE_STATE up, down
port      insert, replace                              PORT_ADD
          of no old row
          delete                                       PORT_DEL
          update, replace  switch_port 0 to 1, 1 to 0  SWITCH_PORT_ON, _OFF
                           then vlan_bitmap_2 or, if   VLAN_ADD_PORT or
                           it is the same, _1          VLAN_DEL_PORT
@endverbatim
 *
 * Other changes publish no event. A change of a state from or to a value other than 0 and 1 is
 * ignored.
 *
 * @par Failures
 * A delivery of another event type is logged and dropped; a deletion from "if_phy" is such a
 * delivery. If a message cannot be fetched, or one of its rows cannot be read, the delivery ends.
 * Exception: an insertion into "if_phy" or "port" or a deletion from "port" is skipped if its row
 * cannot be read. A publication that fails is logged, and the delivery continues.
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * The database client calls the table callbacks on the listener thread, one after another; events
 * are published on it. No state is kept between messages.
 * @par Ownership
 * A message is valid during the callback that received it. Rows and buffers are the caller's.
 * @par Log
 * Priority 3, with the database's code where there is one.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm_subscription.h>
#include <tarnd_qrb/records.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Interface index and physical state of an "if_phy" row. */
typedef struct {
    uint32_t ifIndex;  /**< interface index */
    uint32_t phyState; /**< physical state: 1 up, 0 down */
} QRB_IF_PHY_NOTICE_S;

/**
 * Handles a delivery of table "if_base". An ORM_SUB_CALLBACK.
 *
 * @param[in] message    the delivery
 * @param[in] eventType  ORM_EVENT_INSERT or ORM_EVENT_DELETE
 *
 * @par After a failure
 * The messages before the failure were handled. See Failures in tarnd_qrb/change_detection.h.
 * @par Log
 * An event type that is not handled; a message that cannot be fetched; a row that cannot be read; a
 * publication that failed.
 * @par Source
 * "if_base".
 */
void QRB_EVENT_IfBaseTableCallback(ORM_MESSAGE message, uint32_t eventType);

/**
 * Reads if_index and if_name of the old or the new row of the current message of table "if_base".
 *
 * @param[in]  message  delivery with a current message
 * @param[in]  object   ORM_OBJECT_OLD or ORM_OBJECT_NEW
 * @param[out] row      if_index and if_name are written, the other members are unchanged
 *
 * @retval 0  both fields were read
 * @retval 1  the message has no such row, or a field cannot be read
 *
 * @par After a failure
 * row is unchanged; if_index is written if only if_name cannot be read.
 * @par Log
 * The failure.
 * @par Source
 * "if_base", fields 0 and 2.
 */
uint32_t QRB_EVENT_GetIfBaseFromSession(ORM_MESSAGE message, uint32_t object, QRB_IF_BASE_S* row);

/**
 * Handles a delivery of table "if_phy". An ORM_SUB_CALLBACK.
 *
 * @param[in] message    the delivery
 * @param[in] eventType  ORM_EVENT_INSERT, ORM_EVENT_UPDATE or ORM_EVENT_REPLACE
 *
 * @par After a failure
 * The messages before the failure were handled. See Failures in tarnd_qrb/change_detection.h.
 * @par Log
 * An event type that is not handled; a message that cannot be fetched; a row that cannot be read; a
 * publication that failed.
 * @par Source
 * "if_phy".
 */
void QRB_EVENT_IfPhyTableCallback(ORM_MESSAGE message, uint32_t eventType);

/**
 * Reads the old row of the current message of table "if_phy".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the row; fields that the database does not fill are 0
 *
 * @retval 0  the row was read
 * @retval 1  the message has no old row, or the row cannot be read
 *
 * @par After a failure
 * row is unchanged if the old row cannot be selected, else zero or partly filled.
 * @par Log
 * The failure.
 * @par Source
 * "if_phy".
 */
uint32_t QRB_EVENT_IfPhyOrmGetOldData(ORM_MESSAGE message, QRB_IF_PHY_S* row);

/**
 * Reads the new row of the current message of table "if_phy".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the row; fields that the database does not fill are 0
 *
 * @retval 0  the row was read
 * @retval 1  the message has no new row, or the row cannot be read
 *
 * @par After a failure
 * row is unchanged if the new row cannot be selected, else zero or partly filled.
 * @par Log
 * The failure.
 * @par Source
 * "if_phy".
 */
uint32_t QRB_EVENT_IfPhyOrmGetNewData(ORM_MESSAGE message, QRB_IF_PHY_S* row);

/**
 * Publishes an insertion into table "if_phy".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the new row
 * @param[out] notice   if_index and phy_state of the new row
 *
 * @par After a failure
 * If the row cannot be read, notice is unchanged and nothing is published.
 * @par Log
 * A row that cannot be read; a publication that failed.
 * @par Source
 * "if_phy".
 */
void QRB_EVENT_IfPhyInsert(ORM_MESSAGE message, QRB_IF_PHY_S* row, QRB_IF_PHY_NOTICE_S* notice);

/**
 * Publishes a change of phy_state between 0 and 1.
 *
 * @param[in]  oldRow  row before the change
 * @param[in]  newRow  row after the change
 * @param[out] notice  if_index and phy_state of the new row; unchanged if there is no change
 *
 * @par Log
 * A publication that failed.
 * @par Source
 * "if_phy".
 */
void QRB_EVENT_IfPhyUpdate(const QRB_IF_PHY_S* oldRow, const QRB_IF_PHY_S* newRow,
                           QRB_IF_PHY_NOTICE_S* notice);

/**
 * Handles a delivery of table "if_route". An ORM_SUB_CALLBACK.
 *
 * @param[in] message    the delivery
 * @param[in] eventType  ORM_EVENT_UPDATE or ORM_EVENT_REPLACE
 *
 * @par After a failure
 * The messages before the failure were handled. See Failures in tarnd_qrb/change_detection.h.
 * @par Log
 * An event type that is not handled; a message that cannot be fetched; a row that cannot be read; a
 * publication that failed.
 * @par Source
 * "if_route".
 */
void QRB_EVENT_IfRouteTableCallback(ORM_MESSAGE message, uint32_t eventType);

/**
 * Reads the old row of the current message of table "if_route".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the row; fields that the database does not fill are 0
 *
 * @retval 0  the row was read
 * @retval 1  the message has no old row, or the row cannot be read
 *
 * @par After a failure
 * row is unchanged if the old row cannot be selected, else zero or partly filled.
 * @par Log
 * The failure.
 * @par Source
 * "if_route".
 */
uint32_t QRB_EVENT_IfRouteOrmGetOldData(ORM_MESSAGE message, QRB_IF_ROUTE_S* row);

/**
 * Reads the new row of the current message of table "if_route".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the row; fields that the database does not fill are 0
 *
 * @retval 0  the row was read
 * @retval 1  the message has no new row, or the row cannot be read
 *
 * @par After a failure
 * row is unchanged if the new row cannot be selected, else zero or partly filled.
 * @par Log
 * The failure.
 * @par Source
 * "if_route".
 */
uint32_t QRB_EVENT_IfRouteOrmGetNewData(ORM_MESSAGE message, QRB_IF_ROUTE_S* row);

/**
 * Publishes a change of route_state between 0 and 1.
 *
 * @param[in] oldRow  row before the change
 * @param[in] newRow  row after the change
 *
 * @par Log
 * A publication that failed.
 * @par Source
 * "if_route".
 */
void QRB_EVENT_IfRouteUpdate(const QRB_IF_ROUTE_S* oldRow, const QRB_IF_ROUTE_S* newRow);

/**
 * Handles a delivery of table "port". An ORM_SUB_CALLBACK.
 *
 * @param[in] message    the delivery
 * @param[in] eventType  ORM_EVENT_INSERT, ORM_EVENT_DELETE, ORM_EVENT_UPDATE or ORM_EVENT_REPLACE
 *
 * @par After a failure
 * The messages before the failure were handled. See Failures in tarnd_qrb/change_detection.h.
 * @par Log
 * An event type that is not handled; a message that cannot be fetched; a row that cannot be read; a
 * publication that failed.
 * @par Source
 * "port".
 */
void QRB_EVENT_PortTableCallback(ORM_MESSAGE message, uint32_t eventType);

/**
 * Reads the old row of the current message of table "port".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the row; fields that the database does not fill are 0
 *
 * @retval 0  the row was read
 * @retval 1  the message has no old row, or the row cannot be read
 *
 * @par After a failure
 * row is unchanged if the old row cannot be selected, else zero or partly filled.
 * @par Log
 * The failure.
 * @par Source
 * "port".
 */
uint32_t QRB_EVENT_PortOrmGetOldData(ORM_MESSAGE message, QRB_PORT_S* row);

/**
 * Reads the new row of the current message of table "port".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the row; fields that the database does not fill are 0
 *
 * @retval 0  the row was read
 * @retval 1  the message has no new row, or the row cannot be read
 *
 * @par After a failure
 * row is unchanged if the new row cannot be selected, else zero or partly filled.
 * @par Log
 * The failure.
 * @par Source
 * "port".
 */
uint32_t QRB_EVENT_PortOrmGetNewData(ORM_MESSAGE message, QRB_PORT_S* row);

/**
 * Publishes an insertion into table "port".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the new row
 *
 * @par After a failure
 * If the row cannot be read, nothing is published.
 * @par Log
 * A row that cannot be read; a publication that failed.
 * @par Source
 * "port".
 */
void QRB_EVENT_PortInsert(ORM_MESSAGE message, QRB_PORT_S* row);

/**
 * Publishes a deletion from table "port".
 *
 * @param[in]  message  delivery with a current message
 * @param[out] row      the old row
 *
 * @par After a failure
 * If the row cannot be read, nothing is published.
 * @par Log
 * A row that cannot be read; a publication that failed.
 * @par Source
 * "port".
 */
void QRB_EVENT_PortDelete(ORM_MESSAGE message, QRB_PORT_S* row);

/**
 * Publishes a change of switch_port between 0 and 1.
 *
 * @param[in] oldRow  row before the change
 * @param[in] newRow  row after the change
 *
 * @par Log
 * A publication that failed.
 * @par Source
 * "port".
 */
void QRB_EVENT_PortUpdateSwitchPortUse(const QRB_PORT_S* oldRow, const QRB_PORT_S* newRow);

/**
 * Publishes a change of one VLAN bitmap of a port.
 *
 * The first byte that differs decides: L2IF_EVT_VLAN_ADD_PORT is published if the new value is the
 * greater number, L2IF_EVT_VLAN_DEL_PORT if it is the smaller.
 *
 * @param[in] newRow  row after the change; null is refused
 * @param[in] oldRow  row before the change; null is refused
 * @param[in] length  number of bytes to compare, 0 to QRB_VLAN_SET_SIZE (512); other numbers count
 * as the nearest of these
 * @param[in] which   QRB_VLAN_BITMAP_1 (1): vlan_bitmap_1; other: vlan_bitmap_2
 *
 * @retval 0  a byte differs; the event was published, or its publication failed
 * @retval 1  no byte differs, or a row is null
 *
 * @par Log
 * A null row; a publication that failed.
 * @par Source
 * "port", vlan_bitmap_1 or vlan_bitmap_2.
 */
uint32_t QRB_EVENT_PortCheckIsVlanBitMapChange(const QRB_PORT_S* newRow, const QRB_PORT_S* oldRow,
                                               int32_t length, uint8_t which);

/**
 * Does nothing. Kept for existing callers.
 *
 * @param[in] row  not used; may be null
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void QRB_EVENT_PrintIfLink(const QRB_IF_LINK_S* row);

/**
 * Does nothing. Kept for existing callers.
 *
 * @param[in] row  not used; may be null
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void QRB_EVENT_PrintIfPhy(const QRB_IF_PHY_S* row);

/**
 * Does nothing. Kept for existing callers.
 *
 * @param[in] row  not used; may be null
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void QRB_EVENT_PrintIfRoute(const QRB_IF_ROUTE_S* row);

/**
 * Does nothing. Kept for existing callers.
 *
 * @param[in] row  not used; may be null
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void QRB_EVENT_PrintPort(const QRB_PORT_S* row);

#ifdef __cplusplus
}
#endif
