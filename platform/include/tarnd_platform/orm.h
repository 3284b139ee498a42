/*
 * The platform contract, part 1: reading the configuration database.
 *
 * A platform library defines every function of these headers with C linkage; the query library
 * leaves them undefined and takes whatever platform is linked or preloaded first.
 *
 * Results: 0 is success, every other value is a database code. The two codes below are part of the
 * contract; the rest are the platform's own. 1 is best left unused, since two VLAN queries give it
 * a meaning of their own.
 * Handles: pointer-sized opaque values, 0 is "none". A null, closed or foreign handle, a call in
 * the wrong order, an unknown name, or a destination of the wrong size is refused with a code.
 * Threads: any thread may call; a session, and the scan and nodes that belong to it, is used by one
 * thread at a time.
 * Ownership: texts and buffers stay the caller's and are not kept after a call has returned.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uintptr_t ORM_SESSION; /* an open session, or the message of a delivery */
typedef uintptr_t ORM_SCAN;    /* a started scan; belongs to its session */
typedef uintptr_t ORM_NODE;    /* a list of the current record, or one of its items; valid until
                                  the session moves to another record or closes */

#define ORM_OK 0u
#define ORM_NO_RECORD 1001000u /* no record has the key */
#define ORM_NO_LIST 10058u     /* the current record has no list of that name */

#define QRB_ORM_OP_READ 4u /* OrmPrepare: a read of one record, selected by a key */
#define QRB_ORM_OP_SCAN 7u /* OrmPrepare: a scan of the table */

#define QRB_KEY_TYPE_U32 7u /* OrmSetIndexKeyValue: the value is an unsigned 32-bit number */

/* Initialises the layer for this process. Called once, before anything else, with 1 and 0. */
uint32_t OrmInit(uint32_t mode, uint32_t option);

/* Opens a session on the default connection. *session is 0 beforehand, and stays so on a failure.
 */
uint32_t OrmOpenSessionByDefault(ORM_SESSION* session);

/* Closes a session and gives back everything prepared on it; a scan that is still open ends.
   On a subscription session, ends its subscriptions too and takes its descriptor out through the
   control function. */
uint32_t OrmCloseSession(ORM_SESSION session);

/* Binds the session to one table and one kind of access (QRB_ORM_OP_READ or QRB_ORM_OP_SCAN). */
uint32_t OrmPrepare(ORM_SESSION session, const char* table, uint32_t operation);

/* Chooses the key of a prepared read; the library asks for "primary_key". */
uint32_t OrmSetKeyName(ORM_SESSION session, const char* key);

/* Sets one member of the chosen key: its number from 0, the type of the value, its address and its
   size in bytes. */
uint32_t OrmSetIndexKeyValue(ORM_SESSION session, uint32_t member, uint32_t valueType,
                             const void* value, uint32_t valueSize);

/* Performs the prepared read. ORM_NO_RECORD if no record has the key; afterwards there is no
   current record. */
uint32_t OrmExecute(ORM_SESSION session);

/* Copies one field of the current record, by name or by number. size is the field's width in bytes.
   The current record is the one read by OrmExecute, the scan's current entry, or the selected
   object of a message. The destination is untouched on a failure. */
uint32_t OrmGetField(ORM_SESSION session, const char* field, void* destination, uint32_t size);
uint32_t OrmGetFieldById(ORM_SESSION session, uint32_t field, void* destination, uint32_t size);

/* Restricts the prepared scan: terms "field = value" joined by " and ". A value is a decimal
   number, a hexadecimal literal ("0x", two digits for each byte of the field) or, for a text field,
   the bare text without blanks. */
uint32_t OrmSetScanCond(ORM_SESSION session, const char* condition);

/* Starts the scan. *scan is 0 beforehand, and stays so on a failure. */
uint32_t OrmScanStart(ORM_SESSION session, ORM_SCAN* scan);

/* Moves to the next matching record. At the end *end becomes 1 and there is no current record;
   else *end is left alone. */
uint32_t OrmScanNext(ORM_SESSION session, ORM_SCAN scan, uint8_t* end);

uint32_t OrmScanEnd(ORM_SESSION session, ORM_SCAN scan);

/* A list inside the current record, by name; parent is 0. ORM_NO_LIST if the record has none. */
uint32_t OrmNodeGetChild(ORM_SESSION session, ORM_NODE parent, const char* list, ORM_NODE* node);

/* The number of items in a list. */
uint32_t OrmNodeGetSize(ORM_NODE node, uint32_t* count);

/* One item of a list, counted from 0. */
uint32_t OrmNodeGetItemByIdx(ORM_NODE node, uint32_t index, ORM_NODE* item);

/* Copies one field of an item, by number. size is the field's width in bytes. */
uint32_t OrmNodeGetFieldById(ORM_NODE item, uint32_t field, void* destination, uint32_t size);

#ifdef __cplusplus
}
#endif
