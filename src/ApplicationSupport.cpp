// SPDX-License-Identifier: Apache-2.0
// See kelp/ApplicationSupport.h. Each operation opens and closes its own use of the platform's events, for there may be
// no application object that has.

#include <kelp/ApplicationSupport.h>

#include "ApplicationSupportPrivate.h"

#include <navigator/navigator.h>
#include <tarn/tarn.h>

#include <QtCore/QDebug>
#include <QtCore/QList>

#include <cerrno>
#include <cstring>

namespace kelp {

namespace {

const QList<QChar> illegalPromptCharacters{QLatin1Char(','), QLatin1Char('"')};

// The calling thread's use of the platform's events, for a scope. Nests.
class TarnSession
{
public:
    TarnSession() : _opened(tarn_initialize() == TARN_SUCCESS) {}
    ~TarnSession()
    {
        if (_opened) {
            tarn_shutdown();
        }
    }
    Q_DISABLE_COPY(TarnSession)

    bool isOpen() const { return _opened; }

private:
    const bool _opened;
};

// True for success. Otherwise writes the warning, with the text of errno, and returns false.
bool succeeded(int result, const char *warning)
{
    if (result == TARN_SUCCESS) {
        return true;
    }
    const int error = errno;
    qWarning() << warning << std::strerror(error);
    return false;
}

} // namespace

ApplicationSupport::ApplicationSupport(QObject *parent) : QObject(parent), d(new ApplicationSupportPrivate) {}

ApplicationSupport::~ApplicationSupport()
{
    delete d;
    d = nullptr;
}

bool ApplicationSupport::setClosePrompt(const QString &title, const QString &message)
{
    return ApplicationSupportPrivate::setClosePrompt(title, message);
}

bool ApplicationSupport::clearClosePrompt()
{
    return ApplicationSupportPrivate::clearClosePrompt();
}

ApplicationSupportPrivate::~ApplicationSupportPrivate() = default;

bool ApplicationSupportPrivate::setClosePrompt(const QString &title, const QString &message)
{
    const TarnSession session;
    if (!session.isOpen()) {
        return succeeded(TARN_FAILURE, "setClosePrompt() failed to init TARN");
    }
    const QByteArray cleanTitle = ApplicationSupportPrivateHelper::cleanClosePromptString(title).toUtf8();
    const QByteArray cleanMessage = ApplicationSupportPrivateHelper::cleanClosePromptString(message).toUtf8();
    return succeeded(navigator_set_close_prompt(cleanTitle.constData(), cleanMessage.constData()),
                     "setClosePrompt() failed to set prompt -");
}

bool ApplicationSupportPrivate::clearClosePrompt()
{
    const TarnSession session;
    if (!session.isOpen()) {
        return succeeded(TARN_FAILURE, "clearClosePrompt() failed to init TARN");
    }
    return succeeded(navigator_clear_close_prompt(), "clearClosePrompt() failed to clear prompt -");
}

QString ApplicationSupportPrivateHelper::cleanClosePromptString(const QString &text)
{
    QString clean = text;
    for (const QChar character : illegalPromptCharacters) {
        clean.remove(character, Qt::CaseSensitive);
    }
    return clean;
}

} // namespace kelp
