/**
 * @file
 * @brief Events that the library publishes, their arguments, and functions to publish an event.
 *
 * The library publishes its events on its listener thread while it handles a change
 * (tarnd_qrb/change_detection.h). If one change causes several events, they are published in the
 * order in which they are listed below. Modules may publish any event, on their own threads.
 * tarnd_qrb/event_registry.h has the rules of callbacks.
 *
 * Layer-2 events, from table "port". The value is 0. Callbacks must not change the data or the
 * argument. The first byte that differs between an old and a new VLAN bitmap decides: if it is
 * greater in the new one, the bitmap grew. An event does not contain the ids of the VLANs that
 * changed: a module that needs them compares the row with the one of the previous event.
 *
 * @verbatim
event                     when                  data            argument
L2IF_EVT_SWITCH_PORT_ON   switch_port 0 to 1    uint32_t:       uint8_t:
L2IF_EVT_SWITCH_PORT_OFF  switch_port 1 to 0    if_index        new switch_port
L2IF_EVT_VLAN_ADD_PORT    a VLAN bitmap grew    new QRB_PORT_S  QRB_VLAN_CHANGE_S
L2IF_EVT_VLAN_DEL_PORT    a VLAN bitmap shrank  old QRB_PORT_S  QRB_VLAN_CHANGE_S
L2IF_EVT_PORT_ADD         row inserted          new QRB_PORT_S  its vlan_bitmap_2
L2IF_EVT_PORT_DEL         row deleted           old QRB_PORT_S  its vlan_bitmap_2
@endverbatim
 *
 * Interface events, from tables "if_phy" and "if_route": sub-events of IF_EVT_STATE.
 *
 * @verbatim
sub-event               when                flag              first, second
IF_SUB_EVT_PHY_STATE    phy_state 0 to 1    IF_EVT_FLAG_UP    null, null
                        phy_state 1 to 0    IF_EVT_FLAG_DOWN  null, null
IF_SUB_EVT_PHY_UP       phy_state 0 to 1,   IF_EVT_FLAG_UP    null, null
                        or inserted as 1
IF_SUB_EVT_ROUTE_STATE  route_state 0 to 1  IF_EVT_FLAG_UP    uint32_t 1 and 0
                        route_state 1 to 0  IF_EVT_FLAG_DOWN  uint32_t 1 and 0
@endverbatim
 *
 * The uint32_t that second points to is writable; the library does not read it afterwards.
 *
 * Interface notifications, from tables "if_base" and "if_phy". The last two arguments are 0.
 *
 * @verbatim
command            when
IF_NOTIFY_CREATED  "if_base" row inserted
IF_NOTIFY_DELETED  "if_base" row deleted
IF_NOTIFY_UP       phy_state 0 to 1, or inserted as 1
IF_NOTIFY_DOWN     phy_state 1 to 0, or inserted as 0
@endverbatim
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * Any thread may publish, several at once; see tarnd_qrb/event_registry.h. Callbacks run on the
 * calling thread, before the function returns. A callback runs on several threads at once if they
 * publish its event at the same time.
 * @par Log
 * Priority 3. No function uses the database.
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

#define L2IF_EVT_VLAN_ADD_PORT 11u   /**< Layer-2 event: a port joined a VLAN. */
#define L2IF_EVT_VLAN_DEL_PORT 12u   /**< Layer-2 event: a port left a VLAN. */
#define L2IF_EVT_SWITCH_PORT_ON 13u  /**< Layer-2 event: a port became a switch port. */
#define L2IF_EVT_SWITCH_PORT_OFF 14u /**< Layer-2 event: a port is no longer a switch port. */
#define L2IF_EVT_PORT_ADD 36u        /**< Layer-2 event: a port was created. */
#define L2IF_EVT_PORT_DEL 37u        /**< Layer-2 event: a port was deleted. */

