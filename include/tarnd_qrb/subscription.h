/**
 * @file
 * @brief Start of change notification; subscriptions to the tables whose changes become events.
 *
 * @verbatim
table       operations                       callback (tarnd_qrb/change_detection.h)
"port"      insert, delete, update, replace  QRB_EVENT_PortTableCallback
"if_route"  update, replace                  QRB_EVENT_IfRouteTableCallback
"if_phy"    insert, delete, update, replace  QRB_EVENT_IfPhyTableCallback
"if_base"   insert, delete                   QRB_EVENT_IfBaseTableCallback
@endverbatim
 *
 * @par Results
 * 0 for success, 1 for every failure.
 * @par Threads
 * Any thread except the listener thread.
 * @par Log
 * Priority 3. A failing step is logged by the function that runs it.
 * @par After fork
 * A child process receives no changes and must not call these functions, unless the parent had not
 * used the library. See tarnd_qrb/database.h.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Starts change notification: builds the layer-2 table and the interface event tree, initialises
 * the database access layer and subscribes to the four tables, in the order of the table above.
 *
 * The daemon calls it once, after MEM_EX_Init() and after its modules have registered their
 * callbacks. Callbacks may run before it returns. A further call, also from several threads at
 * once, subscribes only if the subscription session has been closed since.
 *
 * @retval 0  change notification is running
 * @retval 1  the access layer cannot be initialised, or a subscription failed
 *
 * @par After a failure
 * The first failure ends the start. The registries stay built. A subscription that the database
 * refuses ends the earlier ones; see QrbDbListenerRegisterEvent(). The listener thread, if started,
 * continues.
 * @par Log
 * What QRB_DB_InitOrm() and the subscribing functions log.
 * @par Source
 * "port", "if_route", "if_phy" and "if_base".
 */
uint32_t BDS_InitStart(void);

/**
 * Subscribes to table "port". Each call adds a subscription: the callback then runs once more for
 * each change.
 *
 * @retval 0  subscribed
 * @retval 1  the subscription failed
 *
 * @par After a failure
 * As for QrbDbListenerRegisterEvent().
 * @par Log
 * The failure; what QrbDbListenerRegisterEvent() logs.
 * @par Source
 * "port".
 */
uint32_t QRB_EVENT_SubToPortTable(void);

/**
 * Subscribes to table "if_route". Each call adds a subscription: the callback then runs once more
 * for each change.
 *
 * @retval 0  subscribed
 * @retval 1  the subscription failed
 *
 * @par After a failure
 * As for QrbDbListenerRegisterEvent().
 * @par Log
 * The failure; what QrbDbListenerRegisterEvent() logs.
 * @par Source
 * "if_route".
 */
uint32_t QRB_EVENT_SubToIfRouteTable(void);

/**
 * Subscribes to table "if_phy". Each call adds a subscription: the callback then runs once more for
 * each change.
 *
 * @retval 0  subscribed
 * @retval 1  the subscription failed
 *
 * @par After a failure
 * As for QrbDbListenerRegisterEvent().
 * @par Log
 * The failure; what QrbDbListenerRegisterEvent() logs.
 * @par Source
 * "if_phy".
 */
uint32_t QRB_EVENT_SubToIfPhyTable(void);

/**
 * Subscribes to table "if_base". Each call adds a subscription: the callback then runs once more
 * for each change.
 *
 * @retval 0  subscribed
 * @retval 1  the subscription failed
 *
 * @par After a failure
 * As for QrbDbListenerRegisterEvent().
 * @par Log
 * The failure; what QrbDbListenerRegisterEvent() logs.
 * @par Source
 * "if_base".
 */
uint32_t QRB_EVENT_SubToIfBaseTable(void);

#ifdef __cplusplus
}
#endif
