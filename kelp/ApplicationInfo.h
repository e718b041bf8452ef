// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_APPLICATIONINFO_H
#define KELP_APPLICATIONINFO_H

#include <kelp/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>

namespace kelp {

class ApplicationInfoPrivate;

/*!
 * The running application, as the manifest of its package describes it: identity, title and version.
 *
 * \code
 * const kelp::ApplicationInfo application;
 * window->setTitle(application.title());
 * \endcode
 *
 * The manifest is the file "app/META-INF/MANIFEST.MF" below the current directory. It is read once, when the
 * object is made: later changes, of the file or of the current directory, do not show. Without a manifest, or
 * with a malformed one, warnings say so, and everything here is empty but the version, which is "0.0.0.0". So
 * it is, without a warning, in a package of another type than "application". An attribute that is there and
 * empty counts as missing.
 *
 * A user interface in QML reads the same values as properties; none of them ever changes.
 *
 * Threads: any thread may make one, and any thread may ask it while it lives.
 *
 * \sa PackageInfo
 */
class KELP_EXPORT ApplicationInfo : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString signingHash READ signingHash CONSTANT)
    Q_PROPERTY(QString versionSigningHash READ versionSigningHash CONSTANT)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString description READ description CONSTANT)

public:
    /*! Reads the manifest, and warns when there is none that can be read. */
    explicit ApplicationInfo(QObject *parent = nullptr);
    ~ApplicationInfo() override;

    /*! The application's identifier ("Application-Id"), with "." for each "-"; or empty. */
    QString signingHash() const;

    /*!
     * The identifier of the application's version ("Application-Version-Id"), with "." for each "-"; or
     * empty.
     */
    QString versionSigningHash() const;

    /*! The name to show to people ("Application-Name"); or empty. */
    QString title() const;

    /*! The application's version ("Application-Version"); "0.0.0.0" if missing. */
    QString version() const;

    /*! The application's description ("Application-Description"); or empty. */
    QString description() const;

private:
    Q_DISABLE_COPY(ApplicationInfo)

    ApplicationInfoPrivate *d;
};

} // namespace kelp

#endif
