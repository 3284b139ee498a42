/*
 * Start-up of the access layer, and the generic keyed read and scan over any table.
 *
 * Every function runs on any thread; calls share nothing. Sessions given to a function stay the
 * caller's, open on every path. Callbacks run on the calling thread, before the function returns.
 * Pointers are not checked for null unless a comment says so.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

#define QRB_VALUE_NONE 0xFFFFFFFFu /* what value functions answer when the value can't be had */

/* Callbacks answer 0, or a code that stops the operation. */
typedef uint32_t (*QRB_SET_KEY_FUNC)(ORM_SESSION session, const void* keyArgument);
typedef uint32_t (*QRB_GET_FIELDS_FUNC)(ORM_SESSION session, void* output);
/* index counts the delivered records from 0. */
typedef uint32_t (*QRB_ENTRY_FUNC)(ORM_SESSION session, void* context, uint32_t index);
typedef uint32_t (*QRB_SET_CONDITION_FUNC)(ORM_SESSION session, void* context);

/* Initialises the access layer; once, before any query. 0, or 1 after logging its code. */
uint32_t QRB_DB_InitOrm(void);

/*
 * Opens a session and prepares it for one table.
 *
 * operation  QRB_ORM_OP_READ or QRB_ORM_OP_SCAN.
 * session    receives the handle. On success the caller owns it and closes it with OrmCloseSession.
 *
 * Returns 1 for success, 0 for failure: logged, *session 0. A null table or session is refused
 * with 0, silently, and nothing is written.
 */
uint32_t QRB_CreatDbSession(const char* table, uint32_t operation, ORM_SESSION* session);

/* Prepares the session, sets the key through setKey(session, keyArgument) and executes.
   0, or the failing step's own code after logging the step. */
uint32_t QRB_DB_SESSION_SetKey(ORM_SESSION session, uint32_t operation, const char* table,
                               const void* keyArgument, QRB_SET_KEY_FUNC setKey);

/* The keyed read on an open session: QRB_DB_SESSION_SetKey, then getFields(session, output). 0, or
   the failing step's own code after logging the step. */
uint32_t QRB_DB_SESSION_Get(ORM_SESSION session, const char* table, const void* keyArgument,
                            void* output, QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields);

/* The keyed read in a session of its own. 0, the failing step's own code (ORM_NO_RECORD where no
   record has the key) after logging the step, or the close's, silently. */
uint32_t QRB_DB_Get(const char* table, const void* keyArgument, void* output,
                    QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields);

/*
 * Scans a table on an open session and hands each record to onEntry(session, context, index).
 *
 * maxCount      the most records delivered; looked at after each, so 0 delivers one as 1 does.
 * count         null, or receives the number of records delivered; untouched on a failure.
 * condition     null, or the text that records must match.
 * setCondition  null, or called where condition is null, to set one.
 *
 * 0, or 1 for every failure, after logging its code.
 */
uint32_t QRB_DB_SESSION_Scan(ORM_SESSION session, const char* table, void* context,
                             uint32_t maxCount, QRB_ENTRY_FUNC onEntry, uint32_t* count,
                             const char* condition, QRB_SET_CONDITION_FUNC setCondition);

/* QRB_DB_SESSION_Scan in a session of its own. 1 with *count written: only the close failed. */
uint32_t QRB_DB_Scan(const char* table, void* context, uint32_t maxCount, QRB_ENTRY_FUNC onEntry,
                     uint32_t* count, const char* condition, QRB_SET_CONDITION_FUNC setCondition);

/*
 * Writes a byte string as a literal for conditions: "0x" and two lower-case digits for each byte.
 *
 * text    cut, or padded with zero bytes, to exactly size bytes.
 * output  2 * size + 3 bytes.
 *
 * 0, or 1: no memory, or a negative size.
 */
uint32_t QRB_DB_TransStringToHexNumString(const char* text, char* output, int32_t size);

#ifdef __cplusplus
}
#endif
