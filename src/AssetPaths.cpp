// SPDX-License-Identifier: Apache-2.0
// Where the files are that URLs name: UIToolkitSupport::absolutePathFromUrl(), and the question to the platform's asset
// selector behind it.

#include "DeviceProperties.h"
#include "UIToolkitSupportPrivate.h"

#include <aselector/aselector.h>

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QUrl>

#include <cstdlib>
#include <memory>

namespace kelp {

namespace {

const QString ASSET_SCHEME = QStringLiteral("asset");
const QString FILE_SCHEME = QStringLiteral("file");

using Context = std::unique_ptr<aselector_context_t, decltype(&aselector_context_destroy)>;
using Asset = std::unique_ptr<aselector_asset_t, decltype(&aselector_asset_destroy)>;

// Null when the selector fails.
Context makeContext(int width, int height, const QString &theme)
{
    const bool isBright = theme.toLower() == QLatin1String("bright");
    const aselector_attribute_t attributes[] = {
        {ASELECTOR_SCREEN_WIDTH, width},
        {ASELECTOR_SCREEN_HEIGHT, height},
        {ASELECTOR_THEME, isBright ? ASELECTOR_BRIGHT : ASELECTOR_DARK},
        {ASELECTOR_END, 0},
    };
    aselector_context_t *made = nullptr;
    const bool isMade = aselector_context_create(attributes, &made) == 0;
    return Context(isMade ? made : nullptr, aselector_context_destroy);
}

// Null when the selector fails.
Asset makeAsset(const Context &context, const QString &relativePath, const QString &assetsDir)
{
    aselector_asset_t *made = nullptr;
    const bool isMade = aselector_asset_create(context.get(), relativePath.toUtf8().constData(),
                                               assetsDir.toUtf8().constData(), &made) == 0;
    return Asset(isMade ? made : nullptr, aselector_asset_destroy);
}

// An application's home directory is one level below its root.
QString appRootDir()
{
    const QString home = QString::fromLatin1(std::getenv("HOME"));
    if (home.isEmpty()) {
        qWarning() << "could not find appRootDir via HOME path, using current directory";
        return QDir::currentPath();
    }
    return QDir::cleanPath(QDir(home).absoluteFilePath(QStringLiteral("..")));
}

QString assetsDir()
{
    return appRootDir() + QStringLiteral("/app/native/assets");
}

QString pathOfFile(const QUrl &url)
{
    return QDir::cleanPath(QDir(QString()).absoluteFilePath(url.toLocalFile()));
}

QString pathOfAsset(const QUrl &url)
{
    if (!url.host().isEmpty()) {
        qWarning() << "absolutePathFromUrl(): ignoring hostname";
    }
    const DeviceProperties device = UIToolkitSupportPrivate::deviceProperties();
    QString path;
    if (device.width && device.height && !device.theme.isEmpty()) {
        path = UIToolkitSupportPrivate::assetAbsolutePath(device.width, device.height, device.theme,
                                                          QDir::cleanPath(url.path()),
                                                          QDir::cleanPath(assetsDir()));
    }
    return path.isEmpty() ? QDir::cleanPath(assetsDir() + QLatin1Char('/') + url.path()) : path;
}

} // namespace

QString UIToolkitSupportPrivate::assetAbsolutePath(int width, int height, const QString &theme,
                                                   const QString &path, const QString &assetsDir)
{
    const Context context = makeContext(width, height, theme);
    if (!context) {
        return {};
    }
    QString relativePath = path;
    while (relativePath.startsWith(QLatin1Char('/'))) {
        relativePath.remove(0, 1);
    }
    const Asset asset = makeAsset(context, relativePath, assetsDir);
    const char *selected = nullptr;
    if (!asset || aselector_asset_get_path(asset.get(), &selected) != 0) {
        return {};
    }
    // Not the encoding that the path went out in: a name beyond ASCII comes back changed. Kept on purpose.
    return QString::fromLatin1(selected);
}

QString UIToolkitSupport::absolutePathFromUrl(const QUrl &url)
{
    const QString scheme = url.scheme().toLower();
    if (scheme.isEmpty()) {
        QUrl file = url;
        file.setScheme(FILE_SCHEME);
        return pathOfFile(file);
    }
    if (scheme == FILE_SCHEME) {
        return pathOfFile(url);
    }
    if (scheme == ASSET_SCHEME) {
        return pathOfAsset(url);
    }
    qWarning() << "UIToolkitSupport: Unrecognized scheme";
    return {};
}

} // namespace kelp
