// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_EXPORT_H
#define KELP_EXPORT_H

#include <QtCore/QtGlobal>

/*! In front of every public class: visible outside libkelp, type information included. */
#if defined(KELP_BUILDING)
#define KELP_EXPORT Q_DECL_EXPORT
#else
#define KELP_EXPORT Q_DECL_IMPORT
#endif

#endif
