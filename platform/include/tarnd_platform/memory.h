/**
 * @file
 * @brief The platform contract: memory that is charged to a module.
 *
 * Every block is charged to the handle of a module, so that the memory use of each module can be
 * reported. A handle of 0 is none: the library uses it before MEM_EX_Init().
 *
 * @par Threads
 * Any thread may call, several at once.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns the handle of a module name. The same name gives the same handle.
 *
 * @param[in] name  module name
 *
 * @return the handle; the library uses its low 16 bits
 */
uint32_t mem_handle_get(const char* name);

/**
 * Allocates memory that is charged to a module.
 *
 * @param[in] handle  handle of the module
 * @param[in] file    source file of the call, NUL-terminated; the address stays valid and is kept
 * @param[in] line    line of the call
 * @param[in] size    number of bytes
 *
 * @return the memory, aligned for any type
 * @retval null  no memory
 */
void* malloc_ex(uint16_t handle, const char* file, uint32_t line, size_t size);

/**
 * Frees memory of malloc_ex().
 *
 * @param[in] handle  handle with which it was allocated, or the module's handle after MEM_EX_Init()
 * @param[in] memory  the memory; null does nothing
 */
void free_ex(uint16_t handle, void* memory);

/**
 * Returns two figures of a module's memory use.
 *
 * @param[in]  selector  5: bytes and blocks in use
 * @param[in]  handle    handle of the module
 * @param[out] first     bytes in use
 * @param[out] second    blocks in use
 *
 * @retval 0      the figures were written
 * @retval other  refused
 */
uint32_t meminfo_get(uint32_t selector, uint16_t handle, uint64_t* first, uint64_t* second);

#ifdef __cplusplus
}
#endif
