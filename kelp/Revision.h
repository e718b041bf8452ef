// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_REVISION_H
#define KELP_REVISION_H

#include <QtCore/QObject>

/*!
 * In front of a member that was added in a later revision of its class: the number that QMetaMethod::revision()
 * reports.
 *
 * Qt 6 takes a number alone for the minor part of a version without a major one, and reports it with a mark of that.
 */
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#define KELP_REVISION(number) Q_REVISION(0, number)
#else
#define KELP_REVISION(number) Q_REVISION(number)
#endif

#endif
