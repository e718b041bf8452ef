// SPDX-License-Identifier: Apache-2.0
// See ApplicationInfoPrivate.h.

#include "ApplicationInfoPrivate.h"

namespace kelp {

ApplicationInfoPrivate::ApplicationInfoPrivate(ApplicationInfo *q) : q(q) {}

QString ApplicationInfoPrivate::signingHash() const
{
    return CaskParser::changeEncoding(_manifest.attributeValue(QStringLiteral("Application-Id")));
}

QString ApplicationInfoPrivate::versionSigningHash() const
{
    return CaskParser::changeEncoding(_manifest.attributeValue(QStringLiteral("Application-Version-Id")));
}

QString ApplicationInfoPrivate::title() const
{
    return _manifest.attributeValue(QStringLiteral("Application-Name"));
}

QString ApplicationInfoPrivate::version() const
{
    return _manifest.attributeValue(QStringLiteral("Application-Version"), QStringLiteral("0.0.0.0"));
}

QString ApplicationInfoPrivate::description() const
{
    return _manifest.attributeValue(QStringLiteral("Application-Description"));
}

} // namespace kelp
