// SPDX-License-Identifier: Apache-2.0
// What PackageInfo tells, computed at each call from the manifest that was read when the object was made.
#pragma once

#include "CaskParser.h"

#include <QtCore/QList>
#include <QtCore/QLocale>
#include <QtCore/QVariantList>

namespace kelp {

class PackageInfo;

class PackageInfoPrivate
{
public:
    explicit PackageInfoPrivate(PackageInfo *q);

    QString installId() const;
    QString signingHash() const;
    QString versionSigningHash() const;
    QString authorSigningHash() const;
    QString compatibilityVersion() const;
    QString name() const;
    QString version() const;
    QString author() const;
    QString systemDependency() const;
    QString description() const;
    QList<QLocale> locales() const;
    QVariantList localesQml() const;

    PackageInfo *const q;

private:
    CaskParser _manifest;
};

} // namespace kelp
