/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The system page: what the system tells every process about the machine, in one read-only block of memory.
 * It starts with a header; its tables lie behind the header, each found by its offset in bytes from the start
 * of the page.
 *
 *     const struct syspage *page = _syspage_ptr;
 *     const char *bytes = (const char *)page;
 *     const struct syspage_address_range *ranges =
 *         (const struct syspage_address_range *)(bytes + page->address_space.offset);
 *     size_t count = page->address_space.size / sizeof *ranges;
 *     const char *name_of_first = count > 0 ? bytes + page->strings.offset + ranges[0].name : "";
 *
 * The range named "memory" is the whole extent of the physical memory. Those named "ram" lie in it and add up
 * to what the process can use: the machine's memory, or less where the process's control group, or one that
 * it lies in, is limited to less (memory.max, or memory.limit_in_bytes). Where the system does not tell, there are no ranges. Others may be added
 * under other names: skip those.
 *
 * The addresses serve to tell sizes. They are none that the machine uses, which processes do not get to know.
 *
 * The page is made when the library is loaded and does not change afterwards, not even when a control group's
 * limit does. Until then, as in constructors that run before those of libkelp-platform, it is there without
 * ranges.
 *
 * Threads: may be read from any thread.
 */
#ifndef SYS_SYSPAGE_H
#define SYS_SYSPAGE_H

#include <stdint.h>

#include <platform/export.h>

PLATFORM_BEGIN_DECLS

/* Where a table is. */
struct syspage_table {
    uint16_t offset; /* bytes from the start of the page */
    uint16_t size;   /* bytes */
};

/* The header: 64 bytes. */
struct syspage {
    uint16_t size;       /* of the header, in bytes */
    uint16_t total_size; /* of the page with its tables, in bytes */
    uint16_t reserved0[4];
    struct syspage_table address_space; /* struct syspage_address_range, one after the other */
    uint16_t reserved1[16];
    struct syspage_table strings; /* texts, each ended by a zero byte */
    uint16_t reserved2[6];
};

/* A range of physical addresses: 32 bytes. It holds end - start + 1 bytes. */
struct syspage_address_range {
    uint64_t start; /* first address */
    uint64_t end;   /* last address, which belongs to the range: no range is empty */
    uint16_t reserved0;
    uint16_t name; /* offset of its text from the start of the strings, in bytes */
    uint32_t reserved1[3];
};

/* The page. Never NULL; not the caller's to set. */
PLATFORM_EXPORT extern const struct syspage *_syspage_ptr;

PLATFORM_END_DECLS

#endif
