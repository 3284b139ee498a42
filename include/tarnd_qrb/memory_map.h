/*
 * The daemon's modules and their memory-accounting handles, and what each module has in use.
 *
 * MEM_EX_Init runs once at start-up, before other threads use the map and before anything is put
 * into a list (tarnd_qrb/util_list.h); until then every handle is 0, "nobody". Afterwards the map
 * is only read, from any thread. Nothing is logged. Null is checked where a comment says so.
 */
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define MEM_EX_MODULE_COUNT 32
#define MEM_EX_MODULE_FRAMEWORK 5 /* the control-plane framework; pays for lists */
#define MEM_EX_MODULE_QRB 30      /* this library */
#define MEM_EX_NAME_SIZE 64

/* A module. Its place in the map is its module id. */
typedef struct {
    const char* name; /* as the accounting service knows it; distinct */
    uint16_t handle;  /* the service's handle for that name */
} MEM_EX_MODULE_S;
static_assert(sizeof(MEM_EX_MODULE_S) == 16 && offsetof(MEM_EX_MODULE_S, handle) == 8,
              "MEM_EX_MODULE_S has another layout");

/* A module's line of the usage report. */
typedef struct {
    char name[MEM_EX_NAME_SIZE];
    uint64_t bytes;  /* in use: the first figure of meminfo_get */
    uint64_t blocks; /* in use: the second */
} MEM_EX_DETAILED_INFO_S;
static_assert(sizeof(MEM_EX_DETAILED_INFO_S) == 80 &&
                  offsetof(MEM_EX_DETAILED_INFO_S, bytes) == 64 &&
                  offsetof(MEM_EX_DETAILED_INFO_S, blocks) == 72,
              "MEM_EX_DETAILED_INFO_S has another layout");

/* By module id. Read only, but for MEM_EX_Init. */
extern MEM_EX_MODULE_S g_memExModuleMap[MEM_EX_MODULE_COUNT];

/* Asks the accounting service for every handle; again, if called again. */
void MEM_EX_Init(void);

/* The handle of a module id; 0 for an id that no module has. */
uint16_t MEM_EX_GetHandle(uint32_t module);

/* The module id of a name, matched exactly; MEM_EX_MODULE_COUNT where no module has it. */
uint32_t MEM_EX_GetModule(const char* name);

/* How many entries a report has. 0, or 1 for a null pointer. */
uint32_t MEM_EX_GetDetailedInfoSize(uint64_t* count);

/*
 * The usage report of all modules.
 *
 * entries  the caller's array.
 * count    its capacity in entries; becomes 32 where that is enough, and else stays.
 *
 * 0; 1 where either pointer is null; 2 for a capacity below 32, nothing written; or the code of
 * MEM_EX_CopyDetailedInfo.
 */
uint32_t MEM_EX_GetDetailedInfo(MEM_EX_DETAILED_INFO_S* entries, uint64_t* count);

/*
 * The usage of the first count modules, at most 32.
 *
 * 0; 3 when a name could not be copied, or there is no such module; 4 when the accounting service
 * refused a figure. Entries before the failing one are filled, later ones untouched.
 */
uint32_t MEM_EX_CopyDetailedInfo(MEM_EX_DETAILED_INFO_S* entries, uint32_t count);

#ifdef __cplusplus
}
#endif
