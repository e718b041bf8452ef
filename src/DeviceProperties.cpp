// SPDX-License-Identifier: Apache-2.0
// UIToolkitSupportPrivate::deviceProperties(): from the PPS object that the device describes itself with.

#include "DeviceProperties.h"

#include "Messages.h"
#include "UIToolkitSupportPrivate.h"

#include <kelp/PpsObject.h>

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

namespace kelp {

namespace {

const char PROPERTIES_PATH[] = "/pps/services/deviceproperties";
const QString THEME_ATTRIBUTE = QStringLiteral("defaultTheme");
const QString RESOLUTION_ATTRIBUTE = QStringLiteral("screen_res");

// Those of the object, whatever its name; none, and a warning, when they cannot be read.
QVariantMap readAttributes()
{
    PpsObject object(QString::fromLatin1(PROPERTIES_PATH));
    if (!object.open(PpsOpenMode::Subscribe)) {
        qWarning() << "UIToolkitSupport: Unable to open" << PROPERTIES_PATH;
        return {};
    }
    bool ok = false;
    const QByteArray text = object.read(&ok);
    if (!ok) {
        qWarning() << "UIToolkitSupport: Unable to read" << PROPERTIES_PATH;
        return {};
    }
    const QVariantMap objects = PpsObject::decode(text, &ok);
    if (!ok) {
        qWarning() << "UIToolkitSupport: Unable to decode" << PROPERTIES_PATH;
        return {};
    }
    QVariantMap attributes = objects.isEmpty() ? QVariantMap() : objects.first().toMap();
    if (!attributes.contains(THEME_ATTRIBUTE) || !attributes.contains(RESOLUTION_ATTRIBUTE)) {
        qWarning() << "UIToolkitSupport: Unable to read resolution and theme from" << PROPERTIES_PATH;
        return {};
    }
    return attributes;
}

// The environment goes before the device.
QString themeOf(const QVariantMap &attributes)
{
    const QByteArray chosen = qgetenv("MARIGOLD_THEME");
    return chosen.isEmpty() ? attributes.value(THEME_ATTRIBUTE).toString() : QString::fromLocal8Bit(chosen);
}

// Sets width and height to those of a text like "768x1280". Returns false, after a warning, for any other.
bool parseResolution(const QString &text, DeviceProperties &properties)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    if (parts.size() != 2) {
        qWarning() << "UIToolkitSupport: read a screen resolution in a non supported format" << Quoted{text};
        return false;
    }
    properties.width = parts.first().toInt();
    properties.height = parts.last().toInt();
    if (properties.width == 0 || properties.height == 0) {
        qWarning() << "UIToolkitSupport: invalid resolution" << Quoted{text};
        return false;
    }
    return true;
}

} // namespace

DeviceProperties UIToolkitSupportPrivate::deviceProperties()
{
    const QVariantMap attributes = readAttributes();
    if (attributes.isEmpty()) {
        return {};
    }
    DeviceProperties properties;
    properties.theme = themeOf(attributes);
    const QString resolution = attributes.value(RESOLUTION_ATTRIBUTE).toString().toLower();
    return parseResolution(resolution, properties) ? properties : DeviceProperties();
}

} // namespace kelp
