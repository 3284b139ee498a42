/*
 * Records of the interface, port and VLAN tables, byte for byte as the database's accessors fill
 * them.
 *
 * A wire format: offsets, widths and sizes are exact. Integers are little-endian and lie at odd
 * offsets, so copy a member out, never point to it (byte arrays may be pointed to). Texts end with
 * NUL within their width. Reserved members carry their offset; the library reads none of them.
 */
#pragma once

#include <stdint.h>

#include <tarnd_qrb/layout.h>

#define QRB_IF_NAME_SIZE 64 /* an interface name and its NUL; every name buffer has this size */
#define QRB_MAC_SIZE 6
#define QRB_VLAN_SET_SIZE 512  /* one bit for each VLAN id 0 to 4095 */
#define QRB_MEMBER_SET_SIZE 32 /* one bit for each port position 0 to 255 */
#define QRB_VLAN_DESCRIPTION_SIZE 81

/* Row of "if_base"; key if_index, or the local key: name_scope and the full name, 68 bytes. */
typedef struct QRB_PACKED {
    uint32_t if_index; /* field 0 */
    uint8_t reserved_4[4];
    char if_name[QRB_IF_NAME_SIZE];     /* field 2; full name */
    char simple_name[QRB_IF_NAME_SIZE]; /* short name */
    uint16_t if_type; /* index of the interface type table; 8 is a VLAN interface */
    uint8_t reserved_138[249];
} QRB_IF_BASE_S;
QRB_RECORD_SIZE(QRB_IF_BASE_S, 387);
QRB_FIELD_AT(QRB_IF_BASE_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_BASE_S, if_name, 8, 64);
QRB_FIELD_AT(QRB_IF_BASE_S, simple_name, 72, 64);
QRB_FIELD_AT(QRB_IF_BASE_S, if_type, 136, 2);

/* The local key of "if_base". */
typedef struct QRB_PACKED {
    uint32_t name_scope; /* always 0 */
    char name[QRB_IF_NAME_SIZE];
} QRB_IF_BASE_LOCAL_KEY_S;
QRB_RECORD_SIZE(QRB_IF_BASE_LOCAL_KEY_S, 68);
QRB_FIELD_AT(QRB_IF_BASE_LOCAL_KEY_S, name, 4, 64);

/* Row of "if_phy"; key if_index. */
typedef struct QRB_PACKED {
    uint32_t if_index;
    uint8_t reserved_4[9];
    uint8_t phy_state; /* 1 up, 0 down */
    uint8_t reserved_14[9];
    uint8_t mac_addr[QRB_MAC_SIZE]; /* first byte first */
    uint8_t reserved_29[20];
    uint32_t slot_id;
    uint8_t reserved_53[8];
    uint32_t port_id; /* position below the slot */
    uint8_t reserved_65[14];
} QRB_IF_PHY_S;
QRB_RECORD_SIZE(QRB_IF_PHY_S, 79);
QRB_FIELD_AT(QRB_IF_PHY_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_PHY_S, phy_state, 13, 1);
QRB_FIELD_AT(QRB_IF_PHY_S, mac_addr, 23, 6);
QRB_FIELD_AT(QRB_IF_PHY_S, slot_id, 49, 4);
QRB_FIELD_AT(QRB_IF_PHY_S, port_id, 61, 4);

/* Row of "if_link"; key if_index. */
typedef struct QRB_PACKED {
    uint32_t if_index;
    uint8_t reserved_4[4];
    uint8_t link_state; /* 1 up, any other value down */
    uint8_t reserved_9[1];
} QRB_IF_LINK_S;
QRB_RECORD_SIZE(QRB_IF_LINK_S, 10);
QRB_FIELD_AT(QRB_IF_LINK_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_LINK_S, link_state, 8, 1);

/* Row of "if_route"; key if_index. */
typedef struct QRB_PACKED {
    uint32_t if_index;
    uint8_t reserved_4[4];
    uint8_t route_state; /* layer 3: 1 up, 0 down */
    uint8_t reserved_9[13];
} QRB_IF_ROUTE_S;
QRB_RECORD_SIZE(QRB_IF_ROUTE_S, 22);
QRB_FIELD_AT(QRB_IF_ROUTE_S, if_index, 0, 4);
QRB_FIELD_AT(QRB_IF_ROUTE_S, route_state, 8, 1);

/* Row of "port"; key if_index. */
typedef struct QRB_PACKED {
    uint32_t if_index;
    uint32_t port_index;  /* bits 8 to 15: the port's position in a VLAN's member sets */
    uint32_t vlan_scope0; /* the first two members of the key of this port's VLAN records */
    uint32_t vlan_scope1;
    uint8_t reserved_16[4];
    uint8_t switch_port; /* 1 used as a layer-2 port, 0 not */
    uint8_t reserved_21[1];
    uint16_t pvid; /* default VLAN id */
    uint8_t vlan_bitmap_1[QRB_VLAN_SET_SIZE];
    uint8_t vlan_bitmap_2[QRB_VLAN_SET_SIZE];
    uint8_t reserved_1048[596];
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

/* The primary key of "vlan". A lookup that knows only the VLAN id puts 0 in both scopes. */
typedef struct QRB_PACKED {
    uint32_t vlan_scope0;
    uint32_t vlan_scope1;
    uint16_t vlan_id;
} QRB_VLAN_KEY_S;
QRB_RECORD_SIZE(QRB_VLAN_KEY_S, 10);
QRB_FIELD_AT(QRB_VLAN_KEY_S, vlan_id, 8, 2);

/* Row of "vlan". In the member sets, position i is byte i / 8, mask 0x80 >> i % 8. Besides, field 9
   is the activity state, one byte, 1 active. */
typedef struct QRB_PACKED {
    uint32_t vlan_scope0; /* field 0 */
    uint32_t vlan_scope1; /* field 1 */
    uint16_t vlan_id;     /* field 2 */
    uint8_t reserved_10[33];
    char description[QRB_VLAN_DESCRIPTION_SIZE];
    uint8_t reserved_124[4];
    uint8_t member_bitmap_1[QRB_MEMBER_SET_SIZE];
    uint8_t member_bitmap_2[QRB_MEMBER_SET_SIZE];
    uint8_t reserved_192[46];
} QRB_VLAN_S;
QRB_RECORD_SIZE(QRB_VLAN_S, 238);
QRB_FIELD_AT(QRB_VLAN_S, vlan_scope0, 0, 4);
QRB_FIELD_AT(QRB_VLAN_S, vlan_scope1, 4, 4);
QRB_FIELD_AT(QRB_VLAN_S, vlan_id, 8, 2);
QRB_FIELD_AT(QRB_VLAN_S, description, 43, 81);
QRB_FIELD_AT(QRB_VLAN_S, member_bitmap_1, 128, 32);
QRB_FIELD_AT(QRB_VLAN_S, member_bitmap_2, 160, 32);
