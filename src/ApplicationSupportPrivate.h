// SPDX-License-Identifier: Apache-2.0
// The close prompt behind ApplicationSupport.
#pragma once

#include <QtCore/QString>

namespace kelp {

class ApplicationSupportPrivate
{
public:
    virtual ~ApplicationSupportPrivate();

    static bool setClosePrompt(const QString &title, const QString &message);
    static bool clearClosePrompt();
};

class ApplicationSupportPrivateHelper
{
public:
    // The text without the characters that a prompt cannot hold; nothing stands in their place.
    static QString cleanClosePromptString(const QString &text);
};

} // namespace kelp
