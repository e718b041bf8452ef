// SPDX-License-Identifier: Apache-2.0
// See kelp/PpsObject.h. The work on the file is the private object's; the static operations are in PpsMessages.cpp.

#include <kelp/PpsObject.h>

#include "PpsObjectPrivate.h"

#include <cstring>

namespace kelp {

PpsObject::PpsObject(const QString &path, QObject *parent)
    : QObject(parent),
      d(new PpsObjectPrivate(this, path))
{}

PpsObject::~PpsObject()
{
    PpsObjectPrivate::dispose(d);
}

bool PpsObject::open(QFlags<PpsOpenMode::Type> mode)
{
    return d->open(mode);
}

bool PpsObject::close()
{
    return d->close();
}

bool PpsObject::isOpen() const
{
    return d->isOpen();
}

QByteArray PpsObject::read(bool *ok)
{
    return d->read(ok);
}

bool PpsObject::write(const QByteArray &data)
{
    return d->write(data);
}

bool PpsObject::remove()
{
    return d->remove();
}

bool PpsObject::setBlocking(bool blocking)
{
    return d->setBlocking(blocking);
}

bool PpsObject::isBlocking() const
{
    return d->isBlocking();
}

void PpsObject::setReadyReadEnabled(bool enable)
{
    d->setReadyReadEnabled(enable);
}

bool PpsObject::isReadyReadEnabled() const
{
    return d->readyReadEnabled;
}

int PpsObject::error() const
{
    return d->error;
}

QString PpsObject::errorString() const
{
    return QString::fromLocal8Bit(std::strerror(d->error));
}

} // namespace kelp
