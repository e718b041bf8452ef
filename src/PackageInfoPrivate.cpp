// SPDX-License-Identifier: Apache-2.0
// See PackageInfoPrivate.h.

#include "PackageInfoPrivate.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

namespace kelp {

// White space of any script counts.
static const QRegularExpression s_localeSeparator(QStringLiteral("\\s*,\\s*"),
                                                  QRegularExpression::UseUnicodePropertiesOption);

PackageInfoPrivate::PackageInfoPrivate(PackageInfo *q) : q(q) {}

QString PackageInfoPrivate::installId() const
{
    const QString id = _manifest.attributeValue(QStringLiteral("Package-Id"));
    if (name().isEmpty() || id.isEmpty()) {
        return {};
    }
    return CaskParser::changeEncoding(name() + QLatin1Char('.') + id);
}

QString PackageInfoPrivate::signingHash() const
{
    return CaskParser::changeEncoding(_manifest.attributeValue(QStringLiteral("Package-Id")));
}

QString PackageInfoPrivate::versionSigningHash() const
{
    return CaskParser::changeEncoding(_manifest.attributeValue(QStringLiteral("Package-Version-Id")));
}

QString PackageInfoPrivate::authorSigningHash() const
{
    return CaskParser::changeEncoding(_manifest.attributeValue(QStringLiteral("Package-Author-Id")));
}

QString PackageInfoPrivate::compatibilityVersion() const
{
    return _manifest.attributeValue(QStringLiteral("Archive-Manifest-Version"), QStringLiteral("0.0"));
}

QString PackageInfoPrivate::name() const
{
    return _manifest.attributeValue(QStringLiteral("Package-Name"));
}

QString PackageInfoPrivate::version() const
{
    return _manifest.attributeValue(QStringLiteral("Package-Version"), QStringLiteral("0.0.0.0"));
}

QString PackageInfoPrivate::author() const
{
    return _manifest.attributeValue(QStringLiteral("Package-Author"));
}

QString PackageInfoPrivate::systemDependency() const
{
    const QString system =
        _manifest.attributeValue(QStringLiteral("Application-Requires-System"), QStringLiteral("0.0.0.0"));
    // Past the first slash, where there is one: an empty rest stays empty.
    return system.mid(system.indexOf(QLatin1Char('/')) + 1);
}

QString PackageInfoPrivate::description() const
{
    return _manifest.attributeValue(QStringLiteral("Package-Description"));
}

QList<QLocale> PackageInfoPrivate::locales() const
{
    const QString value = _manifest.attributeValue(QStringLiteral("Package-Locale"));
    const QStringList names = value.split(s_localeSeparator, Qt::SkipEmptyParts);
    QList<QLocale> locales;
    for (const QString &name : names) {
        locales.append(QLocale(name));
    }
    return locales;
}

QVariantList PackageInfoPrivate::localesQml() const
{
    QVariantList variants;
    for (const QLocale &locale : locales()) {
        variants.append(locale);
    }
    return variants;
}

} // namespace kelp
