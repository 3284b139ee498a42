/**
 * @file
 * @brief The platform contract: accessors generated for each table.
 *
 * There are three kinds:
 *  - Read functions read the record with a primary key, without a session.
 *  - GetAllFields functions copy the current record of a session, see OrmGetField().
 *  - SetKey functions set a key of a session that is prepared with QRB_ORM_OP_READ.
 *
 * Keys and records are byte buffers, not necessarily aligned, of exactly the lengths given here; a
 * buffer of another length is refused with a code. The members of a key follow each other in order,
 * without gaps. tarnd_qrb/records.h has the layouts of the records, except that of "acl_group_id".
 *
 * @par Results
 * 0 (ORM_OK) for success, otherwise a database code, as in tarnd_platform/orm.h.
 * @par Null pointers
 * The library does not pass null.
 * @par Threads
 * Any thread may call, several at once; a session is used by one thread at a time.
 */
#pragma once

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads the record of "if_base" with a primary key.
 *
 * @param[in]  key           interface index, 4 bytes
 * @param[in]  keyLength     4
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  387 (QRB_IF_BASE_S)
 *
 * @retval 0              the record was written
 * @retval ORM_NO_RECORD  (1001000) no record has the key
 * @retval other          database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgIfBaseReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength);

/**
 * Copies the current record of "if_base".
 *
 * @param[in]  session       session or message with a current record of the table
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  387 (QRB_IF_BASE_S)
 *
 * @retval 0      the record was written
 * @retval other  database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgIfBaseGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/**
 * Sets the local key of a read of "if_base".
 *
 * @param[in] session    session prepared with QRB_ORM_OP_READ for the table
 * @param[in] key        QRB_IF_BASE_LOCAL_KEY_S: scope 0, 4 bytes; full name, 64 bytes
 * @param[in] keyLength  68
 *
 * @retval 0      the key is set
 * @retval other  database code
 */
uint32_t OrmgIfBaseSetKeyLocalKeyInner(ORM_SESSION session, const void* key, uint32_t keyLength);

/**
 * Reads the record of "if_phy" with a primary key.
 *
 * @param[in]  key           interface index, 4 bytes
 * @param[in]  keyLength     4
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  79 (QRB_IF_PHY_S)
 *
 * @retval 0              the record was written
 * @retval ORM_NO_RECORD  (1001000) no record has the key
 * @retval other          database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgIfPhyReadInner(const void* key, uint32_t keyLength, void* record,
                            uint32_t recordLength);

/**
 * Copies the current record of "if_phy".
 *
 * @param[in]  session       session or message with a current record of the table
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  79 (QRB_IF_PHY_S)
 *
 * @retval 0      the record was written
 * @retval other  database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgIfPhyGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/**
 * Reads the record of "if_link" with a primary key.
 *
 * @param[in]  key           interface index, 4 bytes
 * @param[in]  keyLength     4
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  10 (QRB_IF_LINK_S)
 *
 * @retval 0              the record was written
 * @retval ORM_NO_RECORD  (1001000) no record has the key
 * @retval other          database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgIfLinkReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength);

/**
 * Reads the record of "if_route" with a primary key.
 *
 * @param[in]  key           interface index, 4 bytes
 * @param[in]  keyLength     4
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  22 (QRB_IF_ROUTE_S)
 *
 * @retval 0              the record was written
 * @retval ORM_NO_RECORD  (1001000) no record has the key
 * @retval other          database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgIfRouteReadInner(const void* key, uint32_t keyLength, void* record,
                              uint32_t recordLength);

/**
 * Copies the current record of "if_route".
 *
 * @param[in]  session       session or message with a current record of the table
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  22 (QRB_IF_ROUTE_S)
 *
 * @retval 0      the record was written
 * @retval other  database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgIfRouteGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/**
 * Reads the record of "port" with a primary key.
 *
 * @param[in]  key           interface index, 4 bytes
 * @param[in]  keyLength     4
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  1644 (QRB_PORT_S)
 *
 * @retval 0              the record was written
 * @retval ORM_NO_RECORD  (1001000) no record has the key
 * @retval other          database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgPortReadInner(const void* key, uint32_t keyLength, void* record,
                           uint32_t recordLength);

/**
 * Copies the current record of "port".
 *
 * @param[in]  session       session or message with a current record of the table
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  1644 (QRB_PORT_S)
 *
 * @retval 0      the record was written
 * @retval other  database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgPortGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/**
 * Reads the record of "vlan" with a primary key.
 *
 * @param[in]  key           QRB_VLAN_KEY_S: two scope numbers, 4 bytes each; VLAN id, 2 bytes
 * @param[in]  keyLength     10
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  238 (QRB_VLAN_S)
 *
 * @retval 0              the record was written
 * @retval ORM_NO_RECORD  (1001000) no record has the key
 * @retval other          database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgVlanReadInner(const void* key, uint32_t keyLength, void* record,
                           uint32_t recordLength);

/**
 * Copies the current record of "vlan".
 *
 * @param[in]  session       session or message with a current record of the table
 * @param[out] record        recordLength bytes, which the library has set to zero
 * @param[in]  recordLength  238 (QRB_VLAN_S)
 *
 * @retval 0      the record was written
 * @retval other  database code
 *
 * @par After a failure
 * record is unchanged.
 */
uint32_t OrmgVlanGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/**
 * Sets the primary key of a read of "am_ipv4_address".
 *
 * @param[in] session    session prepared with QRB_ORM_OP_READ for the table
 * @param[in] key        interface index, 4 bytes
 * @param[in] keyLength  4
 *
 * @retval 0      the key is set
 * @retval other  database code
 */
uint32_t OrmgAmIpv4AddressSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                uint32_t keyLength);

/**
 * Sets the primary key of a read of "acl_group_id".
 *
 * @param[in] session    session prepared with QRB_ORM_OP_READ for the table
 * @param[in] key        address of the NUL-terminated name, 8 bytes; kind, 1 byte
 * @param[in] keyLength  9
 *
 * @retval 0      the key is set
 * @retval other  database code
 */
uint32_t OrmgAclGroupIdSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                             uint32_t keyLength);

/**
 * Writes the name of the current record of "acl_group_id".
 *
 * @param[in]     session       session with a current record of the table
 * @param[in,out] record        in: capacity of a name buffer, 4 bytes: 65; address of that buffer,
 * 8 bytes; 17 bytes of zero. The name is written with its NUL to the name buffer; the record is not
 * changed
 * @param[in]     recordLength  29
 *
 * @retval 0      the name was written
 * @retval other  database code, also if the name does not fit
 *
 * @par After a failure
 * The name buffer is unchanged.
 */
uint32_t OrmgAclGroupIdGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/**
 * Sets the primary key of a read of "qos_integration".
 *
 * @param[in] session    session prepared with QRB_ORM_OP_READ for the table
 * @param[in] key        profile index, 4 bytes
 * @param[in] keyLength  4
 *
 * @retval 0      the key is set
 * @retval other  database code
 */
uint32_t OrmgQosIntegrationSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                 uint32_t keyLength);

#ifdef __cplusplus
}
#endif
