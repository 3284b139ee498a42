/*
 * The platform contract, part 2: messages about changes.
 *
 * A subscription session owns one or more descriptors. They become readable when a row that a
 * subscription covers has changed, and stay so until every message is read. Whoever waits on a
 * descriptor calls DbcHandleEvent, which runs the callbacks on its own thread.
 */
#pragma once

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uintptr_t ORM_SESSION_PARAM;
typedef ORM_SESSION ORM_MESSAGE; /* one delivery; valid during the callback that got it */

/* Event types handed to a callback. */
#define ORM_EVENT_INSERT 0u
#define ORM_EVENT_DELETE 1u
#define ORM_EVENT_UPDATE 2u
#define ORM_EVENT_REPLACE 3u /* without an old object where the row did not exist */

/* OrmSubExtractData: which object of a row message. */
#define ORM_OBJECT_OLD 0u
#define ORM_OBJECT_NEW 1u

/* Told of every descriptor to watch for reading (operation 0) or no longer to watch (any other).
   0 on success, else -1. */
typedef int32_t (*ORM_FD_CONTROL)(uint32_t descriptor, uint32_t operation);

/* Runs on the thread that calls DbcHandleEvent. */
typedef void (*ORM_SUB_CALLBACK)(ORM_MESSAGE message, uint32_t eventType);

/* Creates a session parameter object; the library passes "channel:" and "osc". */
uint32_t OrmCreateSessionParam(const char* channel, const char* kind, ORM_SESSION_PARAM* param);

uint32_t OrmSessionParamSetConnName(ORM_SESSION_PARAM param, const char* name);

/* Releases a parameter object; 0 is accepted and does nothing. */
void OrmDestroySessionParam(ORM_SESSION_PARAM param);

/* Opens a subscription session. control may be null; the platform says how it serves such a
 * session. */
uint32_t OrmOpenSubSession(ORM_SESSION_PARAM param, ORM_FD_CONTROL control, ORM_SESSION* session);

/* Adds a subscription, defined by a JSON text: the table in "label_name", the operations in
   "events", each with its "type" ("insert", "delete", "update", "replace"). argument is kept beside
   the subscription; callbacks take none. */
uint32_t OrmSubscribe(ORM_SESSION session, const char* name, const char* definition,
                      ORM_SUB_CALLBACK callback, void* argument, const char* owner);

/* Moves to the next row of the delivery; *end becomes 1 when there is none, else it is left alone.
 */
uint32_t OrmSubFetchNext(ORM_MESSAGE message, uint8_t* end);

/* Selects the object (ORM_OBJECT_OLD or ORM_OBJECT_NEW) that the following reads address; flags is
   0. ORM_NO_RECORD where the row has no such object. */
uint32_t OrmSubExtractData(ORM_MESSAGE message, uint32_t object, uint32_t flags);

/* Reads what is pending on a ready descriptor and runs the callbacks before it returns. */
uint32_t DbcHandleEvent(int32_t descriptor);

#ifdef __cplusplus
}
#endif
