// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PIXELFORMAT_H
#define KELP_PIXELFORMAT_H

#include <kelp/Export.h>

#include <QtCore/QObject>

QT_BEGIN_NAMESPACE
class QDebug;
QT_END_NAMESPACE

namespace kelp {

/*!
 * What the four bytes of a pixel mean.
 *
 * The keys are registered: QMetaEnum::fromType<kelp::PixelFormat::Type>() turns them into text and back.
 *
 * \sa ImageData
 */
class KELP_EXPORT PixelFormat
{
    Q_GADGET

public:
    enum Type : int {
        RGBX = 0,              /*!< Red, green, blue, and a byte without a meaning. */
        RGBA_Premultiplied = 1 /*!< Red, green and blue, each multiplied by the opacity, and the opacity. */
    };
    Q_ENUM(Type)

private:
    PixelFormat();
};

/*!
 * Writes RGBX, RGBA for the premultiplied format, and any other value as unknown( 5 ), on a stream without spaces
 * unknown(5).
 */
KELP_EXPORT QDebug operator<<(QDebug dbg, PixelFormat::Type format);

} // namespace kelp

#endif
