// A module that reports ports that join and leave VLANs, with a small daemon that starts the
// library and a simulated device that changes.
#include <cinttypes>
#include <cstdio>
#include <semaphore>

#include <standin/store.h>
#include <tarnd_qrb/event_publish.h>
#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/subscription.h>

namespace {

// The module.

constexpr char MODULE_NAME[] = "watch";
constexpr uint16_t PRIORITY = 100;

std::counting_semaphore seen(0);

void Report(const QRB_PORT_S& port, const char* what)
{
    const uint32_t ifIndex = port.if_index;
    char name[QRB_IF_NAME_SIZE] = "?";
    IF_GetIfNameByIndex(ifIndex, name);  // a callback may query
    std::printf("%s (%" PRIu32 ") %s\n", name, ifIndex, what);
    seen.release();
}

// Runs on the library's listener thread. Must return quickly, because all later changes wait for
// it.
uint32_t OnVlanAddPort(const void* data, uint32_t, void*, uint64_t*)
{
    Report(*static_cast<const QRB_PORT_S*>(data), "joined a VLAN");
    return 0;
}

uint32_t OnVlanDelPort(const void* data, uint32_t, void*, uint64_t*)
{
    Report(*static_cast<const QRB_PORT_S*>(data), "left a VLAN");
    return 0;
}

bool RegisterModule()
{
    return L2IF_SH_EvtCbFuncReg(MODULE_NAME, L2IF_EVT_VLAN_ADD_PORT, PRIORITY, OnVlanAddPort) ==
               0 &&
           L2IF_SH_EvtCbFuncReg(MODULE_NAME, L2IF_EVT_VLAN_DEL_PORT, PRIORITY, OnVlanDelPort) == 0;
}

// The device.

void Write(const standin::Row& row)
{
    standin::Transaction transaction;
    transaction.Replace(row);
    transaction.Commit();
}

standin::Row Port()
{
    standin::Row port("port");
    port.Set("if_index", 7).Set("switch_port", 1);
    return port;
}

}  // namespace

// The daemon.

int main()
{
    Write(standin::Row("if_base").Set("if_index", 7).Set("if_name", "Ethernet0/0/7"));
    Write(Port());

    // Modules register before the start: earlier changes are not reported.
    MEM_EX_Init();
    if (!RegisterModule() || BDS_InitStart() != 0) {
        std::fputs("the library did not start; see the system log\n", stderr);
        return 1;
    }

    Write(Port().AddToSet("vlan_bitmap_1", 10, 10));
    seen.acquire();
    Write(Port());
    seen.acquire();

    // The listener thread ends within 2 seconds.
    __atomic_store_n(&g_epollDbListenerThreadExit, 1, __ATOMIC_RELEASE);
    pthread_join(g_epollDbListenerThreadId, nullptr);
    return 0;
}
