/**
 * @file
 * @brief The platform contract: subscriptions and messages about changes.
 *
 * A subscription session owns one or more descriptors. A descriptor becomes readable when a row
 * that a subscription covers has changed, and stays readable until every message is read. The
 * library's listener thread waits for the descriptors and calls DbcHandleEvent(), which runs the
 * callbacks.
 *
 * A callback receives a delivery: one or more row messages of one event type and one table, in the
 * order of the commits. Each message has the row before the change (old object), the row
 * after it (new object), or both. The callback reads them with OrmSubFetchNext(),
 * OrmSubExtractData() and the field functions of tarnd_platform/orm.h, which take the delivery as
 * their session.
 *
 * @par Results
 * 0 (ORM_OK) for success, otherwise a database code, as in tarnd_platform/orm.h.
 * @par Null pointers
 * The library does not pass null, except where a parameter's description says so.
 * @par Threads
 * Any thread may call. DbcHandleEvent() is called by the listener thread only.
 * @par Ownership
 * Texts belong to the caller and are not used after a call has returned. The argument of
 * OrmSubscribe() is kept.
 */
#pragma once

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Parameters of a session that is to be opened. */
typedef uintptr_t ORM_SESSION_PARAM;
/** A delivery. Valid during the callback that received it. */
typedef ORM_SESSION ORM_MESSAGE;

#define ORM_EVENT_INSERT 0u /**< Event type: rows were inserted. */
#define ORM_EVENT_DELETE 1u /**< Event type: rows were deleted. */
#define ORM_EVENT_UPDATE 2u /**< Event type: rows were updated. */
/** Event type: rows were replaced. A row that did not exist before has no old object. */
#define ORM_EVENT_REPLACE 3u

#define ORM_OBJECT_OLD 0u /**< OrmSubExtractData(): the row before the change. */
#define ORM_OBJECT_NEW 1u /**< OrmSubExtractData(): the row after the change. */

/**
 * Function of the library by which the platform adds and removes descriptors. The platform may call
 * it on any thread.
 *
 * @param[in] descriptor  descriptor to watch for reading
 * @param[in] operation   0: add; other: remove
 * @retval 0   done
 * @retval -1  failed
 */
typedef int32_t (*ORM_FD_CONTROL)(uint32_t descriptor, uint32_t operation);

/**
 * Function of the library that handles a delivery. Runs on the thread that calls DbcHandleEvent().
 *
 * @param[in] message    the delivery
 * @param[in] eventType  ORM_EVENT_INSERT, ORM_EVENT_DELETE, ORM_EVENT_UPDATE or ORM_EVENT_REPLACE
 */
typedef void (*ORM_SUB_CALLBACK)(ORM_MESSAGE message, uint32_t eventType);

/**
 * Creates the parameters of a subscription session.
 *
 * @param[in]     channel  "channel:"
 * @param[in]     kind     "osc"
 * @param[in,out] param    0 when the library calls; on success the parameters
 *
 * @retval 0      the parameters were created
 * @retval other  database code
 *
 * @par After a failure
 * param is 0, or a value that OrmDestroySessionParam() accepts.
 */
uint32_t OrmCreateSessionParam(const char* channel, const char* kind, ORM_SESSION_PARAM* param);

/**
 * Sets the connection name of session parameters.
 *
 * @param[in] param  parameters
 * @param[in] name   connection name
 *
 * @retval 0      the name is set
 * @retval other  database code
 */
uint32_t OrmSessionParamSetConnName(ORM_SESSION_PARAM param, const char* name);

/**
 * Releases session parameters.
 *
 * @param[in] param  parameters; 0 does nothing
 */
void OrmDestroySessionParam(ORM_SESSION_PARAM param);

/**
 * Opens a subscription session.
 *
 * The platform calls control with operation 0 for each descriptor of the session, at the latest
 * when a subscription is added, and with another operation before the descriptor is closed.
 *
 * @param[in]     param    parameters; not used after the call
 * @param[in]     control  function that watches descriptors; null if the listener thread cannot be
 *                         created; the platform then decides whether and how changes are delivered
 * @param[in,out] session  on success the handle
 *
 * @retval 0      the session is open
 * @retval other  database code, also if control failed
 *
 * @par After a failure
 * Nothing is open.
 */
uint32_t OrmOpenSubSession(ORM_SESSION_PARAM param, ORM_FD_CONTROL control, ORM_SESSION* session);

/**
 * Adds a subscription to a session. Changes that are committed after it returns are delivered.
 *
 * The definition is a JSON text. The platform uses "label_name", the table, and "events", a list of
 * objects whose "type" is "insert", "delete", "update" or "replace".
 *
 * @param[in] session     subscription session
 * @param[in] name        name of the subscription
 * @param[in] definition  definition
 * @param[in] callback    handles the deliveries
 * @param[in] argument    kept with the subscription, not passed to callback; may be null
 * @param[in] owner       name of the owner
 *
 * @retval 0      the subscription was added
 * @retval other  database code
 *
 * @par After a failure
 * The library closes the session.
 */
uint32_t OrmSubscribe(ORM_SESSION session, const char* name, const char* definition,
                      ORM_SUB_CALLBACK callback, void* argument, const char* owner);

/**
 * Moves to the next message of a delivery. The first call moves to the first message.
 *
 * @param[in]     message  delivery
 * @param[in,out] end      0 when the library calls; set to 1 if there is no further message,
 * otherwise unchanged
 *
 * @retval 0      the delivery moved, or is at its end
 * @retval other  database code
 *
 * @par After a failure
 * end is unchanged. The library ends its work on the delivery.
 */
uint32_t OrmSubFetchNext(ORM_MESSAGE message, uint8_t* end);

/**
 * Selects the row of the current message that the field functions read.
 *
 * @param[in] message  delivery with a current message
 * @param[in] object   ORM_OBJECT_OLD or ORM_OBJECT_NEW
 * @param[in] flags    0
 *
 * @retval 0              the row is the current record
 * @retval ORM_NO_RECORD  (1001000) the message has no such row
 * @retval other          database code
 *
 * @par After a failure
 * There is no current record.
 */
uint32_t OrmSubExtractData(ORM_MESSAGE message, uint32_t object, uint32_t flags);

/**
 * Reads the pending messages of a descriptor and runs the callbacks before it returns.
 *
 * A callback may call every function of the other headers of the contract: the platform holds no
 * lock that they need.
 *
 * @param[in] descriptor  a descriptor that was ready for reading; one that is closed or unknown is
 *                        refused with a code
 *
 * @retval 0      done
 * @retval other  database code; the library ignores it
 */
uint32_t DbcHandleEvent(int32_t descriptor);

#ifdef __cplusplus
}
#endif
