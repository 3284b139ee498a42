/*
 * A module in C that queries one interface and prints its name and line state: query_module
 * IFINDEX.
 *
 *     cc -std=c11 -o query_module query_module.c $(pkg-config --cflags --libs tarnd_qrb)
 */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/ipv4_address.h>
#include <tarnd_qrb/layout.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/log.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/qos.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/route.h>
#include <tarnd_qrb/subscription.h>
#include <tarnd_qrb/table_walk.h>
#include <tarnd_qrb/util_list.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

enum { ADDRESSES = 16 };

static void PrintAddresses(uint32_t ifIndex)
{
    SYSAPI_IP4_ADDR_S addresses[ADDRESSES];
    const uint32_t stored = SYSAPI_GetIp4AddrNumByIf(ifIndex);
    const uint32_t count = stored < ADDRESSES ? stored : ADDRESSES;
    if (count == 0 || SYSAPI_GetIp4AllAddrByIf(ifIndex, addresses, ADDRESSES) != 0) {
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t address = addresses[i].address;
        printf("  address %u.%u.%u.%u/%u\n", address >> 24, address >> 16 & 0xFF,
               address >> 8 & 0xFF, address & 0xFF, addresses[i].masklen);
    }
}

int main(int count, char** arguments)
{
    if (count != 2) {
        fprintf(stderr, "usage: %s IFINDEX\n", arguments[0]);
        return 2;
    }
    const uint32_t ifIndex = (uint32_t)strtoul(arguments[1], NULL, 10);
    if (QRB_DB_InitOrm() != 0) {
        fputs("the database is not available\n", stderr);
        return 1;
    }

    char name[QRB_IF_NAME_SIZE];
    if (IF_GetIfNameByIndex(ifIndex, name) != 0) {
        printf("interface %" PRIu32 ": unknown\n", ifIndex);
        return 1;
    }
    uint32_t state = 0;
    printf("interface %" PRIu32 ": %s, line %s\n", ifIndex, name,
           BDS_IfnetGetLineState(ifIndex, &state) != 0 ? "unknown"
           : state == QRB_IF_STATE_UP                  ? "up"
                                                       : "down");
    PrintAddresses(ifIndex);
    return 0;
}