#define IF_EVT_STATE 9u           /**< Interface event: a state changed. */
#define IF_SUB_EVT_PHY_STATE 2u   /**< Sub-event of IF_EVT_STATE: the physical state changed. */
#define IF_SUB_EVT_ROUTE_STATE 3u /**< Sub-event of IF_EVT_STATE: the layer-3 state changed. */
#define IF_SUB_EVT_PHY_UP 8u      /**< Sub-event of IF_EVT_STATE: the physical state is up. */
#define IF_EVT_FLAG_UP 0u         /**< Flag of an interface event: up. */
#define IF_EVT_FLAG_DOWN 1u       /**< Flag of an interface event: down. */

#define IF_NOTIFY_CREATED 0u /**< Notification: an interface was created. */
#define IF_NOTIFY_DELETED 1u /**< Notification: an interface was deleted. */
#define IF_NOTIFY_UP 3u      /**< Notification: an interface went up. */
#define IF_NOTIFY_DOWN 4u    /**< Notification: an interface went down. */

#define QRB_VLAN_BITMAP_2 0u /**< QRB_VLAN_CHANGE_S: vlan_bitmap_2 changed. */
#define QRB_VLAN_BITMAP_1 1u /**< QRB_VLAN_CHANGE_S: vlan_bitmap_1 changed. */

/** Which VLAN bitmap of a port changed. */
typedef struct {
    uint32_t bitmap;          /**< QRB_VLAN_BITMAP_1 or QRB_VLAN_BITMAP_2 */
    uint32_t portCount;       /**< always 1 */
    uint32_t ifIndex;         /**< interface index of the port, from the old row */
    uint8_t reserved_12[508]; /**< zero */
} QRB_VLAN_CHANGE_S;
QRB_RECORD_SIZE(QRB_VLAN_CHANGE_S, 520);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, bitmap, 0, 4);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, portCount, 4, 4);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, ifIndex, 8, 4);
QRB_FIELD_AT(QRB_VLAN_CHANGE_S, reserved_12, 12, 508);

/**
 * Publishes a layer-2 event: calls its callbacks.
 *
 * @param[in]     eventId   event id, less than L2IF_EVT_COUNT (74)
 * @param[in]     data      passed to the callbacks; may be null
 * @param[in]     value     passed to the callbacks
 * @param[in,out] argument  passed to the callbacks; may be null
 *
 * @retval 0  all callbacks were called; also if there are none
 * @retval 1  the event does not exist, the table is not built, or an entry has no callback
 *
 * @par After a failure
 * The callbacks before an entry without a callback were called, the later ones were not.
 * @par Log
 * Each failure.
 * @par Source
 * No database.
 */
uint32_t L2IF_SH_EvtPublishEvent(uint32_t eventId, const void* data, uint32_t value,
                                 void* argument);

/**
 * Finds the callbacks of an interface event or sub-event. The publisher calls them.
 *
 * The library cannot see such a publication: no thread, and none of the callbacks, may change the
 * entries of the event until it has ended.
 *
 * @param[in]  eventId  event id, less than IF_EVT_COUNT (76)
 * @param[in]  subId    sub-event id; IF_EVT_WHOLE for the event as a whole
 * @param[out] first    first node of the list, whose elements are IF_EVT_CB_S; null if it is empty
 * @param[out] count    number of nodes
 *
 * @retval 0  the outputs were written
 * @retval 1  the event or sub-event does not exist, or the tree is not built
 *
 * @par After a failure
 * The outputs are unchanged.
 * @par Log
 * Each failure.
 * @par Source
 * No database.
 */
uint32_t IF_SH_EvtPublishEventGetEventNode(uint32_t eventId, uint32_t subId,
                                           UTIL_LIST_NODE_S** first, uint64_t* count);

/**
 * Publishes an interface notification: calls every notification callback.
 *
 * @param[in] ulIfIndex  interface index
 * @param[in] ulCmd      command
 * @param[in] a          passed to the callbacks
 * @param[in] b          passed to the callbacks
 *
 * @retval 0  all callbacks were called; also if there are none
 * @retval 1  the notification list is not built: IF_RegNotifyFunc() and IF_NotifyFuncRegTbl_Init()
 * were never called
 *
 * @par Log
 * A list that is not built.
 * @par Source
 * No database.
 */
uint32_t IF_NotifyAll(uint32_t ulIfIndex, uint32_t ulCmd, uint32_t a, uint32_t b);

#ifdef __cplusplus
}
#endif
