/**
 * @file
 * @brief Port type and physical type of interfaces.
 *
 * Two constant tables map the type code of an interface (if_type in "if_base") to a port type and
 * to a physical type. The tables are independent of each other.
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * A refused null pointer is a failure and is logged as "Null value provided".
 * @par Threads
 * Any thread may call any function. The type table is built once, under a lock, by the first call
 * that needs it; readers take no lock.
 * @par Log
 * Priority 3, with the database's code, unless a function's description says otherwise.
 */
#pragma once

#include <stdint.h>

#include <tarnd_qrb/layout.h>

#ifdef __cplusplus
extern "C" {
#endif

#define QRB_IF_TYPE_COUNT 17u   /**< Entries of the type table: if_type 0 to 16. */
#define QRB_IF_TRANS_COUNT 16u  /**< Pairs of the translation table. */
#define QRB_PHY_TYPE_OTHER 101u /**< Physical type of types without a pair and of failed reads. */

/** One entry of the type table. The library reads port_type only. */
typedef struct {
    uint16_t first_value; /**< first value, for the daemon's modules */
    uint16_t port_type;   /**< port type */
    uint16_t third_value; /**< third value, for the daemon's modules */
} BDS_IF_TYPE_INFO_S;
QRB_RECORD_SIZE(BDS_IF_TYPE_INFO_S, 6);
QRB_FIELD_AT(BDS_IF_TYPE_INFO_S, port_type, 2, 2);

/**
 * The type table: QRB_IF_TYPE_COUNT entries, indexed by if_type.
 *
 * Null until the first query of a port type, or BDS_InitIfTypeInfo(), has built the table. A table
 * is never freed. The pointer is stored with release order after the table is filled: a thread that
 * reads it while another may build the table loads it with acquire order.
 */
extern const BDS_IF_TYPE_INFO_S* g_pstBDSIfTypeInfo;

/** A pair of the translation table. */
typedef struct {
    uint8_t if_type;  /**< type code */
    uint8_t phy_type; /**< physical type */
} QRB_IF_TRANS_S;
QRB_RECORD_SIZE(QRB_IF_TRANS_S, 2);

/** The translation table, from type code to physical type. Type 8 (VLAN interface) has no pair. */
extern const QRB_IF_TRANS_S g_qrbIfTrans[QRB_IF_TRANS_COUNT];

/**
 * Builds the type table and publishes it in g_pstBDSIfTypeInfo.
 *
 * The first query of a port type calls it; a call by the daemon is not necessary. Each call builds
 * a new table and replaces the pointer. The old table is not freed, since it may be in use.
 *
 * @retval 0  the table is built
 * @retval 1  no memory
 *
 * @par After a failure
 * g_pstBDSIfTypeInfo is null.
 * @par Log
 * A failed allocation.
 * @par Source
 * No database.
 */
uint32_t BDS_InitIfTypeInfo(void);

/**
 * Writes entries 10 to 16 of a type table.
 *
 * @param[out] table  type table with count entries
 * @param[in]  count  number of entries, at least QRB_IF_TYPE_COUNT (17)
 *
 * @retval 0  the entries were written
 * @retval 1  count is 16 or less
 *
 * @par After a failure
 * table is unchanged.
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t BDS_InitNewIfTypeInfo(BDS_IF_TYPE_INFO_S* table, uint32_t count);

/**
 * Maps a type code to a port type. Builds the type table if it does not exist.
 *
 * @param[in]  type      type code, 0 to 16
 * @param[out] portType  port type; 0 for types 3 and 6
 *
 * @retval 0  the port type was written
 * @retval 1  the type is above 16, or there is no memory for the table
 *
 * @par After a failure
 * portType is unchanged.
 * @par Log
 * A failed allocation, under the name BDS_InitIfTypeInfo. A type above 16 is not logged.
 * @par Source
 * No database.
 */
uint32_t BDS_IfPortTypeSwitch(uint32_t type, uint32_t* portType);

/**
 * Reads the port type of an interface.
 *
 * @param[in]  ifIndex   interface index
 * @param[out] portType  port type; null is refused
 *
 * @retval 0  the port type was written
 * @retval 1  portType is null, the interface has no record, its type is above 16, or a step failed
 *
 * @par After a failure
 * portType is unchanged.
 * @par Log
 * A null portType; each failing step, including a missing record; what BDS_IfPortTypeSwitch() logs.
 * A type above 16 is not logged.
 * @par Source
 * "if_base", "if_type", by if_index.
 */
uint32_t BDS_IfnetGetPortType(uint32_t ifIndex, uint32_t* portType);

/**
 * Reads the port type of an interface. Same as BDS_IfnetGetPortType(), with the type as result.
 *
 * @param[in] ifIndex  interface index
 *
 * @return the port type
 * @retval 0xFFFFFFFF  the interface has no record, its type is above 16, or a step failed
 *
 * @par Log
 * What BDS_IfnetGetPortType() logs.
 * @par Source
 * "if_base", "if_type", by if_index.
 */
uint32_t IFPDT_GetPortType(uint32_t ifIndex);

/**
 * Reads the physical type of an interface.
 *
 * @param[in] ifIndex  interface index
 *
 * @return the physical type, 0 to 255
 * @retval QRB_PHY_TYPE_OTHER  (101) the record is missing or cannot be read, or its type has no
 * pair; also the physical type of types 3 and 7
 *
 * @par Log
 * A record that is missing or cannot be read.
 * @par Source
 * "if_base", if_type, by if_index.
 */
uint32_t IF_INTF_GetPhyTypeByIndex(uint32_t ifIndex);

#ifdef __cplusplus
}
#endif
