// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_APPLICATIONSUPPORT_H
#define KELP_APPLICATIONSUPPORT_H

#include <kelp/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>

namespace kelp {

class ApplicationSupportPrivate;

/*!
 * Sets and clears the close prompt, with or without an Application object.
 *
 * The close prompt is a title and a message that the navigator shows when a person closes the application; only a
 * person who confirms it closes the application.
 *
 * \code
 * kelp::ApplicationSupport::setClosePrompt(tr("Unsaved drawing"), tr("Close it all the same?"));
 * \endcode
 *
 * Threads: the static operations may be called from any thread. They wait for the navigator's answer.
 */
class KELP_EXPORT ApplicationSupport : public QObject
{
    Q_OBJECT

public:
    /*! An instance has no effect on the prompt: the operations are static. */
    explicit ApplicationSupport(QObject *parent = nullptr);
    ~ApplicationSupport() override;

    /*!
     * Sets the prompt's title and message, without the characters that a prompt cannot hold: the comma and the double
     * quote simply disappear. Both may be empty.
     *
     * Returns false, and writes a warning with the platform's error, when the navigator does not take it.
     */
    static bool setClosePrompt(const QString &title, const QString &message);

    /*!
     * Removes the prompt; succeeds also when none is set.
     *
     * Returns false, and writes a warning with the platform's error, when the navigator refuses.
     */
    static bool clearClosePrompt();

private:
    Q_DISABLE_COPY(ApplicationSupport)

    ApplicationSupportPrivate *d;
};

} // namespace kelp

#endif
