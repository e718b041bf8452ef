// SPDX-License-Identifier: Apache-2.0
// What ApplicationInfo tells, computed at each call from the manifest that was read when the object was made.
#pragma once

#include "CaskParser.h"

namespace kelp {

class ApplicationInfo;

class ApplicationInfoPrivate
{
public:
    explicit ApplicationInfoPrivate(ApplicationInfo *q);

    QString signingHash() const;
    QString versionSigningHash() const;
    QString title() const;
    QString version() const;
    QString description() const;

    ApplicationInfo *const q;

private:
    CaskParser _manifest;
};

} // namespace kelp
