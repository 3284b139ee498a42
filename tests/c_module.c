/*
 * A module of the daemon, in C: builds a list, registers a callback of each kind, publishes events.
 * Prints what went wrong; the exit status tells whether anything did.
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

static uint32_t OnVlanAddPort(const void* data, uint32_t value, void* argument, uint64_t* word)
{
    const QRB_PORT_S*        port   = data;
    const QRB_VLAN_CHANGE_S* change = argument;
    EXPECT(port->if_index == change->ifIndex && change->bitmap == QRB_VLAN_BITMAP_2 && value == 0);
    ++*word;
    return 0;
}

static uint32_t OnPhysicalUp(uint32_t subId, uint32_t flag, uint32_t ifIndex, void* first,
                             void* second)
{
    EXPECT(subId == IF_SUB_EVT_PHY_UP && flag == IF_EVT_FLAG_UP && first == NULL && second == NULL);
    return ifIndex;
}

static uint32_t g_lastCreated = 0;

static uint32_t OnNotification(uint32_t ulIfIndex, uint32_t ulCmd, uint32_t a, uint32_t b)
{
    EXPECT(ulCmd == IF_NOTIFY_CREATED && a == 0 && b == 0);
    g_lastCreated = ulIfIndex;
    return 0;
}

int main(void)
{
    const uint32_t    values[] = {3, 9, 4};
    const QRB_PORT_S  port     = {.if_index = 42};
    QRB_VLAN_CHANGE_S change   = {.bitmap = QRB_VLAN_BITMAP_2, .portCount = 1, .ifIndex = 42};
    UTIL_LIST_NODE_S* node     = NULL;
    uint64_t          count    = 0;
    MEM_EX_Init();
    EXPECT(Largest(values, 3) == 9 && Largest(values, 0) == 0);

    EXPECT(L2IF_SH_EvtCbFuncReg("c_module", L2IF_EVT_VLAN_ADD_PORT, 7, OnVlanAddPort) == 0);
    EXPECT(L2IF_SH_EvtPublishEvent(L2IF_EVT_VLAN_ADD_PORT, &port, 0, &change) == 0);
    EXPECT(g_qrbL2IFEventCallbacks[L2IF_EVT_VLAN_ADD_PORT].count == 1);
    L2IF_SH_EvtCbRegTbl_Deinit();

    EXPECT(IF_EvtRegCbf(OnPhysicalUp, 0, 7, IF_EVT_WITH_SUB_EVENT, IF_EVT_STATE,
                        IF_SUB_EVT_PHY_UP) == 0);
    EXPECT(IF_SH_EvtPublishEventGetEventNode(IF_EVT_STATE, IF_SUB_EVT_PHY_UP, &node, &count) == 0);
    EXPECT(count == 1);
    for (; count > 0; count--, node = node->next) {
        const IF_EVT_CB_S* entry = UTIL_LIST_Data(node);
        EXPECT(entry->pfCallback(entry->subId, IF_EVT_FLAG_UP, 42, NULL, NULL) == 42);
    }
    IF_EvtDeInit();

    EXPECT(IF_RegNotifyFunc(1, OnNotification) == 0);
    EXPECT(IF_NotifyAll(42, IF_NOTIFY_CREATED, 0, 0) == 0 && g_lastCreated == 42);
    EXPECT(IF_UnRegNotifyFunc(1, OnNotification) == 0);
    return g_failures != 0;
}
