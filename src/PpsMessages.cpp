// SPDX-License-Identifier: Apache-2.0
// The static operations of PpsObject: between maps and PPS text, and messages sent with one call. A failure of the
// codec, which throws, becomes a flag here and nowhere else.

#include <kelp/PpsObject.h>

#include "PpsAttributePrivate.h"
#include "PpsDecoder.h"
#include "PpsEncoder.h"
#include "PpsText.h"
#include "PpsVariantDecoder.h"

namespace kelp {

namespace {

// The result of a step that may throw; without a result, an empty one and false in ok, which may be null.
template <typename Step>
auto attempt(bool *ok, Step step) -> decltype(step())
{
    bool ignored = false;
    bool &isDone = ok ? *ok : ignored;
    isDone = true;
    try {
        return step();
    } catch (...) {
        isDone = false;
        return {};
    }
}

// No message: it lacks what every message has.
QByteArray refused(bool *ok)
{
    if (ok) {
        *ok = false;
    }
    return {};
}

int writeAll(PpsObject *object, const QByteArray &bytes)
{
    return object->write(bytes) ? 0 : object->error();
}

// Opens first: an object that cannot be opened is told of before a message that cannot be encoded.
template <typename Encode>
int sendEncoded(const QString &path, Encode encode)
{
    PpsObject object(path);
    if (!object.open(PpsOpenMode::Publish)) {
        return object.error();
    }
    bool ok = true;
    const QByteArray bytes = encode(&ok);
    return ok ? writeAll(&object, bytes) : -1;
}

} // namespace

QByteArray PpsObject::encode(const QVariantMap &data, bool *ok)
{
    return attempt(ok, [&data] {
        PpsEncoder encoder;
        encoder.encodeObject(data);
        return encoder.text();
    });
}

QByteArray PpsObject::encodeMessage(const QString &msg, const QVariantMap &dat, bool *ok)
{
    if (msg.isEmpty()) {
        return refused(ok);
    }
    return encode({{QStringLiteral("msg"), msg}, {QStringLiteral("dat"), dat}}, ok);
}

QByteArray PpsObject::encodeMessage(const QString &msg, const QString &id, const QVariantMap &dat, bool *ok)
{
    if (msg.isEmpty() || id.isEmpty()) {
        return refused(ok);
    }
    return encode({{QStringLiteral("msg"), msg}, {QStringLiteral("id"), id}, {QStringLiteral("dat"), dat}},
                  ok);
}

int PpsObject::sendMessage(const QString &path, const QString &message)
{
    return sendEncoded(path, [&message](bool *) { return message.toLocal8Bit(); });
}

int PpsObject::sendMessage(const QString &path, const QByteArray &message)
{
    return sendEncoded(path, [&message](bool *) { return message; });
}

int PpsObject::sendMessage(const QString &path, const QVariantMap &message)
{
    return sendEncoded(path, [&message](bool *ok) { return encode(message, ok); });
}

int PpsObject::sendMessage(const QString &path, const QString &msg, const QVariantMap &dat)
{
    if (msg.isEmpty()) {
        return -1;
    }
    return sendEncoded(path, [&](bool *ok) { return encodeMessage(msg, dat, ok); });
}

int PpsObject::writeMessage(const QString &msg, const QVariantMap &dat)
{
    bool ok = true;
    const QByteArray bytes = encodeMessage(msg, dat, &ok);
    return ok ? writeAll(this, bytes) : -1;
}

int PpsObject::writeMessage(const QString &msg, const QString &id, const QVariantMap &dat)
{
    bool ok = true;
    const QByteArray bytes = encodeMessage(msg, id, dat, &ok);
    return ok ? writeAll(this, bytes) : -1;
}

QVariantMap PpsObject::decode(const QByteArray &data, bool *ok)
{
    return attempt(ok, [&data] {
        PpsText text(data);
        return PpsVariantDecoder(text.decoder(), text.keys()).decodeObject();
    });
}

PpsAttributeMap PpsObject::decodeWithFlags(const QByteArray &data, bool *ok)
{
    return decodeWithFlags(data, nullptr, ok);
}

PpsAttributeMap PpsObject::decodeWithFlags(const QByteArray &data, PpsAttribute *objectAttribute, bool *ok)
{
    return attempt(ok, [&data, objectAttribute] {
        PpsText text(data);
        PpsAttributeMap objects = PpsDecoder(text.decoder()).decodeObject();
        if (objectAttribute && !objects.isEmpty()) {
            const auto first = objects.cbegin();
            *objectAttribute = PpsAttributePrivate::make(first.key(), first.value().flags());
        }
        return objects;
    });
}

} // namespace kelp
