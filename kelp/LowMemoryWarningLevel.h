// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_LOWMEMORYWARNINGLEVEL_H
#define KELP_LOWMEMORYWARNINGLEVEL_H

#include <kelp/Export.h>

#include <QtCore/QObject>

namespace kelp {

/*!
 * How short of memory the device is, as the navigator warns of it.
 *
 * The keys are registered: QMetaEnum::fromType<kelp::LowMemoryWarningLevel::Type>() turns them into text and back.
 */
class KELP_EXPORT LowMemoryWarningLevel
{
    Q_GADGET

public:
    enum Type : int {
        Clear = 0,       /*!< Memory is no longer short. */
        LowPriority = 1, /*!< Give back what is easily made again. */
        HighPriority = 2 /*!< Give back all that can be spared: applications may be ended next. */
    };
    Q_ENUM(Type)

private:
    LowMemoryWarningLevel();
};

} // namespace kelp

#endif
