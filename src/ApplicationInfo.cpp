// SPDX-License-Identifier: Apache-2.0
// See kelp/ApplicationInfo.h. All the work is the private object's.

#include <kelp/ApplicationInfo.h>

#include "ApplicationInfoPrivate.h"

namespace kelp {

ApplicationInfo::ApplicationInfo(QObject *parent) : QObject(parent), d(new ApplicationInfoPrivate(this)) {}

ApplicationInfo::~ApplicationInfo()
{
    delete d;
}

QString ApplicationInfo::signingHash() const
{
    return d->signingHash();
}

QString ApplicationInfo::versionSigningHash() const
{
    return d->versionSigningHash();
}

QString ApplicationInfo::title() const
{
    return d->title();
}

QString ApplicationInfo::version() const
{
    return d->version();
}

QString ApplicationInfo::description() const
{
    return d->description();
}

} // namespace kelp
