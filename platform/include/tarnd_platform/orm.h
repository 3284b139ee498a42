/**
 * @file
 * @brief The platform contract: reading the configuration database.
 *
 * A platform library defines every function of the tarnd_platform headers with C linkage. The query
 * library leaves them undefined and uses the platform that is linked or preloaded first. The
 * comments describe what the library requires.
 *
 * A keyed read is OrmOpenSessionByDefault(), OrmPrepare() with QRB_ORM_OP_READ, a key
 * (OrmSetKeyName() and OrmSetIndexKeyValue(), or an accessor of tarnd_platform/orm_accessors.h),
 * OrmExecute(), reads of fields or lists, and OrmCloseSession(). A scan is
 * OrmOpenSessionByDefault(), OrmPrepare() with QRB_ORM_OP_SCAN, optionally OrmSetScanCond(),
 * OrmScanStart(), OrmScanNext() and reads for each record, OrmScanEnd() and OrmCloseSession().
 *
 * @par Tables
 * The library reads these fields, given as number or name and width in bytes, and these lists. It
 * also reads whole records, see tarnd_platform/orm_accessors.h.
 * @verbatim
table                   fields                    conditions on
if_base                 0: 4, 2: 64, if_type: 2
if_phy                  phy_state: 1
vlan                    2: 2, 9: 1                name
am_ipv4_address         0: 4, 1: 4
Fib.ConfigIpv4Fwd       4: 4, 5: 4, 10: 4
Fib.ConfigNhpGroupNode  3: 4, 5: 4
Fib.ConfigNhpStandard   2: 4, 3: 4, 4: 4
acl_group               0: 4                      vsid, vsysid, acl_number,
                                                  acl_name, isipv6
acl_group_id            5: 4                      id
acl_adv                 none, counted             acl_group_id
acl_rule_id             none, counted             groupId
qos_integration         0: 4, 1: 64

table            list               fields of an item
am_ipv4_address  ipv4_address_list  0: 4, 1: 1, 2: 1
qos_integration  car_list           1: 4, 2: 4, 3: 4, 4: 4
qos_integration  remark_dscp_list   1: 4
qos_integration  remark_8021p_list  1: 4
@endverbatim
 * @par Results
 * 0 (ORM_OK) for success; every other value is a database code. ORM_NO_RECORD and ORM_NO_LIST have
 * the meaning given here. The platform may use any other code; the library returns or logs it.
 * Code 1 should not be used: L2IF_GetPVIDByIfIndex() and L2IF_VLAN_GetDescript() treat it
 * specially.
 * @par Handles
 * Pointer-sized, opaque values; 0 means none. A handle that is 0, closed or not the platform's, a
 * call in the wrong order, an unknown table, key or field, and a destination of the wrong size are
 * refused with a code: they do not crash. The library relies on this for 0 in OrmCloseSession() and
 * OrmScanEnd().
 * @par Null pointers
 * The library does not pass null, except where a parameter's description says so.
 * @par Threads
 * Any thread may call, several at once. One session, with its scan and nodes, is used by one thread
 * at a time.
 * @par Ownership
 * Texts and buffers belong to the caller and are not used after a call has returned.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** An open session, or the message of a delivery. */
typedef uintptr_t ORM_SESSION;
/** A started scan. It belongs to its session. */
typedef uintptr_t ORM_SCAN;
/**
 * A list of the current record, or an item of a list. Valid until its session moves to another
 * record or closes.
 */
typedef uintptr_t ORM_NODE;

#define ORM_OK 0u              /**< Success. */
#define ORM_NO_RECORD 1001000u /**< No record has the key. */
#define ORM_NO_LIST 10058u     /**< The current record has no list of that name. */

#define QRB_ORM_OP_READ 4u /**< OrmPrepare(): read of one record, selected by a key. */
#define QRB_ORM_OP_SCAN 7u /**< OrmPrepare(): scan of the table. */

