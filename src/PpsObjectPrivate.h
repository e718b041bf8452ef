// SPDX-License-Identifier: Apache-2.0
// The file behind a PpsObject: its descriptor and the notifier that watches it.
//
// Any thread may call; the notifier is made, switched and ended on the thread of the object alone, as Qt demands. What
// another thread asks for is done at once as far as the file goes, and for the notifier noted here for
// synchronize(), which then runs on the object's thread. Therefore this record is an object of that thread itself, and
// ends there.
#pragma once

#include <kelp/PpsObject.h>

#include <QtCore/QMutex>

#include <memory>
#include <vector>

QT_BEGIN_NAMESPACE
class QSocketNotifier;
QT_END_NAMESPACE

namespace kelp {

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

    QSocketNotifier *notifier =
        nullptr; // of the descriptor; null while closed, and until another thread's open is done
    const QString path;
    int error = 0; // errno of the last operation
    int fd = -1;   // -1 while closed
    bool readyReadEnabled = true;

private Q_SLOTS:
    void synchronize();

private:
    // A notifier that is no longer wanted, and its descriptor, which must stay taken until the notifier has gone.
    struct Retired {
        std::unique_ptr<QSocketNotifier> notifier;
        int fd;
    };

    bool requireOpen(); // else EBADF
    void warnIfNotThread(const char *what, QThread *objectThread) const;
    bool isOfAnotherThread() const;
    void requestSynchronize();
    int release(); // closes the descriptor: 0, or the errno
    int retire(Retired retired);
    void endRetired();
    int descriptorFlags();

    PpsObject *const q;
    QMutex _mutex; // guards the notifier, the descriptor and the flag while they change, and what is below
    std::vector<Retired> _retired;
};

} // namespace kelp
