// Table of the daemon's modules with their memory-accounting handles, and usage reports.
#include <cstring>

#include <tarnd_platform/bounded.h>
#include <tarnd_platform/memory.h>
#include <tarnd_qrb/memory_map.h>

namespace {

constexpr uint32_t SELECTOR_IN_USE = 5;  // meminfo_get: bytes and blocks in use

enum REPORT : uint32_t { REPORTED, NO_POINTER, TOO_SMALL, NO_NAME, NO_FIGURES };

}  // namespace

// clang-format off
constinit MEM_EX_MODULE_S g_memExModuleMap[] = {
    /*  0 */ {"ACL", 0}, {"NTP", 0}, {"ARP", 0}, {"ND", 0}, {"DNS", 0},
    /*  5 */ {"FRAMEWORK", 0}, {"NAT", 0}, {"QOS", 0}, {"IFM", 0}, {"ADDRESS", 0},
    /* 10 */ {"VLAN", 0}, {"L2IF", 0}, {"TRUNK", 0}, {"ROUTE", 0}, {"STATIC_ROUTE", 0},
    /* 15 */ {"DIRECT_ROUTE", 0}, {"FIB", 0}, {"DHCP", 0}, {"STP", 0}, {"LLDP", 0},
    /* 20 */ {"MULTICAST", 0}, {"TUNNEL", 0}, {"AAA", 0}, {"SYSLOG", 0}, {"DIAGNOSIS", 0},
    /* 25 */ {"CAPTURE", 0}, {"AGENT", 0}, {"CLI", 0}, {"MAIN", 0}, {"DATABASE", 0},
    /* 30 */ {"QRB", 0}, {"PLATFORM", 0},
};
// clang-format on
static_assert(sizeof(g_memExModuleMap) / sizeof(g_memExModuleMap[0]) == MEM_EX_MODULE_COUNT);

void MEM_EX_Init(void)
{
    for (MEM_EX_MODULE_S& module : g_memExModuleMap) {
        module.handle = static_cast<uint16_t>(mem_handle_get(module.name));
    }
}

uint16_t MEM_EX_GetHandle(uint32_t module)
{
    return module < MEM_EX_MODULE_COUNT ? g_memExModuleMap[module].handle : 0;
}

uint32_t MEM_EX_GetModule(const char* name)
{
    uint32_t module = 0;
    while (module < MEM_EX_MODULE_COUNT && strcmp(g_memExModuleMap[module].name, name) != 0) {
        ++module;
    }
    return module;
}

uint32_t MEM_EX_GetDetailedInfoSize(uint64_t* count)
{
    if (count == nullptr) {
        return NO_POINTER;
    }
    *count = MEM_EX_MODULE_COUNT;
    return REPORTED;
}

uint32_t MEM_EX_GetDetailedInfo(MEM_EX_DETAILED_INFO_S* entries, uint64_t* count)
{
    if (entries == nullptr || count == nullptr) {
        return NO_POINTER;
    }
    if (*count < MEM_EX_MODULE_COUNT) {
        return TOO_SMALL;
    }
    *count = MEM_EX_MODULE_COUNT;
    return MEM_EX_CopyDetailedInfo(entries, MEM_EX_MODULE_COUNT);
}

uint32_t MEM_EX_CopyDetailedInfo(MEM_EX_DETAILED_INFO_S* entries, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i) {
        if (i >= MEM_EX_MODULE_COUNT ||
            strcpy_s(entries[i].name, sizeof(entries[i].name), g_memExModuleMap[i].name) != 0) {
            return NO_NAME;
        }
        if (meminfo_get(SELECTOR_IN_USE, g_memExModuleMap[i].handle, &entries[i].bytes,
                        &entries[i].blocks) != 0) {
            return NO_FIGURES;
        }
    }
    return REPORTED;
}
