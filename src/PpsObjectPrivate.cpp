// SPDX-License-Identifier: Apache-2.0
// See PpsObjectPrivate.h.

#include "PpsObjectPrivate.h"

#include "Locker.h"
#include "Messages.h"
#include "PpsMaxSize.h"
#include "PpsNotifier.h"

#include <devicefs/devicefs.h>

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QThread>

#include <cerrno>
#include <memory>
#include <utility>

#include <fcntl.h>

namespace kelp {

namespace {

int openFlags(PpsOpenMode::Types mode)
{
    int flags = O_RDONLY;
    if (mode.testFlag(PpsOpenMode::Publish)) {
        flags = mode.testFlag(PpsOpenMode::Subscribe) ? O_RDWR : O_WRONLY;
    }
    if (mode.testFlag(PpsOpenMode::Create)) {
        flags |= O_CREAT | O_EXCL;
    }
    if (mode.testFlag(PpsOpenMode::DeleteContents)) {
        flags |= O_TRUNC;
    }
    return flags;
}

QString textOf(const QThread *thread)
{
    return QStringLiteral("0x%1 (\"%2\")")
        .arg(reinterpret_cast<quintptr>(thread), 0, 16)
        .arg(thread->objectName());
}

} // namespace

// A child of the object, to follow it when it moves to another thread.
PpsObjectPrivate::PpsObjectPrivate(PpsObject *q, const QString &path) : QObject(q), path(path), q(q) {}

PpsObjectPrivate::~PpsObjectPrivate()
{
    const Locker handedOver(&_mutex); // by dispose()
}

void PpsObjectPrivate::dispose(PpsObjectPrivate *d)
{
    d->warnIfNotThread("destroyed", d->q->thread());
    if (d->isOpen()) {
        (void)d->release(); // nobody is left to be told
    }
    if (d->isOfAnotherThread()) {
        d->setParent(nullptr);
        {
            const Locker handOver(&d->_mutex); // its own thread takes the lock again before it ends it
        }
        d->deleteLater();
    } else {
        delete d;
    }
}

bool PpsObjectPrivate::open(PpsOpenMode::Types mode)
{
    error = 0;
    if (isOpen()) {
        error = EBUSY;
        return false;
    }
    const int flags = openFlags(mode);
    warnIfNotThread("open called", q->thread());
    const int opened = devicefs_open(path.toUtf8().constData(), flags, 0666);
    if (opened == -1) {
        error = errno;
        return false;
    }
    {
        const Locker lock(&_mutex);
        fd = opened;
    }
    requestSynchronize();
    return true;
}

bool PpsObjectPrivate::close()
{
    if (!requireOpen()) {
        return false;
    }
    warnIfNotThread("close called", q->thread());
    error = release();
    return error == 0;
}

QByteArray PpsObjectPrivate::read(bool *ok)
{
    bool ignored = false;
    bool &isRead = ok ? *ok : ignored;
    isRead = false;
    if (!requireOpen()) {
        return {};
    }
    warnIfNotThread("read called", q->thread());
    QByteArray buffer(PPS_MAX_SIZE, Qt::Uninitialized);
    const ssize_t size = devicefs_read(fd, buffer.data(), static_cast<size_t>(buffer.size()));
    if (size == -1) {
        error = errno;
        qWarning() << "PpsObject::read failed to read pps data, error " << Quoted{q->errorString()};
        return {};
    }
    if (size == 0) { // not the end of a file: no news yet
        error = EAGAIN;
        return {};
    }
    isRead = true;
    buffer.resize(static_cast<int>(size));
    buffer.squeeze(); // callers may keep it
    return buffer;
}

bool PpsObjectPrivate::write(const QByteArray &data)
{
    if (!requireOpen()) {
        return false;
    }
    warnIfNotThread("write called", q->thread());
    const ssize_t size = devicefs_write(fd, data.constData(), static_cast<size_t>(data.size()));
    if (size == -1) {
        error = errno;
    }
    return size == data.size(); // a short write is no error(): kept on purpose
}

bool PpsObjectPrivate::remove()
{
    error = devicefs_unlink(path.toUtf8().constData()) == 0 ? 0 : errno;
    return error == 0;
}

bool PpsObjectPrivate::setBlocking(bool blocking)
{
    const int flags = descriptorFlags();
    if (flags == -1) {
        return false;
    }
    const int wanted = blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK;
    if (devicefs_fcntl(fd, F_SETFL, wanted) == -1) {
        error = errno;
        return false;
    }
    return true;
}

bool PpsObjectPrivate::isBlocking()
{
    const int flags = descriptorFlags();
    return flags != -1 && (flags & O_NONBLOCK) == 0;
}

void PpsObjectPrivate::setReadyReadEnabled(bool enable)
{
    {
        const Locker lock(&_mutex);
        readyReadEnabled = enable;
    }
    if (isOpen()) {
        requestSynchronize();
    }
}

// On the object's thread, later than another one asked: that one may be destroying the object by now, and has this
// record ended here.
void PpsObjectPrivate::synchronize()
{
    updateNotifier(this);
}

// On the object's thread: brings the notifier up to date with what has been asked for, on whatever thread.
void PpsObjectPrivate::updateNotifier(QObject *parent)
{
    if (_isMakingNotifier || !QAbstractEventDispatcher::instance()) {
        return;
    }
    _isMakingNotifier = true;
    for (int number = unwatched(); number != -1; number = unwatched()) {
        makeNotifier(number, parent);
    }
    _isMakingNotifier = false;
    PpsNotifier *current = nullptr;
    bool isWanted = false;
    {
        const Locker lock(&_mutex);
        current = notifier;
        isWanted = readyReadEnabled;
    }
    if (current) { // also if it is being retired: it ends on this thread, later
        current->setEnabled(isWanted);
    }
}

// The parent's handlers hear of a child, and may use the object: whether the notifier is still good is seen after them.
void PpsObjectPrivate::makeNotifier(int number, QObject *parent)
{
    auto made = std::make_unique<PpsNotifier>(number);
    made->setParent(parent);
    const Locker lock(&_mutex);
    if (notifier || fd != number) {
        return;
    }
    // By name: such a connection is Qt's own alone, and another thread may end it.
    connect(made.get(), SIGNAL(activated(int)), q, SIGNAL(readyRead()));
    notifier = made.release();
}

int PpsObjectPrivate::unwatched()
{
    const Locker lock(&_mutex);
    return notifier ? -1 : fd;
}

bool PpsObjectPrivate::requireOpen()
{
    error = isOpen() ? 0 : EBADF;
    return isOpen();
}

void PpsObjectPrivate::warnIfNotThread(const char *what, QThread *objectThread) const
{
    const QThread *current = QThread::currentThread();
    if (!objectThread || !current || objectThread == current) {
        return;
    }
    qWarning() << "PpsObject" << what << "on QThread:" << Quoted{textOf(current)}
               << "but this object's QThread affinity is:" << Quoted{textOf(objectThread)}
               << "path:" << Quoted{path} << "fd:" << fd;
}

// Whether the notifier is out of reach: its thread is another one, and still has event handling.
bool PpsObjectPrivate::isOfAnotherThread() const
{
    QThread *own = thread();
    return own && own != QThread::currentThread() && QAbstractEventDispatcher::instance(own);
}

void PpsObjectPrivate::requestSynchronize()
{
    if (thread() == QThread::currentThread()) {
        updateNotifier(q);
    } else {
        // By name: such a call is made within Qt, and carries nothing that two threads touch.
        QMetaObject::invokeMethod(this, "synchronize", Qt::QueuedConnection);
    }
}

int PpsObjectPrivate::release()
{
    std::unique_ptr<PpsNotifier> unwanted;
    int number = -1;
    {
        const Locker lock(&_mutex);
        unwanted.reset(std::exchange(notifier, nullptr));
        number = std::exchange(fd, -1);
    }
    if (unwanted && isOfAnotherThread()) {
        return PpsNotifier::retire(std::move(unwanted));
    }
    unwanted.reset(); // before the number can be anybody else's
    return devicefs_close(number) == 0 ? 0 : errno;
}

// -1, and the error, when there are none.
int PpsObjectPrivate::descriptorFlags()
{
    if (!requireOpen()) {
        return -1;
    }
    const int flags = devicefs_fcntl(fd, F_GETFL, 0);
    if (flags == -1) {
        error = errno;
    }
    return flags;
}

} // namespace kelp
