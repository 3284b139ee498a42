/*
 * Port types and physical types of interfaces: what two constant tables make of the type code
 * (if_type) in "if_base".
 *
 * Every function runs on any thread. Failures are logged unless a comment calls them silent. Null
 * is checked where a comment says so.
 */
#pragma once

#include <stdint.h>

#include <tarnd_qrb/layout.h>

#ifdef __cplusplus
extern "C" {
#endif

#define QRB_IF_TYPE_COUNT 17u  /* entries of the type table: if_type 0 to 16 */
#define QRB_IF_TRANS_COUNT 16u /* pairs of the translation table */
#define QRB_PHY_TYPE_OTHER 101u

/* One entry of the type table. The library itself reads port_type only. */
typedef struct {
    uint16_t first_value;
    uint16_t port_type;
    uint16_t third_value;
} BDS_IF_TYPE_INFO_S;
QRB_RECORD_SIZE(BDS_IF_TYPE_INFO_S, 6);
QRB_FIELD_AT(BDS_IF_TYPE_INFO_S, port_type, 2, 2);

/*
 * The type table, QRB_IF_TYPE_COUNT entries indexed by if_type. Null until the first question for a
 * port type, or BDS_InitIfTypeInfo, has built it; then it stays for the life of the process.
 *
 * It is published filled, by an atomic store: load the pointer with acquire order where another
 * thread may be the one that builds it.
 */
extern const BDS_IF_TYPE_INFO_S* g_pstBDSIfTypeInfo;

typedef struct {
    uint8_t if_type;
    uint8_t phy_type;
} QRB_IF_TRANS_S;
QRB_RECORD_SIZE(QRB_IF_TRANS_S, 2);

/* From type code to physical type; constant, and independent of the type table. There is no pair
   for 8, the VLAN interfaces. */
extern const QRB_IF_TRANS_S g_qrbIfTrans[QRB_IF_TRANS_COUNT];

/*
 * Builds the type table and publishes it. Nobody has to call it: the first question does.
 *
 * Each call builds a new table, and what it could not build replaces the old one too: null when
 * there is no memory, entries 10 to 16 zero when they could not be filled. An old table is not
 * freed, since it may still be read.
 *
 * 0 built, 1 failed.
 */
uint32_t BDS_InitIfTypeInfo(void);

/* Writes entries 10 to 16 of a table with count entries. 0; or 1, silently and with nothing
   written, when they are 16 or fewer. */
uint32_t BDS_InitNewIfTypeInfo(BDS_IF_TYPE_INFO_S* table, uint32_t count);

/* The port type of a type code; it is 0 for codes 3 and 6. 0; or 1, portType untouched: a code
   above 16 (silent), or no table. */
uint32_t BDS_IfPortTypeSwitch(uint32_t type, uint32_t* portType);

/* The port type of an interface, from the field "if_type". 0; or 1, portType untouched: silently
   where the type has none. Null is refused with 1. */
uint32_t BDS_IfnetGetPortType(uint32_t ifIndex, uint32_t* portType);

/* The port type of an interface, as BDS_IfnetGetPortType finds it: the type itself, or 0xFFFFFFFF.
 */
uint32_t IFPDT_GetPortType(uint32_t ifIndex);

/* The physical type of an interface. 0 to 255; QRB_PHY_TYPE_OTHER for types without a pair, and
   when the record can't be read. */
uint32_t IF_INTF_GetPhyTypeByIndex(uint32_t ifIndex);

#ifdef __cplusplus
}
#endif
