/*
 * The platform contract, part 4: memory and string functions that know their destination's size.
 *
 * Copies return 0, or a non-zero code when an argument is null or the result would not fit in
 * destinationSize bytes; texts need room for their terminator. A refused text copy leaves an empty
 * text, where there is a byte for it. Formatting returns the number of characters written, without
 * the terminator, or -1 when the text would not fit or the format fails. Thread-safe: they touch
 * nothing but their arguments.
 */
#pragma once

#include <stdarg.h>
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

int memcpy_s(void* destination, size_t destinationSize, const void* source, size_t count);
int memset_s(void* destination, size_t destinationSize, int value, size_t count);
int strcpy_s(char* destination, size_t destinationSize, const char* source);
/* Copies at most count characters and adds a terminator. */
int strncpy_s(char* destination, size_t destinationSize, const char* source, size_t count);
int strcat_s(char* destination, size_t destinationSize, const char* source);

int sprintf_s(char* destination, size_t destinationSize, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
int vsprintf_s(char* destination, size_t destinationSize, const char* format, va_list arguments)
    __attribute__((format(printf, 3, 0)));

#ifdef __cplusplus
}
#endif
