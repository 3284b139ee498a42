/*
 * Log lines under the identity "TARND_QRB".
 *
 * Result codes, in every header of this library: 0 is success, except in predicates and where a
 * comment says otherwise. Codes are unsigned 32-bit; what a failure gives is told at each function.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Writes one line to the system log: "[TARND_QRB][function:line] text".
 *
 * priority  the system log's levels, 0 emergency to 7 debug. 4 and above are dropped at the price
 *           of one comparison, so informational calls may stay in hot paths.
 * function  the reporting function's name; null gives the short form "[TARND_QRB] text".
 * line      any number that identifies the call site.
 * format    as for printf; not null.
 *
 * A text of more than 511 characters is lost, and so is one for which there is no memory; nothing
 * else happens.
 *
 * Any thread. No state is kept.
 */
void Tarn_QRB_Log_Printf(uint32_t priority, const char* function, uint32_t line, const char* format,
                         ...) __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif
