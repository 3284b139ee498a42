/**
 * @file
 * @brief Records of the interface, port and VLAN tables, as the database's accessors fill them.
 *
 * The layouts are a wire format shared with the database: sizes, offsets and widths are exact.
 * Integers are little-endian and not aligned: copy a member out, do not take its address. Arrays of
 * bytes may be pointed to. Texts end with NUL within their width. Reserved members carry their
 * offset in their names; the library does not read them.
 */
#pragma once

#include <stdint.h>

#include <tarnd_qrb/layout.h>

#define QRB_IF_NAME_SIZE 64   /**< Size of an interface name buffer in bytes, NUL included. */
#define QRB_MAC_SIZE 6        /**< Size of a MAC address in bytes. */
#define QRB_VLAN_SET_SIZE 512 /**< Size in bytes of a set of VLAN ids 0 to 4095, one bit each. */
/** Size in bytes of a set of port positions 0 to 255, one bit each. */
#define QRB_MEMBER_SET_SIZE 32
#define QRB_VLAN_DESCRIPTION_SIZE 81 /**< Size of a VLAN description in bytes, NUL included. */

/** Record of "if_base". Primary key: if_index. Local key: QRB_IF_BASE_LOCAL_KEY_S. */
typedef struct QRB_PACKED {
    uint32_t if_index;                  /**< interface index; field 0 */
    uint8_t reserved_4[4];              /**< reserved */
    char if_name[QRB_IF_NAME_SIZE];     /**< full name; field 2 */
    char simple_name[QRB_IF_NAME_SIZE]; /**< short name */
    uint16_t if_type;                   /**< type code; 8: VLAN interface; field "if_type" */
    uint8_t reserved_138[249];          /**< reserved */
} QRB_IF_BASE_S;
QRB_RECORD_SIZE(QRB_IF_BASE_S, 387);
QRB_FIELD_AT(QRB_IF_BASE_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_BASE_S, if_name, 8, 64);
QRB_FIELD_AT(QRB_IF_BASE_S, simple_name, 72, 64);
QRB_FIELD_AT(QRB_IF_BASE_S, if_type, 136, 2);

/** Local key of "if_base". */
typedef struct QRB_PACKED {
    uint32_t name_scope;         /**< always 0 */
    char name[QRB_IF_NAME_SIZE]; /**< full name, padded with zero bytes */
} QRB_IF_BASE_LOCAL_KEY_S;
QRB_RECORD_SIZE(QRB_IF_BASE_LOCAL_KEY_S, 68);
QRB_FIELD_AT(QRB_IF_BASE_LOCAL_KEY_S, name, 4, 64);

/** Record of "if_phy". Primary key: if_index. */
typedef struct QRB_PACKED {
    uint32_t if_index;              /**< interface index */
    uint8_t reserved_4[9];          /**< reserved */
    uint8_t phy_state;              /**< physical state: 1 up, 0 down; field "phy_state" */
    uint8_t reserved_14[9];         /**< reserved */
    uint8_t mac_addr[QRB_MAC_SIZE]; /**< MAC address, first byte first */
    uint8_t reserved_29[20];        /**< reserved */
    uint32_t slot_id;               /**< slot that holds the interface */
    uint8_t reserved_53[8];         /**< reserved */
    uint32_t port_id;               /**< position below the slot */
    uint8_t reserved_65[14];        /**< reserved */
} QRB_IF_PHY_S;
QRB_RECORD_SIZE(QRB_IF_PHY_S, 79);
QRB_FIELD_AT(QRB_IF_PHY_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_PHY_S, phy_state, 13, 1);
QRB_FIELD_AT(QRB_IF_PHY_S, mac_addr, 23, 6);
QRB_FIELD_AT(QRB_IF_PHY_S, slot_id, 49, 4);
QRB_FIELD_AT(QRB_IF_PHY_S, port_id, 61, 4);

/** Record of "if_link". Primary key: if_index. */
typedef struct QRB_PACKED {
    uint32_t if_index;     /**< interface index */
    uint8_t reserved_4[4]; /**< reserved */
    uint8_t link_state;    /**< link state: 1 up, any other value down */
    uint8_t reserved_9[1]; /**< reserved */
} QRB_IF_LINK_S;
QRB_RECORD_SIZE(QRB_IF_LINK_S, 10);
QRB_FIELD_AT(QRB_IF_LINK_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_LINK_S, link_state, 8, 1);

/** Record of "if_route". Primary key: if_index. */
typedef struct QRB_PACKED {
    uint32_t if_index;      /**< interface index */
    uint8_t reserved_4[4];  /**< reserved */
    uint8_t route_state;    /**< layer-3 state: 1 up, 0 down */
    uint8_t reserved_9[13]; /**< reserved */
} QRB_IF_ROUTE_S;
QRB_RECORD_SIZE(QRB_IF_ROUTE_S, 22);
QRB_FIELD_AT(QRB_IF_ROUTE_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_ROUTE_S, route_state, 8, 1);

/**
 * Record of "port". Primary key: if_index.
 *
 * The library only compares the VLAN sets, byte by byte. In the stand-in, the bit of VLAN id i is
 * in byte i / 8, with mask `0x80 >> (i % 8)`; a device's platform may use another order.
 */
typedef struct QRB_PACKED {
    uint32_t if_index;      /**< interface index */
    uint32_t port_index;    /**< bits 8 to 15: position in the member sets of a VLAN */
    uint32_t vlan_scope0;   /**< first member of the key of the port's VLAN records */
    uint32_t vlan_scope1;   /**< second member of that key */
    uint8_t reserved_16[4]; /**< reserved */
    uint8_t switch_port;    /**< 1 if the port is used as a layer-2 port, else 0 */
    uint8_t reserved_21[1]; /**< reserved */
    uint16_t pvid;          /**< default VLAN id */
    uint8_t vlan_bitmap_1[QRB_VLAN_SET_SIZE]; /**< set of the port's VLANs */
    uint8_t vlan_bitmap_2[QRB_VLAN_SET_SIZE]; /**< second set of the port's VLANs */
    uint8_t reserved_1048[596];               /**< reserved */
} QRB_PORT_S;
QRB_RECORD_SIZE(QRB_PORT_S, 1644);
QRB_FIELD_AT(QRB_PORT_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_PORT_S, port_index, 4, 4);
QRB_FIELD_AT(QRB_PORT_S, vlan_scope0, 8, 4);
QRB_FIELD_AT(QRB_PORT_S, vlan_scope1, 12, 4);
QRB_FIELD_AT(QRB_PORT_S, switch_port, 20, 1);
QRB_FIELD_AT(QRB_PORT_S, pvid, 22, 2);
QRB_FIELD_AT(QRB_PORT_S, vlan_bitmap_1, 24, 512);
QRB_FIELD_AT(QRB_PORT_S, vlan_bitmap_2, 536, 512);

/** Primary key of "vlan". A lookup by VLAN id alone has 0 in both scope members. */
typedef struct QRB_PACKED {
    uint32_t vlan_scope0; /**< first scope member */
    uint32_t vlan_scope1; /**< second scope member */
    uint16_t vlan_id;     /**< VLAN id */
} QRB_VLAN_KEY_S;
QRB_RECORD_SIZE(QRB_VLAN_KEY_S, 10);
QRB_FIELD_AT(QRB_VLAN_KEY_S, vlan_id, 8, 2);

/**
 * Record of "vlan". Primary key: QRB_VLAN_KEY_S.
 *
 * In the member sets, the bit of position i is in byte i / 8, with mask `0x80 >> (i % 8)`. Field 9,
 * one byte, is the activity state, 1 for active; field "name", 32 bytes, is the name. Neither is
 * read from this record.
 */
typedef struct QRB_PACKED {
    uint32_t vlan_scope0;                         /**< first scope member; field 0 */
    uint32_t vlan_scope1;                         /**< second scope member; field 1 */
    uint16_t vlan_id;                             /**< VLAN id; field 2 */
    uint8_t reserved_10[33];                      /**< reserved */
    char description[QRB_VLAN_DESCRIPTION_SIZE];  /**< description */
    uint8_t reserved_124[4];                      /**< reserved */
    uint8_t member_bitmap_1[QRB_MEMBER_SET_SIZE]; /**< set of member ports */
    uint8_t member_bitmap_2[QRB_MEMBER_SET_SIZE]; /**< second set of member ports */
    uint8_t reserved_192[46];                     /**< reserved */
} QRB_VLAN_S;
QRB_RECORD_SIZE(QRB_VLAN_S, 238);
QRB_FIELD_AT(QRB_VLAN_S, vlan_scope0, 0, 4);
QRB_FIELD_AT(QRB_VLAN_S, vlan_scope1, 4, 4);
QRB_FIELD_AT(QRB_VLAN_S, vlan_id, 8, 2);
QRB_FIELD_AT(QRB_VLAN_S, description, 43, 81);
QRB_FIELD_AT(QRB_VLAN_S, member_bitmap_1, 128, 32);
QRB_FIELD_AT(QRB_VLAN_S, member_bitmap_2, 160, 32);
