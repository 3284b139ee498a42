/**
 * @file
 * @brief Start of the database access layer; keyed read and scan of any table.
 *
 * A keyed read opens a session, prepares a table, sets a key, executes and reads fields. A scan
 * prepares a table, sets an optional condition and steps through the matching records. The
 * functions here do the steps; callbacks set the key, read the fields and handle each record.
 *
 * @par Results
 * The keyed-read functions return the code of the failing step unchanged: a database code, such as
 * ORM_NO_RECORD, or the result of the callback. The scan functions return 1 for every failure.
 * QRB_CreatDbSession() is the exception to "0 is success": it returns 1 for success.
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * Any thread may call any function. Calls share no state; callbacks run on the calling thread,
 * before the function returns. A session is used by one thread at a time.
 * @par Ownership
 * A session passed to a function stays open and stays the caller's, also after a failure.
 * @par Log
 * Priority 3. Each failing step is logged once, by the function that runs it, unless a function's
 * description says otherwise.
 * @par After fork
 * The database layer's connections are shared with the parent process, the listener thread does not
 * exist in the child, and a lock may be held by a thread that does not exist there either. A child
 * process therefore calls, before it executes another program, only functions that use neither the
 * database nor memory nor a lock nor the log: FIB_AM_PrefixMatch(), VLAN_PortIndex2PortIdx(),
 * IF_INIF_IsVapByIfIndex(), IF_INIF_IsAPtunnleByIfIndex(), the comparators of the registries, and
 * reads of lists that no other thread was changing. A child that is to use the library is created
 * before the parent calls any function of it, and starts it by itself.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Result of functions that return a value, if the value is not available. */
#define QRB_VALUE_NONE 0xFFFFFFFFu

/**
 * Sets the key of a keyed read on a prepared session, typically with one OrmgTableSetKey accessor.
 *
 * @param[in] session      prepared session
 * @param[in] keyArgument  keyArgument of the calling function
 * @return 0, or a code that stops the operation and becomes its result
 */
typedef uint32_t (*QRB_SET_KEY_FUNC)(ORM_SESSION session, const void* keyArgument);

/**
 * Reads fields of the session's current record.
 *
 * @param[in]  session  session with a current record
 * @param[out] output   output of the calling function
 * @return 0, or a code that stops the operation and becomes its result
 */
typedef uint32_t (*QRB_GET_FIELDS_FUNC)(ORM_SESSION session, void* output);

/**
 * Handles one record of a scan.
 *
 * @param[in]     session  session; the scan's record is its current record
 * @param[in,out] context  context of the calling function
 * @param[in]     index    number of the record, counted from 0
 * @return 0 to continue, or a code that stops the scan as a failure
 */
typedef uint32_t (*QRB_ENTRY_FUNC)(ORM_SESSION session, void* context, uint32_t index);

/**
 * Sets the condition of a prepared scan, typically with OrmSetScanCond().
 *
 * @param[in]     session  session prepared for a scan
 * @param[in,out] context  context of the calling function
 * @return 0, or a code that stops the scan as a failure
 */
typedef uint32_t (*QRB_SET_CONDITION_FUNC)(ORM_SESSION session, void* context);

/**
 * Initialises the database access layer of this process.
 *
 * Called once, before any query. BDS_InitStart() calls it; a program without change notification
 * calls it itself.
 *
 * @retval 0  the layer is initialised
 * @retval 1  OrmInit() failed
 *
 * @par Log
 * The failure, with its code.
 * @par Source
 * No table.
 */
uint32_t QRB_DB_InitOrm(void);

/**
 * Opens a session and prepares it for one table.
 *
 * @param[in]  table      table name; null is refused, without a log line
 * @param[in]  operation  QRB_ORM_OP_READ or QRB_ORM_OP_SCAN
 * @param[out] session    the open session, which the caller closes with OrmCloseSession(); null is
 *                        refused, without a log line
 *
 * @retval 1  the session is open and prepared
 * @retval 0  a pointer is null, or a step failed
 *
 * @par After a failure
 * session is 0 if a step failed, and nothing is open. If a pointer is null, nothing is written.
 * @par Log
 * A failing open or prepare, without its code.
 * @par Source
 * The table given by the parameter table.
 */
uint32_t QRB_CreatDbSession(const char* table, uint32_t operation, ORM_SESSION* session);

/**
 * Prepares an open session for a table, sets the key and executes the read.
 *
 * @param[in] session      open session; stays open
 * @param[in] operation    QRB_ORM_OP_READ
 * @param[in] table        table name
 * @param[in] keyArgument  passed to setKey; may be null
 * @param[in] setKey       sets the key
 *
 * @retval 0      the record is the session's current record
 * @retval other  code of the failing step; ORM_NO_RECORD if no record has the key
 *
 * @par Log
 * The failing step, including a missing record, with the table's name and without the code.
 * @par Source
 * The table given by the parameter table.
 */
uint32_t QRB_DB_SESSION_SetKey(ORM_SESSION session, uint32_t operation, const char* table,
                               const void* keyArgument, QRB_SET_KEY_FUNC setKey);

