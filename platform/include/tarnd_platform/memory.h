/*
 * The platform contract, part 5: memory charged to modules.
 *
 * Every allocation is charged to a module's handle, so that use can be reported for each module.
 * Thread-safe.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The handle of a module name; the same name gives the same handle. Its low 16 bits are used. */
uint32_t mem_handle_get(const char* name);

/* size bytes charged to handle, aligned for any type; null when there is no memory. file and line
   tell where the memory was asked for; the text is kept by address. */
void* malloc_ex(uint16_t handle, const char* file, uint32_t line, size_t size);

/* Gives back memory of malloc_ex; null does nothing. */
void free_ex(uint16_t handle, void* memory);

/* Two usage figures of a module: with selector 5, the bytes and the blocks in use. 0 on success. */
uint32_t meminfo_get(uint32_t selector, uint16_t handle, uint64_t* first, uint64_t* second);

#ifdef __cplusplus
}
#endif
