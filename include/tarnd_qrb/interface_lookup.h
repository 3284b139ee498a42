/*
 * Between interface index, full name and short name, answered from "if_base".
 *
 * Several functions do the same job under the result conventions of different callers. Names are
 * matched exactly, case included. Name buffers hold 64 bytes (QRB_IF_NAME_SIZE) unless a comment
 * says otherwise. Every function runs on any thread and keeps nothing between calls. Failures are
 * logged unless a comment calls them silent. Null is checked where a comment says so.
 */
#pragma once

#include <stdint.h>

#include <tarnd_platform/orm.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What IF_CmpIfBaseRecord compares a record with. */
typedef struct {
    const char* name;
    uint8_t selector; /* not 0: if_name; 0: simple_name */
} IF_NAME_KEY_S;

/* The full name (if_name) of an interface. 0, or 0xFFFFFFFF: silently when the record can't be
 * read. */
uint32_t IF_INTF_GetIfNameByIfIndex(char* output, uint32_t ifIndex);

/* The full name (if_name) of an interface. 0, or 1. */
uint32_t IF_GetIfNameByIndex(uint32_t ifIndex, char* output);

/* The full name (if_name) of an interface. 0, or 1; a null output is refused with 1. */
uint32_t BDS_IfnetGetIfNameByIfIndex(uint32_t ifIndex, char* output);

/* Whether an interface has a record: 1 yes, 0 no (silent). A database that fails answers 1. */
uint32_t BDS_IfnetIsIfExist(uint32_t ifIndex);

/* The index (if_index) of a full name, by a scan until the first match. The index, or 0xFFFFFFFF:
   silently when no record has the name. */
uint32_t IF_INTF_GetIfByFullName(const char* fullName);

/*
 * The step of IF_INTF_GetIfByFullName's scan: compares the session's current record with a key.
 *
 * output  receives the record (387 bytes, QRB_IF_BASE_S) when it matches.
 * size    its capacity in bytes.
 *
 * 1 when the name matches and the record was copied, else 0.
 */
uint32_t IF_CmpIfBaseRecord(ORM_SESSION session, const IF_NAME_KEY_S* key, void* output,
                            int32_t size);

/* The index (field 0) of a full name, by one keyed read on the local key. The index, or 0xFFFFFFFF:
   silently from the key on. A null name is refused with 0xFFFFFFFF. */
uint32_t IF_INTF_GetIfIndexByFullName(const char* fullName);

/* The index (fields 2 and 0) of a full name, by a scan with field reads. 0, or 1: silently when no
   record has the name. Null is refused with 1. ifIndex is written when the name is met, even where
   a later step fails. */
uint32_t BDS_Ifname2IfGetIndexByname(const char* name, uint32_t* ifIndex);

/* The short name (simple_name) of a full name, by the local key. 0, or 1; null is refused with 1.
 */
uint32_t IF_INTF_GetSimpleName(const char* fullName, char* output);

/* Copies a name that is already full. output holds the input and its NUL, however long. 0, or
   0xFFFFFFFF. No database. */
uint32_t IF_INTF_GetFullNameByInput(const char* input, char* output);

/* Copies a name of at most 63 characters. 0, or 1 (silent). No database. */
uint32_t IF_INTF_GetNameByIfName(char* output, const char* name);

/*
 * The numeric tail of a name: its last characters out of ".", "/", "0" to "9" and ":".
 *
 * size  capacity of output in bytes; it must be more than the tail's length plus one.
 *
 * The number of characters in the tail, which output then holds with a NUL; 0 when there is none,
 * when fewer than two other characters stand before it, or when it does not fit. Null and a size of
 * 0 give 0 and are logged. No database.
 */
uint32_t BDS_IfnetGetNumStrFromName(const char* name, char* output, uint32_t size);

#ifdef __cplusplus
}
#endif
