/**
 * @file
 * @brief IPv4 addresses of interfaces.
 *
 * Source: table "am_ipv4_address", which has a record for each interface, and the list
 * "ipv4_address_list" in that record.
 *
 * An address is a 32-bit number whose most significant byte is the first octet: 10.0.0.1 is
 * 0x0A000001. A prefix length is returned as stored. Where a mask is needed, a prefix length of 0
 * gives mask 0, and one above 32 gives mask 0xFFFFFFFF.
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * A refused null pointer is a failure and is logged as "Null value provided".
 * @par Threads
 * Any thread may call any function. No state is kept between calls. A function that reads the list
 * twice says so: the list may change between the two reads.
 * @par Log
 * Priority 3, with the database's code, unless a function's description says otherwise. An
 * interface without a record is logged like any other failure.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>
#include <tarnd_qrb/layout.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One item of an interface's address list. */
typedef struct {
    uint32_t address; /**< address; field 0 */
    uint8_t masklen;  /**< prefix length; field 1 */
    uint8_t type;     /**< 1: main address; 6: never the main address; field 2 */
} BDS_IPV4_ADDR_ITEM_S;
QRB_RECORD_SIZE(BDS_IPV4_ADDR_ITEM_S, 8);
QRB_FIELD_AT(BDS_IPV4_ADDR_ITEM_S, address, 0, 4);
QRB_FIELD_AT(BDS_IPV4_ADDR_ITEM_S, masklen, 4, 1);
QRB_FIELD_AT(BDS_IPV4_ADDR_ITEM_S, type, 5, 1);

/** One element of the array that SYSAPI_GetIp4AllAddrByIf() fills. */
typedef struct {
    uint32_t address; /**< address */
    uint32_t masklen; /**< prefix length */
} SYSAPI_IP4_ADDR_S;
QRB_RECORD_SIZE(SYSAPI_IP4_ADDR_S, 8);
QRB_FIELD_AT(SYSAPI_IP4_ADDR_S, address, 0, 4);
QRB_FIELD_AT(SYSAPI_IP4_ADDR_S, masklen, 4, 4);

/**
 * Opens a session positioned on the address record of an interface.
 *
 * @param[in,out] session  set to 0 by the caller; on success the open session, which the caller
 * closes with OrmCloseSession()
 * @param[in]     key      interface index
 *
 * @retval 0           the session is open and the record is its current record
 * @retval 0xFFFFFFFF  the interface has no record, or a step failed
 *
 * @par After a failure
 * The session is closed; session may hold its former handle and must not be used.
 * @par Log
 * The failing step.
 * @par Source
 * "am_ipv4_address", by interface index.
 */
uint32_t BDS_IPGetIpv4AddrTblByIfIndex(ORM_SESSION* session, const uint32_t* key);

/**
 * Reads one item of an address list.
 *
 * @param[in]  item  item of the list, from OrmNodeGetItemByIdx()
 * @param[out] out   address, prefix length and type
 *
 * @retval 0           the item was read
 * @retval 0xFFFFFFFF  a field cannot be read
 *
 * @par After a failure
 * The members before the failing one (address, masklen, type, in this order) are written.
 * @par Log
 * The failing step.
 * @par Source
 * Fields 0, 1 and 2 of the item.
 */
uint32_t BDS_IPGetIpv4AddrTblItem(ORM_NODE item, BDS_IPV4_ADDR_ITEM_S* out);

/**
 * Reads the main address of an interface: the first address that can be read and whose type is
 * not 6.
 *
 * IP_GetMainIpAddr() selects the main address by another rule.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] address  address
 * @param[out] masklen  prefix length
 *
 * @retval 0           the outputs were written
 * @retval 0xFFFFFFFF  the interface has no record or no such address, or a step failed
 *
 * @par After a failure
 * The outputs are unchanged.
 * @par Log
 * Each failing step; an empty list or a list whose size cannot be read; no address found. An item
 * that cannot be read is logged and skipped. A failing close is not logged and does not change the
 * result.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t BDS_IPGetMainIpByIfIndex(uint32_t ifIndex, uint32_t* address, uint32_t* masklen);

/**
 * Reads the main address of an interface: the first address of type 1.
 *
 * BDS_IPGetMainIpByIfIndex() selects the main address by another rule.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] address  address; null is refused
 * @param[out] masklen  prefix length; null is refused
 *
 * @retval 0  the outputs were written
 * @retval 1  a pointer is null, the interface has no record or no such address, or a step failed
 *
 * @par After a failure
 * The outputs are unchanged.
 * @par Log
 * A null pointer; each failing step. A list without an address of type 1 is not logged.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t IP_GetMainIpAddr(uint32_t ifIndex, uint32_t* address, uint32_t* masklen);

/**
 * Counts the addresses of an interface.
 *
 * @param[in] ifIndex  interface index
 *
 * @return the number of items in the list
 * @retval 0  no addresses, no record, or a step before the size of the list failed
 *
 * @par After a failure
 * The result is 0 if a step before the size of the list is read fails. It is the size if a later
 * step, closing the session, fails.
 * @par Log
 * Each failing step. An interface without a record is not logged.
 * @par Source
 * "am_ipv4_address", size of "ipv4_address_list", by interface index.
 */
uint32_t SYSAPI_GetIp4AddrNumByIf(uint32_t ifIndex);

/**
 * Reads the addresses of an interface in list order, of every type.
 *
 * @param[in]  ifIndex    interface index
 * @param[out] addresses  array of capacity elements; null is refused
 * @param[in]  capacity   maximum number of elements; 0 is refused
 *
 * @retval 0  the first elements of the list were written, as many as exist and fit; the number is
 * not returned: it is the smaller of capacity and the result of SYSAPI_GetIp4AddrNumByIf()
 * @retval 1  an argument is refused, the interface has no record, or a step failed
 *
 * @par After a failure
 * The elements read before the failure are written.
 * @par Log
 * A refused argument, as "Null value provided"; each failing step.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t SYSAPI_GetIp4AllAddrByIf(uint32_t ifIndex, SYSAPI_IP4_ADDR_S* addresses,
                                  uint32_t capacity);

/**
 * Checks whether an address is one of an interface's addresses.
 *
 * Reads the list twice: SYSAPI_GetIp4AddrNumByIf(), then SYSAPI_GetIp4AllAddrByIf(). If the second
 * read fails, the addresses that were not read count as 0.
 *
 * @param[in] ifIndex  interface index
 * @param[in] address  address
 *
 * @retval 1  it is
 * @retval 0  it is not, the interface has no addresses or no record, or a step failed
 *
 * @par Log
 * What the two functions log; an interface without addresses or record; a failed second read; a
 * failed allocation.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t BDS_IPIFIsThisIfIpAddr(uint32_t ifIndex, uint32_t address);

/**
 * Reads the addresses of an interface in list order, without prefix lengths.
 *
 * Reads the list twice: SYSAPI_GetIp4AddrNumByIf(), then SYSAPI_GetIp4AllAddrByIf(). If the second
 * read fails, the addresses that were not read count as 0 and the result is still 0.
 *
 * @param[in]  ifIndex    interface index
 * @param[out] addresses  array of capacity elements; null is refused
 * @param[in]  capacity   maximum number of elements
 * @param[out] count      number of elements written; 0 if the interface has no addresses or no
 * record, or if the first read failed; null is refused
 *
 * @retval 0  the outputs were written
 * @retval 1  a pointer is null, or no memory
 *
 * @par After a failure
 * The outputs are unchanged after 1.
 * @par Log
 * A null pointer; what the two functions log; a failed second read; a failed allocation. An
 * interface without addresses is not logged.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t BDS_IPIFGetThisIfIpAddr(uint32_t ifIndex, uint32_t* addresses, uint32_t capacity,
                                 uint32_t* count);

/**
 * Reads the first address in the list of an interface.
 *
 * Reads the list twice: SYSAPI_GetIp4AddrNumByIf(), then SYSAPI_GetIp4AllAddrByIf(). If the second
 * read fails before the first address, the address is 0 and the result is still 0.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] address  address; null is refused
 *
 * @retval 0  the address was written
 * @retval 1  address is null, the interface has no addresses or no record, the first read failed,
 * or no memory
 *
 * @par After a failure
 * address is unchanged after 1.
 * @par Log
 * A null address; what the two functions log; a failed second read; a failed allocation. An
 * interface without addresses is not logged.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t BDS_IPGetFirstIpByIfIndex(uint32_t ifIndex, uint32_t* address);

/**
 * Selects the address of an interface that fits a peer.
 *
 * The result is the last address after the first that is not 0 and whose subnet contains the peer;
 * if there is none, the first address, whether it fits or not. Prefix lengths are not compared. An
 * address of prefix length 0 fits every peer.
 *
 * @param[in]  ifIndex  interface index
 * @param[in]  peer     address of the peer
 * @param[out] masklen  prefix length of the selected address; null is refused
 * @param[out] network  the selected address under its mask; null is refused
 * @param[out] address  the selected address; null is refused
 *
 * @retval 0  the outputs were written
 * @retval 1  a pointer is null, the interface has no record or an empty list, or a step failed
 *
 * @par After a failure
 * The outputs hold the address selected among those read before the failure, or are unchanged if
 * none was read.
 * @par Log
 * A null pointer; each failing step; an empty list.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t BDS_IPGetIFBestMatchIpAddr(uint32_t ifIndex, uint32_t peer, uint32_t* masklen,
                                    uint32_t* network, uint32_t* address);

/**
 * Reads the mask of one of an interface's addresses.
 *
 * @param[in]  ifIndex  interface index
 * @param[in]  address  address
 * @param[out] mask     mask of the first item with this address; null is refused
 *
 * @retval 0  the mask was written
 * @retval 1  mask is null, the interface has no record or not this address, or a step failed
 *
 * @par After a failure
 * mask is unchanged. If only closing the session failed, it is written.
 * @par Log
 * A null mask; each failing step. An address that is not found is not logged.
 * @par Source
 * "am_ipv4_address", "ipv4_address_list", by interface index.
 */
