/**
 * @file
 * @brief Interface index, full name and short name of interfaces.
 *
 * Source: table "if_base". Several functions do the same under different result conventions.
 *
 * Names are compared byte by byte, case included. A name has at most 63 bytes. If two interfaces
 * have the same name, a scan finds the first one in the database's order.
 *
 * @par Null pointers
 * Pointers must not be null: they are not checked, except where a parameter's description says so.
 * A refused null pointer is a failure and is logged as "Null value provided", unless the
 * description says otherwise.
 * @par Threads
 * Any thread may call any function. No state is kept between calls.
 * @par Log
 * Priority 3. A failing step is logged with the database's code, unless a function's description
 * says otherwise.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The name with which IF_CmpIfBaseRecord() compares a record. */
typedef struct {
    const char* name; /**< name to compare with */
    uint8_t selector; /**< 0: compare with simple_name; other: compare with if_name */
} IF_NAME_KEY_S;

/**
 * Reads the full name of an interface.
 *
 * @param[out] output   QRB_IF_NAME_SIZE (64) bytes; null is refused by the copy
 * @param[in]  ifIndex  interface index
 *
 * @retval 0           the name was written
 * @retval 0xFFFFFFFF  the record cannot be read, or the name does not fit
 *
 * @par After a failure
 * output is unchanged; empty if the name does not fit.
 * @par Log
 * A failing copy. A record that cannot be read is not logged.
 * @par Source
 * "if_base", if_name, by if_index.
 */
uint32_t IF_INTF_GetIfNameByIfIndex(char* output, uint32_t ifIndex);

/**
 * Reads the full name of an interface.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] output   QRB_IF_NAME_SIZE (64) bytes; null is refused by the copy
 *
 * @retval 0  the name was written
 * @retval 1  the record cannot be read, or the name does not fit
 *
 * @par After a failure
 * output is unchanged; empty if the name does not fit.
 * @par Log
 * A record that is missing or cannot be read; a failing copy.
 * @par Source
 * "if_base", if_name, by if_index.
 */
uint32_t IF_GetIfNameByIndex(uint32_t ifIndex, char* output);

/**
 * Reads the full name of an interface.
 *
 * @param[in]  ifIndex  interface index
 * @param[out] output   QRB_IF_NAME_SIZE (64) bytes; null is refused
 *
 * @retval 0  the name was written
 * @retval 1  output is null, the record cannot be read, or the name does not fit
 *
 * @par After a failure
 * output is unchanged.
 * @par Log
 * A null output; a record that is missing or cannot be read; a failing copy, without its code.
 * @par Source
 * "if_base", if_name, by if_index.
 */
uint32_t BDS_IfnetGetIfNameByIfIndex(uint32_t ifIndex, char* output);

/**
 * Checks whether an interface has a record.
 *
 * @param[in] ifIndex  interface index
 *
 * @retval 1  the interface has a record, or the database failed
 * @retval 0  no record
 *
 * @par Log
 * A database failure. A missing record is not logged.
 * @par Source
 * "if_base", by if_index.
 */
uint32_t BDS_IfnetIsIfExist(uint32_t ifIndex);

/**
 * Looks up the interface index of a full name, by a scan of the table.
 *
 * IF_INTF_GetIfIndexByFullName() does the same with one keyed read.
 *
 * @param[in] fullName  full name; must not be null
 *
 * @return the interface index
 * @retval 0xFFFFFFFF  no interface has the name, or a step failed
 *
 * @par Log
 * Each failing step, under the name IF_ScanTblByCond; a record that cannot be read or copied, under
 * the name IF_CmpIfBaseRecord, after which the scan continues. The line of a failing open has
 * neither the prefix "[TARND_QRB]" nor a function name. A name that is not found, and a scan or
 * session that fails to end, are not logged.
 * @par Source
 * "if_base", if_index, of the first record with this if_name.
 */
uint32_t IF_INTF_GetIfByFullName(const char* fullName);

/**
 * Compares the name of the session's current "if_base" record with a name. The step of
 * IF_INTF_GetIfByFullName().
 *
 * @param[in]  session  session positioned on a record of "if_base"
 * @param[in]  key      the name, and which name of the record it is compared with
 * @param[out] output   receives the record (QRB_IF_BASE_S, 387 bytes) if the name matches; null is
 *                      refused by the copy
 * @param[in]  size     capacity of output in bytes
 *
 * @retval 1  the name matches and the record was copied
 * @retval 0  the name does not match, the record cannot be read, or it does not fit
 *
 * @par After a failure
 * output is unchanged.
 * @par Log
 * A record that cannot be read, with the code; a failing copy, without it.
 * @par Source
 * "if_base", if_name or simple_name.
 */
