// SPDX-License-Identifier: Apache-2.0
// See kelp/PackageInfo.h. All the work is the private object's.

#include <kelp/PackageInfo.h>

#include "PackageInfoPrivate.h"

namespace kelp {

PackageInfo::PackageInfo(QObject *parent) : QObject(parent), d(new PackageInfoPrivate(this)) {}

PackageInfo::~PackageInfo()
{
    delete d;
}

QString PackageInfo::installId() const
{
    return d->installId();
}

QString PackageInfo::signingHash() const
{
    return d->signingHash();
}

QString PackageInfo::versionSigningHash() const
{
    return d->versionSigningHash();
}

QString PackageInfo::authorSigningHash() const
{
    return d->authorSigningHash();
}

QString PackageInfo::compatibilityVersion() const
{
    return d->compatibilityVersion();
}

QString PackageInfo::name() const
{
    return d->name();
}

QString PackageInfo::version() const
{
    return d->version();
}

QString PackageInfo::author() const
{
    return d->author();
}

QString PackageInfo::systemDependency() const
{
    return d->systemDependency();
}

QString PackageInfo::description() const
{
    return d->description();
}

QList<QLocale> PackageInfo::locales() const
{
    return d->locales();
}

QVariantList PackageInfo::localesQml() const
{
    return d->localesQml();
}

} // namespace kelp
