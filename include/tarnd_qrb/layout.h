/*
 * Layouts that others rely on, pinned where they are declared.
 *
 * QRB_RECORD_SIZE and QRB_FIELD_AT fail the compilation when a record, or one of its members, isn't
 * where the wire format or another module expects it. Sizes, offsets and widths are in bytes.
 */
#pragma once

#include <assert.h>
#include <stddef.h>

#define QRB_PACKED __attribute__((packed))

#ifdef __cplusplus
#define QRB_WIDTH_OF(record, field) sizeof(record::field)
#else
#define QRB_WIDTH_OF(record, field) sizeof(((record*)0)->field)
#endif

#define QRB_RECORD_SIZE(record, size) \
    static_assert(sizeof(record) == (size), #record " has the wrong size")
#define QRB_FIELD_AT(record, field, offset, width)                                               \
    static_assert(offsetof(record, field) == (offset) && QRB_WIDTH_OF(record, field) == (width), \
                  #record "." #field " is out of its place")
