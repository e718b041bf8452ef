// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PPSOBJECT_H
#define KELP_PPSOBJECT_H

#include <kelp/Export.h>
#include <kelp/PpsAttribute.h>
#include <kelp/PpsOpenMode.h>

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace kelp {

class PpsObjectPrivate;

/*!
 * One object of the persistent publish/subscribe service: a file under "/pps/" with the last value of each of its
 * attributes, which any number of processes publish and subscribe to.
 *
 * \code
 * auto *battery = new kelp::PpsObject("/pps/services/power/battery?delta", this);
 * connect(battery, &kelp::PpsObject::readyRead, this, [battery] {
 *     const QVariantMap objects = kelp::PpsObject::decode(battery->read());
 *     qDebug() << objects.value("@battery").toMap().value("level").toInt();
 * });
 * if (!battery->open(kelp::PpsOpenMode::Subscribe)) {
 *     qWarning() << battery->errorString();
 * }
 * \endcode
 *
 * What is read and written is text. The static operations turn it into maps and back; a text read has one member for
 * the object, named with its '@', whose members are the attributes. A service that takes requests reads messages of the
 * attributes "msg" (the request), "id" and "dat" (its arguments).
 *
 * Operations tell of a failure by their result; error() then has its errno.
 *
 * Threads: the object belongs to the thread that made it, which needs an event loop for readyRead(): where it is opened
 * on a thread without any event handling (not a QThread's, or before there is an application), all else works, and
 * readyRead() comes only after a setReadyReadEnabled() when there is one. open(), close(), read(), write() and the
 * destructor write a warning when another thread calls them, and go ahead: the caller must see to it that the two
 * threads do not use the object at the same time, and that the object's thread is not inside one of its signals when it
 * is destroyed. The static operations may be called from any thread.
 */
class KELP_EXPORT PpsObject : public QObject
{
    Q_OBJECT

public:
    /*! Stands for the object at \a path, which is used as it is, options after a '?' included. Opens nothing. */
    explicit PpsObject(const QString &path, QObject *parent = nullptr);

    /*! Closes the object if it is open. */
    ~PpsObject() override;

    /*!
     * Opens the object. Descriptors block unless setBlocking() says otherwise.
     *
     * Fails with EBUSY when it is open already, which it then stays, or with what the service answers: ENOENT for an
     * object that does not exist, EEXIST for one that does and was to be created, EACCES without the permission.
     */
    bool open(QFlags<PpsOpenMode::Type> mode);

    /*!
     * Closes the object. Fails with EBADF when it is not open. It is closed after any other failure.
     */
    bool close();

    bool isOpen() const;

    /*!
     * The text of the object, or what has changed in it, as the service hands it over in one piece.
     *
     * \a ok may be null, and tells whether there was anything. Otherwise the result is empty and error() is EAGAIN where
     * there is nothing new, EBADF when the object is not open, or the errno of the failure, which is logged as well.
     * After setBlocking(false), with the option "wait" in the path, there being nothing new is such a failure: it is
     * EAGAIN too, and logged.
     */
    QByteArray read(bool *ok = nullptr);

    /*!
     * Writes attribute text: all of its lines take effect at once, or none.
     *
     * Returns whether all bytes were taken. error() tells why not, and is 0 where only some of them were.
     * \sa encode()
     */
    bool write(const QByteArray &data);

    /*! Deletes the object itself, open or not. Its subscribers hear of it. */
    bool remove();

    /*!
     * Chooses whether a read waits for news (with the option "wait" in the path), or fails with EAGAIN.
     *
     * Fails with EBADF when the object is not open.
     */
    bool setBlocking(bool blocking);

    /*! Whether the open object blocks. False as well, with an error(), when it is not open. */
    bool isBlocking() const;

    /*! Whether readyRead() is wanted: what setReadyReadEnabled() last set, at first true. */
    bool isReadyReadEnabled() const;

    /*!
     * The errno of the last open(), close(), read(), write(), remove(), setBlocking() or isBlocking(); 0 after a success.
     */
    int error() const;

    /*! error() in the platform's words. */
    QString errorString() const;

    /*!
     * The text of attributes, one for each entry of \a data, in the order of their names.
     *
     * Values may be bool, int, unsigned int (written as a double), long long, double, QString, an invalid variant
     * (null), and QVariantMap and QVariantList of these. Any other type, anywhere in \a data, fails the whole: \a ok,
     * which may be null, becomes false and the result is empty. Among the types that fail are float, long as
     * QVariant::fromValue() takes it, unsigned 64-bit integers, QStringList and QByteArray. What fails as well:
     *   - a NaN or an infinity, and a U+0000 in a text or a name,
     *   - the name of an attribute that is empty, has a ':' or a control character in it, or begins with one of @-+#*!
     *     (names within a map may be anything),
     *   - more than 512 maps and lists within one another.
     *
     * One name may begin with '@': that of a map, which is then the object of that name, with its attributes. After such
     * a one, in the order of names, nothing but others may follow.
     *
     * decode() makes the same map of the text, but for the kinds of integers: an unsigned int comes back as a double, a
     * long long that fits an int as an int. A surrogate without its other half is written as '?'.
     */
    static QByteArray encode(const QVariantMap &data, bool *ok = nullptr);

    /*!
     * The text of the request \a msg with the arguments \a dat, which may be empty.
     *
     * Fails as encode() does, and for an empty \a msg.
     */
    static QByteArray encodeMessage(const QString &msg, const QVariantMap &dat, bool *ok = nullptr);

    /*!
     * The same for a request with an identifier, by which the service's answer is told from others. Fails also for an
     * empty \a id.
     */
    static QByteArray encodeMessage(const QString &msg, const QString &id, const QVariantMap &dat,
                                    bool *ok = nullptr);

    /*!
     * Opens the object at \a path to publish, writes \a message in the local 8-bit encoding, and closes it.
     *
     * Returns 0 on success, -1 for a message that cannot be encoded, else the errno of open() or write(); 0 also where
     * only a part was written. The object is opened before the message is encoded, so of two reasons to fail the
     * object's is given.
     */
    static int sendMessage(const QString &path, const QString &message);

    /*! The same for bytes, which are written as they are. */
    static int sendMessage(const QString &path, const QByteArray &message);

    /*! The same for the attributes \a message, by encode(). */
    static int sendMessage(const QString &path, const QVariantMap &message);

    /*! The same for a request, by encodeMessage(). An empty \a msg is -1, and nothing is opened. */
    static int sendMessage(const QString &path, const QString &msg, const QVariantMap &dat);

    /*! Writes a request, by encodeMessage(), to the open object. The result is as sendMessage() has it. */
    int writeMessage(const QString &msg, const QVariantMap &dat);

    /*! The same for a request with an identifier. An empty \a id is -1. */
    int writeMessage(const QString &msg, const QString &id, const QVariantMap &dat);

    /*!
     * The attributes of a text as plain variants: what encode() takes, without flags.
     *
     * A null becomes an invalid variant, a deleted attribute or object an empty QVariantMap; an integer is an int, or a
     * long long where it does not fit. Of two members with one name the later stays.
     *
     * A text that is malformed anywhere, or has an integer beyond 64 bits or a NUL in it, gives an empty map, and false in \a ok, which may be null. A text without
     * attributes gives an empty map and true.
     */
    static QVariantMap decode(const QByteArray &data, bool *ok = nullptr);

    /*! The same with the flags that the service gave, as a tree of attributes. */
    static PpsAttributeMap decodeWithFlags(const QByteArray &data, bool *ok = nullptr);

    /*!
     * The same, and in \a objectAttribute, unless it is null, the object itself: its name (with the '@') as a string,
     * with its flags. Of several objects it is the first by name. It is left as it is where nothing is decoded.
     */
    static PpsAttributeMap decodeWithFlags(const QByteArray &data, PpsAttribute *objectAttribute, bool *ok);

public Q_SLOTS:
    /*! Wants readyRead(), or no longer; kept while the object is closed. */
    void setReadyReadEnabled(bool enable);

Q_SIGNALS:
    /*!
     * There is something to read. Emitted again each time that the event loop runs, until it has been read.
     */
    void readyRead();

private:
    Q_DISABLE_COPY(PpsObject)

    PpsObjectPrivate *d;
};

} // namespace kelp

#endif