uint32_t IF_CmpIfBaseRecord(ORM_SESSION session, const IF_NAME_KEY_S* key, void* output,
                            int32_t size);

/**
 * Looks up the interface index of a full name, by one keyed read.
 *
 * @param[in] fullName  full name; null is refused
 *
 * @return the interface index
 * @retval 0xFFFFFFFF  fullName is null or too long, no interface has the name, or a step failed
 *
 * @par Log
 * A null name; what QRB_CreatDbSession() logs. Other failures, including a missing record, are not
 * logged.
 * @par Source
 * "if_base", field 0, by the local key.
 */
uint32_t IF_INTF_GetIfIndexByFullName(const char* fullName);

/**
 * Looks up the interface index of a full name, by a scan of the table.
 *
 * @param[in]  name     full name; null is refused
 * @param[out] ifIndex  interface index; null is refused
 *
 * @retval 0  the index was written
 * @retval 1  a pointer is null, no interface has the name, or a step failed
 *
 * @par After a failure
 * ifIndex is unchanged. If only ending the scan or closing the session failed, it is written.
 * @par Log
 * A null pointer; each failing step. A name that is not found is not logged.
 * @par Source
 * "if_base", field 0, of the first record with this name in field 2.
 */
uint32_t BDS_Ifname2IfGetIndexByname(const char* name, uint32_t* ifIndex);

/**
 * Reads the short name of an interface, by its full name.
 *
 * @param[in]  fullName  full name; null is refused
 * @param[out] output    short name, QRB_IF_NAME_SIZE (64) bytes; null is refused
 *
 * @retval 0  the name was written
 * @retval 1  a pointer is null, fullName is too long, no interface has it, or a step failed
 *
 * @par After a failure
 * output is unchanged; empty if the short name does not fit.
 * @par Log
 * A null pointer; each failing step, including a missing record; a failing copy, without its code.
 * A failing close is not logged and does not change the result.
 * @par Source
 * "if_base", simple_name, by the local key.
 */
uint32_t IF_INTF_GetSimpleName(const char* fullName, char* output);

/**
 * Copies a name that is already a full name.
 *
 * @param[in]  input   name of any length; must not be null
 * @param[out] output  at least the length of input plus 1 bytes; null is refused by the copy
 *
 * @retval 0           the name was copied
 * @retval 0xFFFFFFFF  the copy failed
 *
 * @par After a failure
 * As the failing copy leaves it: empty, or unchanged.
 * @par Log
 * A failing copy.
 * @par Source
 * No database.
 */
uint32_t IF_INTF_GetFullNameByInput(const char* input, char* output);

/**
 * Copies a name of at most 63 bytes.
 *
 * @param[out] output  QRB_IF_NAME_SIZE (64) bytes; null is refused by the copy
 * @param[in]  name    name; null is refused by the copy
 *
 * @retval 0  the name was copied
 * @retval 1  a pointer is null, or the name does not fit
 *
 * @par After a failure
 * As the failing copy leaves it: empty, or unchanged.
 * @par Log
 * Nothing is logged.
 * @par Source
 * No database.
 */
uint32_t IF_INTF_GetNameByIfName(char* output, const char* name);

/**
 * Copies the numeric tail of a name: the longest run of ".", "/", "0" to "9" and ":" at its end.
 *
 * "Ethernet0/0/1" has the tail "0/0/1".
 *
 * @param[in]  name    name; null is refused
 * @param[out] output  the tail and a NUL; null is refused
 * @param[in]  size    capacity of output in bytes, at least the length of the tail plus 2; 0 is
 *                     refused
 *
 * @return the number of characters in the tail; also if the copy failed
 * @retval 0  an argument is refused, the name has no tail, fewer than two characters precede it, or
 *            it does not fit
 *
 * @par After a failure
 * output is unchanged.
 * @par Log
 * A refused argument, as "Null value provided"; a failing copy.
 * @par Source
 * No database.
 */
uint32_t BDS_IfnetGetNumStrFromName(const char* name, char* output, uint32_t size);

#ifdef __cplusplus
}
#endif
