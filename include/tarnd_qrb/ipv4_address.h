/*
 * IPv4 addresses of interfaces, from the record that each interface has in "am_ipv4_address" and
 * the list "ipv4_address_list" in it.
 *
 * An address is the number whose most significant byte is the first octet. A mask is made of a
 * prefix length's leading one bits: 0 gives 0, and lengths above 32 count as 32. Prefix lengths
 * themselves are handed out as stored.
 *
 * Every function runs on any thread and keeps nothing between calls; what takes two reads (said
 * where it does) may see two states of the list. Failures are logged, an interface without a record
 * too, and leave outputs untouched, unless a comment says otherwise. Null is checked where a
 * comment says so.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>
#include <tarnd_qrb/layout.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One item of the list. */
typedef struct {
    uint32_t address; /* field 0 */
    uint8_t masklen;  /* field 1; prefix length */
    uint8_t type;     /* field 2; 1 marks the main address, 6 one that is never it */
} BDS_IPV4_ADDR_ITEM_S;
QRB_RECORD_SIZE(BDS_IPV4_ADDR_ITEM_S, 8);
QRB_FIELD_AT(BDS_IPV4_ADDR_ITEM_S, address, 0, 4);
QRB_FIELD_AT(BDS_IPV4_ADDR_ITEM_S, masklen, 4, 1);
QRB_FIELD_AT(BDS_IPV4_ADDR_ITEM_S, type, 5, 1);

/* One element of the array that SYSAPI_GetIp4AllAddrByIf fills. */
typedef struct {
    uint32_t address;
    uint32_t masklen; /* prefix length */
} SYSAPI_IP4_ADDR_S;
QRB_RECORD_SIZE(SYSAPI_IP4_ADDR_S, 8);
QRB_FIELD_AT(SYSAPI_IP4_ADDR_S, address, 0, 4);
QRB_FIELD_AT(SYSAPI_IP4_ADDR_S, masklen, 4, 4);

/*
 * Opens a session on the record of interface *key.
 *
 * session  0 beforehand. On success it is open, with the record current, and the caller's to close
 *          with OrmCloseSession; after a failure it has been closed.
 *
 * 0, or 0xFFFFFFFF.
 */
uint32_t BDS_IPGetIpv4AddrTblByIfIndex(ORM_SESSION* session, const uint32_t* key);

/* Reads one item of the list. 0; or 0xFFFFFFFF, the members before the one that failed written. */
uint32_t BDS_IPGetIpv4AddrTblItem(ORM_NODE item, BDS_IPV4_ADDR_ITEM_S* out);

/* The main address: the first item, in list order, that can be read and is not of type 6. Items
   that can't be read are logged and passed over. 0, or 0xFFFFFFFF. */
uint32_t BDS_IPGetMainIpByIfIndex(uint32_t ifIndex, uint32_t* address, uint32_t* masklen);

/* The main address by another rule: the first item of type 1. 0; or 1: silently when no item has
   it. Null is refused with 1. */
uint32_t IP_GetMainIpAddr(uint32_t ifIndex, uint32_t* address, uint32_t* masklen);

/* How many addresses the interface has, also where only the close fails; 0 for other failures, and
   silently where it has no record. */
uint32_t SYSAPI_GetIp4AddrNumByIf(uint32_t ifIndex);

/*
 * The interface's addresses in list order, of every type.
 *
 * addresses  receives the first min(SYSAPI_GetIp4AddrNumByIf, capacity); how many, is not told.
 * capacity   elements in addresses.
 *
 * 0; or 1, the elements read before the failure written. A null array and a capacity of 0 are
 * refused with 1.
 */
uint32_t SYSAPI_GetIp4AllAddrByIf(uint32_t ifIndex, SYSAPI_IP4_ADDR_S* addresses,
                                  uint32_t capacity);

/* In two reads. The addresses are counted and then read. A count that fails is logged and taken for
   none. A read that fails is logged and does not change the result: addresses that were not read
   count as 0. */

/* Whether the address is one of the interface's: 1 yes; 0 no, or a failure. An interface without
   addresses is logged. */
uint32_t BDS_IPIFIsThisIfIpAddr(uint32_t ifIndex, uint32_t address);

/* The first capacity addresses of the interface, without prefix lengths; count receives how many
   were written, 0 (silently) where the interface has none. 0; or 1: no memory. Null is refused with
   1. */
uint32_t BDS_IPIFGetThisIfIpAddr(uint32_t ifIndex, uint32_t* addresses, uint32_t capacity,
                                 uint32_t* count);

/* The first address of the list. 0; or 1: silently where the interface has none. Null is refused
   with 1. */
uint32_t BDS_IPGetFirstIpByIfIndex(uint32_t ifIndex, uint32_t* address);

/* In one read. */

/*
 * The interface's address that fits a peer: the last one, after the first, that is not 0 and whose
 * subnet holds the peer; else the first, whether it fits or not. Prefix lengths are not compared.
 * One of prefix length 0 fits every peer.
 *
 * network  receives the address under its mask.
 *
 * 0; or 1: a failure, with the outputs of the best so far written, or no address. Null is refused
 * with 1.
 */
uint32_t BDS_IPGetIFBestMatchIpAddr(uint32_t ifIndex, uint32_t peer, uint32_t* masklen,
                                    uint32_t* network, uint32_t* address);

/* The mask (of the prefix length: 0 gives 0, above 32 gives 0xFFFFFFFF) of one of the interface's
   addresses. 0; or 1: silently when the address is not the interface's. mask stays written where
   only the closing of the session fails. Null is refused with 1. */
uint32_t IP_GetMask(uint32_t ifIndex, uint32_t address, uint32_t* mask);

/*
 * The interface that owns an address: the first, in a scan of the whole table, whose record has
 * this instanceId and whose list holds the address.
 *
 * ifIndex  receives its index, or 0xFFFFFFFF when no record holds the address.
 *
 * 0; or 1: a failure, or (silently) no owner. Null is refused with 1.
 */
uint32_t IP_GetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex);
uint32_t BDS_IPGetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex);

/* Whether an address has an owner: 1 yes; 0 no, or a failure. */
uint32_t BDS_IPIsLocalIfAddr(uint32_t address, uint32_t instanceId);

/* IPv6: fixed answers. They read no argument, write nothing and touch no database; address would be
   16 bytes. */
uint32_t BDS_IPv6GetValidGlobalAddrByIfIndex(uint32_t ifIndex, uint8_t* address); /* 1: failure */
uint32_t IP6_Addr_GetValidGlobalAddrOnIf(uint32_t ifIndex, uint8_t* address);     /* 0 */

#ifdef __cplusplus
}
#endif
