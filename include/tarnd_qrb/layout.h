/**
 * @file
 * @brief Compile-time checks of record layouts.
 *
 * The sizes and offsets of exported records are part of the interface. QRB_RECORD_SIZE and
 * QRB_FIELD_AT stop the compilation if a record has another layout. Sizes, offsets and widths are
 * in bytes.
 */
#pragma once

#include <assert.h>
#include <stddef.h>

/** Attribute of a record without padding. */
#define QRB_PACKED __attribute__((packed))

/** Width of a member. */
#ifdef __cplusplus
#define QRB_WIDTH_OF(record, field) sizeof(record::field)
#else
#define QRB_WIDTH_OF(record, field) sizeof(((record*)0)->field)
#endif

/** Checks the size of a record. */
#define QRB_RECORD_SIZE(record, size) \
    static_assert(sizeof(record) == (size), #record " has the wrong size")
/** Checks the offset and width of a member. */
#define QRB_FIELD_AT(record, field, offset, width)                                               \
    static_assert(offsetof(record, field) == (offset) && QRB_WIDTH_OF(record, field) == (width), \
                  #record "." #field " is out of its place")