/**
 * Reads fields of one record on an open session.
 *
 * @param[in]  session      open session; stays open
 * @param[in]  table        table name
 * @param[in]  keyArgument  passed to setKey; may be null
 * @param[out] output       passed to getFields; may be null
 * @param[in]  setKey       sets the key
 * @param[in]  getFields    reads the fields
 *
 * @retval 0      the fields are read
 * @retval other  code of the failing step; ORM_NO_RECORD if no record has the key
 *
 * @par After a failure
 * output is unchanged, or as a failing getFields leaves it.
 * @par Log
 * What QRB_DB_SESSION_SetKey() logs; a failing getFields, with the table's name.
 * @par Source
 * The table given by the parameter table.
 */
uint32_t QRB_DB_SESSION_Get(ORM_SESSION session, const char* table, const void* keyArgument,
                            void* output, QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields);

/**
 * Reads fields of one record, in a session of its own.
 *
 * @param[in]  table        table name
 * @param[in]  keyArgument  passed to setKey; may be null
 * @param[out] output       passed to getFields; may be null
 * @param[in]  setKey       sets the key
 * @param[in]  getFields    reads the fields
 *
 * @retval 0      the fields are read
 * @retval other  code of the failing step; ORM_NO_RECORD if no record has the key
 *
 * @par After a failure
 * output is unchanged, or as a failing getFields leaves it. If only closing the session failed, it
 * is written.
 * @par Log
 * What QRB_DB_SESSION_Get() logs; a failing open, with the table's name. A failing close is not
 * logged.
 * @par Source
 * The table given by the parameter table.
 */
uint32_t QRB_DB_Get(const char* table, const void* keyArgument, void* output,
                    QRB_SET_KEY_FUNC setKey, QRB_GET_FIELDS_FUNC getFields);

/**
 * Scans a table on an open session and calls onEntry for each record.
 *
 * @param[in]     session       open session; stays open
 * @param[in]     table         table name
 * @param[in,out] context       passed to onEntry and setCondition; may be null
 * @param[in]     maxCount      maximum number of records; 0 counts as 1
 * @param[in]     onEntry       handles a record
 * @param[out]    count         number of records handled; may be null
 * @param[in]     condition     scan condition as for OrmSetScanCond(); may be null
 * @param[in]     setCondition  called to set a condition if condition is null; may be null: all
 *                              records match
 *
 * @retval 0  the end of the table or maxCount was reached
 * @retval 1  a step failed, or a callback returned a code other than 0
 *
 * @par After a failure
 * count is unchanged. context is as the calls of onEntry left it.
 * @par Log
 * The failing step, with its code; under the name QRB_DB_SESSION_ProcessScanEntries if it is a step
 * to the next record or a call of onEntry.
 * @par Source
 * The table given by the parameter table.
 */
uint32_t QRB_DB_SESSION_Scan(ORM_SESSION session, const char* table, void* context,
                             uint32_t maxCount, QRB_ENTRY_FUNC onEntry, uint32_t* count,
                             const char* condition, QRB_SET_CONDITION_FUNC setCondition);

/**
 * Scans a table in a session of its own and calls onEntry for each record.
 *
 * @param[in]     table         table name
 * @param[in,out] context       passed to onEntry and setCondition; may be null
 * @param[in]     maxCount      maximum number of records; 0 counts as 1
 * @param[in]     onEntry       handles a record
 * @param[out]    count         number of records handled; may be null
 * @param[in]     condition     scan condition as for OrmSetScanCond(); may be null
 * @param[in]     setCondition  called to set a condition if condition is null; may be null: all
 *                              records match
 *
 * @retval 0  the end of the table or maxCount was reached
 * @retval 1  a step failed, or a callback returned a code other than 0
 *
 * @par After a failure
 * count is unchanged. If only closing the session failed, it is written. context is as the calls of
 * onEntry left it.
 * @par Log
 * What QRB_DB_SESSION_Scan() logs, and that it failed; a failing open or close, with its code.
 * @par Source
 * The table given by the parameter table.
 */
uint32_t QRB_DB_Scan(const char* table, void* context, uint32_t maxCount, QRB_ENTRY_FUNC onEntry,
                     uint32_t* count, const char* condition, QRB_SET_CONDITION_FUNC setCondition);

/**
 * Writes a byte string as a hexadecimal literal for scan conditions: "0x" and two lower-case digits
 * for each byte.
 *
 * @param[in]  text    NUL-terminated text; cut, or padded with zero bytes, to exactly size bytes
 * @param[out] output  2 * size + 3 bytes
 * @param[in]  size    number of bytes; a negative number is refused
 *
 * @retval 0  the literal was written
 * @retval 1  no memory, a negative size, or a bounded copy or format failed
 *
 * @par After a failure
 * output is unchanged, or holds the beginning of the literal if a bounded copy or format failed.
 * @par Log
 * Nothing is logged.
 * @par Source
 * No table.
 */
uint32_t QRB_DB_TransStringToHexNumString(const char* text, char* output, int32_t size);

#ifdef __cplusplus
}
#endif
