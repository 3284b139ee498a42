/*
 * A module of the daemon, in C: builds a list, registers a callback, publishes an event. Prints
 * what went wrong; the exit status is nonzero after an error.
 */
#include <stdio.h>

#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/memory_map.h>

/* The example of tarnd_qrb/util_list.h, taken from there. */
#include "util_list_example.h"

static int g_failures = 0;

#define EXPECT(condition)                                               \
    do {                                                                \
        if (!(condition)) {                                             \
            printf("line %d: %s doesn't hold\n", __LINE__, #condition); \
            g_failures++;                                               \
        }                                                               \
    } while (0)

static uint32_t g_port = 0;

static uint32_t OnVlanAddPort(const void* data, uint32_t value, void* argument, uint64_t* word)
{
    const QRB_PORT_S* port = data;
    const QRB_VLAN_CHANGE_S* change = argument;
    EXPECT(change->ifIndex == 42 && change->bitmap == QRB_VLAN_BITMAP_2 && value == 0);
    g_port = port->if_index;
    ++*word;
    return 0;
}

int main(void)
{
    const uint32_t values[] = {3, 9, 4};
    const QRB_PORT_S port = {.if_index = 42};
    QRB_VLAN_CHANGE_S change = {.bitmap = QRB_VLAN_BITMAP_2, .portCount = 1, .ifIndex = 42};
    MEM_EX_Init();
    EXPECT(Largest(values, 3) == 9 && Largest(values, 0) == 0);

    EXPECT(L2IF_SH_EvtCbFuncReg("c_module", L2IF_EVT_VLAN_ADD_PORT, 7, OnVlanAddPort) == 0);
    EXPECT(L2IF_SH_EvtPublishEvent(L2IF_EVT_VLAN_ADD_PORT, &port, 0, &change) == 0);
    EXPECT(g_port == 42);
    L2IF_SH_EvtCbRegTbl_Deinit();
    return g_failures != 0;
}
