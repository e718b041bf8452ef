// SPDX-License-Identifier: Apache-2.0
// The file behind a PpsObject: its descriptor and the notifier that watches it.
//
// Any thread may call; the notifier is made, switched and ended on the thread of the object alone, as Qt demands. What
// another thread asks for is done at once as far as the file goes; the notifier follows in synchronize(), which then runs
// on the object's thread, or ends by itself. Therefore this record is an object of that thread itself, and ends there.
#pragma once

#include <kelp/PpsObject.h>

#include <QtCore/QMutex>

namespace kelp {

class PpsNotifier;

class PpsObjectPrivate : public QObject
{
    Q_OBJECT

public:
    PpsObjectPrivate(PpsObject *q, const QString &path);
    ~PpsObjectPrivate() override;

    // Ends the record of an object that is being destroyed, on whatever thread.
    static void dispose(PpsObjectPrivate *d);

    bool open(PpsOpenMode::Types mode);
    bool close();
    bool isOpen() const { return fd != -1; }
    QByteArray read(bool *ok);
    bool write(const QByteArray &data);
    bool remove();
    bool setBlocking(bool blocking);
    bool isBlocking();
    void setReadyReadEnabled(bool enable);

    // Of the descriptor; null while closed, until another thread's open is done, and where nothing handles events.
    PpsNotifier *notifier = nullptr;
    const QString path;
    int error = 0; // errno of the last operation
    int fd = -1;   // -1 while closed
    bool readyReadEnabled = true;

private Q_SLOTS:
    void synchronize();

private:
    bool requireOpen(); // else EBADF
    void warnIfNotThread(const char *what, QThread *objectThread) const;
    bool isOfAnotherThread() const;
    void requestSynchronize();
    void updateNotifier(QObject *parent);
    void makeNotifier(int number, QObject *parent);
    int unwatched(); // the descriptor that has no notifier, else -1
    int release();   // closes the descriptor: 0, or the errno
    int descriptorFlags();

    PpsObject *const q;
    bool _isMakingNotifier = false; // the object's thread, which may be inside a handler
    QMutex
        _mutex; // guards the notifier, the descriptor and the flag while they change; no handler runs under it
};

} // namespace kelp
