// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_ORIENTATION_H
#define KELP_ORIENTATION_H

#include <kelp/Export.h>

#include <QtCore/QObject>

namespace kelp {

/*!
 * Directions of the screen: degrees clockwise from the device's upright position.
 *
 * The keys are registered: QMetaEnum::fromType<kelp::Orientation::Type>() turns them into text and back.
 */
class KELP_EXPORT Orientation
{
    Q_GADGET

public:
    enum Type : int { North = 0, East = 90, South = 180, West = 270 };
    Q_ENUM(Type)

private:
    Orientation();
};

} // namespace kelp

#endif