#define QRB_KEY_TYPE_U32 7u /**< OrmSetIndexKeyValue(): unsigned 32-bit number. */

/**
 * Initialises the layer for this process. Called once, before every other function.
 *
 * @param[in] mode    1
 * @param[in] option  0
 *
 * @retval 0      the layer is initialised
 * @retval other  database code
 */
uint32_t OrmInit(uint32_t mode, uint32_t option);

/**
 * Opens a session on the default connection.
 *
 * @param[in,out] session  0 when the library calls; on success the handle
 *
 * @retval 0      the session is open
 * @retval other  database code
 *
 * @par After a failure
 * session is 0.
 */
uint32_t OrmOpenSessionByDefault(ORM_SESSION* session);

/**
 * Closes a session and releases everything prepared on it; ends its scan if it is open.
 *
 * A subscription session also ends its subscriptions, and removes its descriptors through the
 * control function. It waits for a callback of the session that is running on another thread.
 *
 * @param[in] session  session; 0 is refused with a code
 *
 * @retval 0      the session is closed
 * @retval other  database code
 *
 * @par After a failure
 * The library does not use the session again.
 */
uint32_t OrmCloseSession(ORM_SESSION session);

/**
 * Binds a session to one table and one kind of access.
 *
 * @param[in] session    open session
 * @param[in] table      table name
 * @param[in] operation  QRB_ORM_OP_READ or QRB_ORM_OP_SCAN
 *
 * @retval 0      the session is prepared
 * @retval other  database code
 */
uint32_t OrmPrepare(ORM_SESSION session, const char* table, uint32_t operation);

/**
 * Selects the key of a prepared read.
 *
 * @param[in] session  session prepared with QRB_ORM_OP_READ
 * @param[in] key      "primary_key"
 *
 * @retval 0      the key is selected
 * @retval other  database code
 */
uint32_t OrmSetKeyName(ORM_SESSION session, const char* key);

/**
 * Sets one member of the selected key.
 *
 * @param[in] session    session with a selected key
 * @param[in] member     number of the member, from 0; the library sets member 0
 * @param[in] valueType  QRB_KEY_TYPE_U32
 * @param[in] value      address of the value
 * @param[in] valueSize  size of the value in bytes: 4
 *
 * @retval 0      the member is set
 * @retval other  database code
 */
uint32_t OrmSetIndexKeyValue(ORM_SESSION session, uint32_t member, uint32_t valueType,
                             const void* value, uint32_t valueSize);

/**
 * Performs the prepared read. On success, the record is the session's current record.
 *
 * @param[in] session  session with a key that is set
 *
 * @retval 0              the record was read
 * @retval ORM_NO_RECORD  (1001000) no record has the key
 * @retval other          database code
 *
 * @par After a failure
 * The session has no current record.
 */
uint32_t OrmExecute(ORM_SESSION session);

/**
 * Copies one field of the current record, by name.
 *
 * The current record is the record that OrmExecute() read, the record that OrmScanNext() moved to,
 * or the row of a message that OrmSubExtractData() selected.
 *
 * @param[in]  session      session or message with a current record
 * @param[in]  field        field name: "phy_state" or "if_type"
 * @param[out] destination  size bytes, not necessarily aligned
 * @param[in]  size         width of the field in bytes: 1 or 2
 *
 * @retval 0      the field was copied
 * @retval other  database code
 *
 * @par After a failure
 * destination is unchanged.
 */
uint32_t OrmGetField(ORM_SESSION session, const char* field, void* destination, uint32_t size);

/**
 * Copies one field of the current record, by number. See OrmGetField() for the current record.
 *
 * @param[in]  session      session or message with a current record
 * @param[in]  field        number of the field in its table
 * @param[out] destination  size bytes, not necessarily aligned
 * @param[in]  size         width of the field in bytes
 *
 * @retval 0      the field was copied
 * @retval other  database code
 *
 * @par After a failure
 * destination is unchanged.
 */
