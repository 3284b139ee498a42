/**
 * @file
 * @brief The platform contract: bounded memory and text functions.
 *
 * Every function takes the size of its destination and refuses a result that does not fit.
 *
 * @par Null pointers
 * A null pointer is refused.
 * @par Threads
 * Any thread may call. The functions use nothing but their arguments.
 */
#pragma once

#include <stdarg.h>
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Copies bytes.
 *
 * @param[out] destination      destinationSize bytes; does not overlap source
 * @param[in]  destinationSize  size of destination in bytes
 * @param[in]  source           count bytes
 * @param[in]  count            number of bytes to copy
 *
 * @retval 0      the bytes were copied
 * @retval other  a pointer is null, or count is more than destinationSize
 */
int memcpy_s(void* destination, size_t destinationSize, const void* source, size_t count);

/**
 * Sets bytes to a value.
 *
 * @param[out] destination      destinationSize bytes
 * @param[in]  destinationSize  size of destination in bytes
 * @param[in]  value            value, of which the low 8 bits are used
 * @param[in]  count            number of bytes to set
 *
 * @retval 0      the bytes were set
 * @retval other  destination is null, or count is more than destinationSize
 */
int memset_s(void* destination, size_t destinationSize, int value, size_t count);

/**
 * Copies a text.
 *
 * @param[out] destination      destinationSize bytes
 * @param[in]  destinationSize  size of destination in bytes
 * @param[in]  source           NUL-terminated text
 *
 * @retval 0      the text was copied with its NUL
 * @retval other  a pointer is null, or the text with its NUL does not fit
 *
 * @par After a failure
 * destination is an empty text, if it is not null and has at least 1 byte.
 */
int strcpy_s(char* destination, size_t destinationSize, const char* source);

/**
 * Copies the first characters of a text.
 *
 * @param[out] destination      destinationSize bytes
 * @param[in]  destinationSize  size of destination in bytes
 * @param[in]  source           text, read up to its NUL or to count characters
 * @param[in]  count            maximum number of characters to copy
 *
 * @retval 0      the characters were copied and a NUL added
 * @retval other  a pointer is null, or the characters with a NUL do not fit
 *
 * @par After a failure
 * destination is an empty text, if it is not null and has at least 1 byte.
 */
int strncpy_s(char* destination, size_t destinationSize, const char* source, size_t count);

/**
 * Appends a text to a text.
 *
 * @param[in,out] destination      NUL-terminated text in destinationSize bytes
 * @param[in]     destinationSize  size of destination in bytes
 * @param[in]     source           NUL-terminated text
 *
 * @retval 0      the text was appended
 * @retval other  a pointer is null, or the result with its NUL does not fit
 *
 * @par After a failure
 * destination is an empty text, if it is not null and has at least 1 byte.
 */
int strcat_s(char* destination, size_t destinationSize, const char* source);

/**
 * Formats a text as printf() does.
 *
 * @param[out] destination      destinationSize bytes
 * @param[in]  destinationSize  size of destination in bytes
 * @param[in]  format           format, with its arguments
 *
 * @return the number of characters written, without the NUL
 * @retval -1  a pointer is null, the text with its NUL does not fit, or the format failed
 */
int sprintf_s(char* destination, size_t destinationSize, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

/**
 * Formats a text as vprintf() does.
 *
 * @param[out] destination      destinationSize bytes
 * @param[in]  destinationSize  size of destination in bytes
 * @param[in]  format           format
 * @param[in]  arguments        arguments of the format
 *
 * @return the number of characters written, without the NUL
 * @retval -1  a pointer is null, the text with its NUL does not fit, or the format failed
 */
int vsprintf_s(char* destination, size_t destinationSize, const char* format, va_list arguments)
    __attribute__((format(printf, 3, 0)));

#ifdef __cplusplus
}
#endif