uint32_t IP_GetMask(uint32_t ifIndex, uint32_t address, uint32_t* mask);

/**
 * Looks up the interface that owns an address, by a scan of the table.
 *
 * @param[in]  address     address
 * @param[in]  instanceId  instance; only records with this instanceId are considered
 * @param[out] ifIndex     interface index of the first record, in scan order, whose list contains
 * the address; 0xFFFFFFFF if there is none; null is refused
 *
 * @retval 0  the address has an owner
 * @retval 1  ifIndex is null, the address has no owner, or a step failed
 *
 * @par After a failure
 * ifIndex is unchanged.
 * @par Log
 * A null ifIndex; each failing step. An address without an owner is not logged.
 * @par Source
 * "am_ipv4_address", fields 0 and 1 and "ipv4_address_list".
 */
uint32_t IP_GetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex);

/**
 * Looks up the interface that owns an address. Same as IP_GetIfindexbyIpAddr().
 *
 * @param[in]  address     address
 * @param[in]  instanceId  instance; only records with this instanceId are considered
 * @param[out] ifIndex     interface index of the first record, in scan order, whose list contains
 * the address; 0xFFFFFFFF if there is none; null is refused
 *
 * @retval 0  the address has an owner
 * @retval 1  ifIndex is null, the address has no owner, or a step failed
 *
 * @par After a failure
 * ifIndex is unchanged.
 * @par Log
 * What IP_GetIfindexbyIpAddr() logs, under that name.
 * @par Source
 * "am_ipv4_address", fields 0 and 1 and "ipv4_address_list".
 */
uint32_t BDS_IPGetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex);

/**
 * Checks whether an interface of this device owns an address.
 *
 * @param[in] address     address
 * @param[in] instanceId  instance; only records with this instanceId are considered
 *
 * @retval 1  an interface owns it
 * @retval 0  no interface owns it, or a step failed
 *
 * @par Log
 * What IP_GetIfindexbyIpAddr() logs, under that name.
 * @par Source
 * "am_ipv4_address", fields 0 and 1 and "ipv4_address_list".
 */
uint32_t BDS_IPIsLocalIfAddr(uint32_t address, uint32_t instanceId);

/**
 * Fails for every interface: IPv6 is not supported. Kept for existing callers.
 *
 * @param[in]  ifIndex  not used
 * @param[out] address  never written; may be null
 *
 * @retval 1  always
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t BDS_IPv6GetValidGlobalAddrByIfIndex(uint32_t ifIndex, uint8_t* address);

/**
 * Returns 0 and no address for every interface: IPv6 is not supported. Kept for existing callers.
 *
 * @param[in]  ifIndex  not used
 * @param[out] address  never written; may be null
 *
 * @retval 0  always
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t IP6_Addr_GetValidGlobalAddrOnIf(uint32_t ifIndex, uint8_t* address);

#ifdef __cplusplus
}
#endif