uint32_t OrmGetFieldById(ORM_SESSION session, uint32_t field, void* destination, uint32_t size);

/**
 * Restricts a prepared scan to matching records.
 *
 * A condition is one or more terms "field = value", joined by " and ". A value is a decimal number,
 * a hexadecimal literal ("0x" and two digits for each byte of the field) or, for a text field, the
 * text itself, without blanks.
 *
 * @param[in] session    session prepared with QRB_ORM_OP_SCAN
 * @param[in] condition  condition
 *
 * @retval 0      the condition is set
 * @retval other  database code
 */
uint32_t OrmSetScanCond(ORM_SESSION session, const char* condition);

/**
 * Starts the prepared scan.
 *
 * @param[in]     session  session prepared with QRB_ORM_OP_SCAN
 * @param[in,out] scan     0 when the library calls; on success the handle
 *
 * @retval 0      the scan is started
 * @retval other  database code
 *
 * @par After a failure
 * scan is 0.
 */
uint32_t OrmScanStart(ORM_SESSION session, ORM_SCAN* scan);

/**
 * Moves a scan to the next matching record, which becomes the session's current record.
 *
 * @param[in]     session  session of the scan
 * @param[in]     scan     started scan
 * @param[in,out] end      0 when the library calls; set to 1 at the end, when there is no current
 *                         record, otherwise unchanged
 *
 * @retval 0      the scan moved, or is at its end
 * @retval other  database code
 *
 * @par After a failure
 * end is unchanged. The library ends the scan.
 */
uint32_t OrmScanNext(ORM_SESSION session, ORM_SCAN scan, uint8_t* end);

/**
 * Ends a scan.
 *
 * @param[in] session  session of the scan; 0 is refused with a code
 * @param[in] scan     started scan; 0 is refused with a code
 *
 * @retval 0      the scan is ended
 * @retval other  database code
 */
uint32_t OrmScanEnd(ORM_SESSION session, ORM_SCAN scan);

/**
 * Returns a list of the current record.
 *
 * @param[in]     session  session with a current record
 * @param[in]     parent   0
 * @param[in]     list     name of the list
 * @param[in,out] node     0 when the library calls; on success the list
 *
 * @retval 0            the list was returned
 * @retval ORM_NO_LIST  (10058) the record has no list of that name
 * @retval other        database code
 *
 * @par After a failure
 * node is 0.
 */
uint32_t OrmNodeGetChild(ORM_SESSION session, ORM_NODE parent, const char* list, ORM_NODE* node);

/**
 * Returns the number of items in a list.
 *
 * @param[in]  node   list
 * @param[out] count  number of items
 *
 * @retval 0      the number was written
 * @retval other  database code
 *
 * @par After a failure
 * count is unchanged.
 */
uint32_t OrmNodeGetSize(ORM_NODE node, uint32_t* count);

/**
 * Returns an item of a list.
 *
 * @param[in]     node   list
 * @param[in]     index  number of the item, from 0
 * @param[in,out] item   0 when the library calls; on success the item
 *
 * @retval 0      the item was returned
 * @retval other  database code
 *
 * @par After a failure
 * item is 0.
 */
uint32_t OrmNodeGetItemByIdx(ORM_NODE node, uint32_t index, ORM_NODE* item);

/**
 * Copies one field of a list item.
 *
 * @param[in]  item         item; 0 is refused with a code
 * @param[in]  field        number of the field in the item
 * @param[out] destination  size bytes, not necessarily aligned
 * @param[in]  size         width of the field in bytes
 *
 * @retval 0      the field was copied
 * @retval other  database code
 *
 * @par After a failure
 * destination is unchanged.
 */
uint32_t OrmNodeGetFieldById(ORM_NODE item, uint32_t field, void* destination, uint32_t size);

#ifdef __cplusplus
}
#endif
