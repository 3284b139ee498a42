/*
 * Start-up, and the library's subscriptions to the tables whose changes it turns into events.
 *
 *     table       operations                        callback (tarnd_qrb/change_detection.h)
 *     "port"      insert, delete, update, replace   QRB_EVENT_PortTableCallback
 *     "if_route"  update, replace                   QRB_EVENT_IfRouteTableCallback
 *     "if_phy"    insert, delete, update, replace   QRB_EVENT_IfPhyTableCallback
 *     "if_base"   insert, delete                    QRB_EVENT_IfBaseTableCallback
 *
 * Results: 0, or 1 for every failure, which is logged. What a failed subscription leaves behind is
 * told in tarnd_qrb/listener.h, under QrbDbListenerRegisterEvent.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Brings change notification up: builds the registries of layer-2 and interface events, initialises
 * the database's access layer and subscribes, in the order above. The first failure ends it: what
 * was built stays, but a subscription that fails ends those made before it.
 *
 * Called once, by the daemon, after MEM_EX_Init, on any thread but the listener. Callbacks may run
 * before it returns.
 */
uint32_t BDS_InitStart(void);

/* Subscribes to the table that its name says; on any thread but the listener. Every call subscribes
   anew: the callbacks then run once more for each change. */
uint32_t QRB_EVENT_SubToPortTable(void);
uint32_t QRB_EVENT_SubToIfRouteTable(void);
uint32_t QRB_EVENT_SubToIfPhyTable(void);
uint32_t QRB_EVENT_SubToIfBaseTable(void);

#ifdef __cplusplus
}
#endif
