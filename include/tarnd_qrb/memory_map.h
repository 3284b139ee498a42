/**
 * @file
 * @brief The daemon's modules, their memory-accounting handles and their memory use.
 *
 * The memory map has an entry for each module of the daemon. The position of an entry is the module
 * id.
 *
 * The daemon calls MEM_EX_Init() once at start-up, before other threads use the map and before any
 * list (tarnd_qrb/util_list.h) gets an element. Before that, every handle is 0.
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * @par Threads
 * MEM_EX_Init() writes the map without a lock. Otherwise the map is only read: any thread may call
 * any other function.
 * @par Log
 * Nothing is logged. No function uses the database.
 */
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define MEM_EX_MODULE_COUNT 32    /**< Number of modules. */
#define MEM_EX_MODULE_FRAMEWORK 5 /**< Module id of the framework, to which lists are charged. */
#define MEM_EX_MODULE_QRB 30      /**< Module id of this library. */
#define MEM_EX_NAME_SIZE 64       /**< Size of a module name in a report in bytes, NUL included. */

/** A module. Its position in the map is its module id. */
typedef struct {
    const char* name; /**< name in the memory-accounting service; unique */
    uint16_t handle;  /**< handle of that name; 0 before MEM_EX_Init() */
} MEM_EX_MODULE_S;
static_assert(sizeof(MEM_EX_MODULE_S) == 16 && offsetof(MEM_EX_MODULE_S, handle) == 8,
              "MEM_EX_MODULE_S has another layout");

/** An entry of the usage report. */
typedef struct {
    char name[MEM_EX_NAME_SIZE]; /**< module name */
    uint64_t bytes;              /**< bytes in use: the first figure of meminfo_get() */
    uint64_t blocks;             /**< blocks in use: the second figure */
} MEM_EX_DETAILED_INFO_S;
static_assert(sizeof(MEM_EX_DETAILED_INFO_S) == 80 &&
                  offsetof(MEM_EX_DETAILED_INFO_S, bytes) == 64 &&
                  offsetof(MEM_EX_DETAILED_INFO_S, blocks) == 72,
              "MEM_EX_DETAILED_INFO_S has another layout");

/** The memory map, by module id. For reading; only MEM_EX_Init() writes it. */
extern MEM_EX_MODULE_S g_memExModuleMap[MEM_EX_MODULE_COUNT];

/**
 * Reads the handle of every module from the memory-accounting service into the map.
 *
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
void MEM_EX_Init(void);

/**
 * Returns the handle of a module.
 *
 * @param[in] module  module id
 *
 * @return the handle; 0 before MEM_EX_Init()
 * @retval 0  no module has the id
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint16_t MEM_EX_GetHandle(uint32_t module);

/**
 * Looks up a module by name.
 *
 * @param[in] name  module name, compared byte by byte
 *
 * @return the module id
 * @retval 32  (MEM_EX_MODULE_COUNT) no module has the name
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t MEM_EX_GetModule(const char* name);

/**
 * Returns the number of entries of a usage report.
 *
 * @param[out] count  number of entries: 32; null is refused
 *
 * @retval 0  the number was written
 * @retval 1  count is null
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t MEM_EX_GetDetailedInfoSize(uint64_t* count);

/**
 * Writes the usage report of all modules.
 *
 * @param[out]    entries  array of count entries; null is refused
 * @param[in,out] count    in: capacity of the array; out: 32, if the capacity is enough; null is
 *                         refused
 *
 * @retval 0  the report was written
 * @retval 1  a pointer is null
 * @retval 2  the capacity is less than 32
 * @retval 3  a name does not fit its entry
 * @retval 4  the accounting service refused the figures of a module
 *
 * @par After a failure
 * Nothing is written after 1 and 2. After 3 and 4, count is 32 and the entries before the failing
 * one are written.
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t MEM_EX_GetDetailedInfo(MEM_EX_DETAILED_INFO_S* entries, uint64_t* count);

/**
 * Writes the usage report of the first modules.
 *
 * @param[out] entries  array of count entries
 * @param[in]  count    number of modules, at most 32
 *
 * @retval 0  the report was written
 * @retval 3  a name does not fit its entry, or count is more than 32
 * @retval 4  the accounting service refused the figures of a module
 *
 * @par After a failure
 * The entries before the failing one are written, the later ones are unchanged.
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t MEM_EX_CopyDetailedInfo(MEM_EX_DETAILED_INFO_S* entries, uint32_t count);

#ifdef __cplusplus
}
#endif
