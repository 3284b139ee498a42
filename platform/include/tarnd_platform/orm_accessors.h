/*
 * The platform contract, part 3: the accessors generated for each table.
 *
 * Three kinds:
 *  - Ormg<Table>ReadInner reads the one record whose primary key equals the key bytes, without a
 *    session of the caller's. 0; ORM_NO_RECORD, the record untouched, when no record has that key;
 *    or another code.
 *  - Ormg<Table>GetAllFieldsInner fills a record buffer from the session's current record.
 *  - Ormg<Table>SetKey<Key>Inner sets the named key of a session prepared with QRB_ORM_OP_READ.
 * Keys and records are byte buffers of exactly the lengths below; layouts of keys: members in
 * order, without gaps. Records: tarnd_qrb/records.h, and for "acl_group_id" the comment at its
 * accessors below.
 */
#pragma once

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/* "if_base": primary key 4 bytes, local key 68 (scope 4, name 64), record 387. */
uint32_t OrmgIfBaseReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength);
uint32_t OrmgIfBaseGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);
uint32_t OrmgIfBaseSetKeyLocalKeyInner(ORM_SESSION session, const void* key, uint32_t keyLength);

/* "if_phy": key 4 bytes, record 79. */
uint32_t OrmgIfPhyReadInner(const void* key, uint32_t keyLength, void* record,
                            uint32_t recordLength);
uint32_t OrmgIfPhyGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/* "if_link": key 4 bytes, record 10. */
uint32_t OrmgIfLinkReadInner(const void* key, uint32_t keyLength, void* record,
                             uint32_t recordLength);

/* "if_route": key 4 bytes, record 22. */
uint32_t OrmgIfRouteReadInner(const void* key, uint32_t keyLength, void* record,
                              uint32_t recordLength);
uint32_t OrmgIfRouteGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/* "port": key 4 bytes, record 1644. */
uint32_t OrmgPortReadInner(const void* key, uint32_t keyLength, void* record,
                           uint32_t recordLength);
uint32_t OrmgPortGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/* "vlan": key 10 bytes (scope 4, scope 4, VLAN id 2), record 238. */
uint32_t OrmgVlanReadInner(const void* key, uint32_t keyLength, void* record,
                           uint32_t recordLength);
uint32_t OrmgVlanGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/* "am_ipv4_address": key 4 bytes. */
uint32_t OrmgAmIpv4AddressSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                uint32_t keyLength);

/* "acl_group_id": the key is 9 bytes: the address of the name text (8) and a kind (1). The record
   is 29: the capacity of a name buffer (4), its address (8), 17 bytes that are left alone; the
   name, with its terminator, goes to that buffer. */
uint32_t OrmgAclGroupIdSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                             uint32_t keyLength);
uint32_t OrmgAclGroupIdGetAllFieldsInner(ORM_SESSION session, void* record, uint32_t recordLength);

/* "qos_integration": key 4 bytes. */
uint32_t OrmgQosIntegrationSetKeyPrimaryKeyInner(ORM_SESSION session, const void* key,
                                                 uint32_t keyLength);

#ifdef __cplusplus
}
#endif
