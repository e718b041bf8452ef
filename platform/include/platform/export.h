/* SPDX-License-Identifier: Apache-2.0 */
/* What every C interface of the platform needs to declare its functions. */
#ifndef PLATFORM_EXPORT_H
#define PLATFORM_EXPORT_H

#ifdef __cplusplus
#define PLATFORM_BEGIN_DECLS extern "C" {
#define PLATFORM_END_DECLS }
#else
#define PLATFORM_BEGIN_DECLS
#define PLATFORM_END_DECLS
#endif

/* In front of every function: visible outside libkelp-platform, whatever the visibility of the rest. */
#define PLATFORM_EXPORT __attribute__((visibility("default")))

#endif
