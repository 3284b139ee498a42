/**
 * @file
 * @brief Log lines under the identity "TARND_QRB".
 *
 * The library reports its failures through this function. Modules may use it too.
 *
 * @par Threads
 * Any thread may call. No state is kept between calls.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Writes one line to the system log: "[TARND_QRB][function:line] text".
 *
 * A priority of 4 or more costs one comparison: the function returns before it formats the text.
 *
 * @param[in] priority  level as for syslog(), 0 (emergency) to 7 (debug); 4 and above are discarded
 * @param[in] function  name of the reporting function; null: the line is "[TARND_QRB] text"
 * @param[in] line      any number that identifies the call site
 * @param[in] format    format as for printf(), with its arguments; must not be null
 *
 * @par After a failure
 * The line is lost, without notice, if the text has more than 511 characters, the format fails or
 * there is no memory for 512 bytes.
 */
void Tarn_QRB_Log_Printf(uint32_t priority, const char* function, uint32_t line, const char* format,
                         ...) __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif
