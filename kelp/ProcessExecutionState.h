// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PROCESSEXECUTIONSTATE_H
#define KELP_PROCESSEXECUTIONSTATE_H

#include <kelp/Export.h>

#include <QtCore/QObject>

namespace kelp {

/*!
 * Whether a window group has the input focus.
 *
 * The keys are registered: QMetaEnum::fromType<kelp::ProcessExecutionState::Type>() turns them into text and back.
 */
class KELP_EXPORT ProcessExecutionState
{
    Q_GADGET

public:
    enum Type : int {
        Unknown = 0,  /*!< Nothing has been reported yet. */
        Inactive = 1, /*!< Without the focus: asleep. */
        Active = 2    /*!< With the focus: awake. At most one application of the device is. */
    };
    Q_ENUM(Type)

private:
    ProcessExecutionState();
};

} // namespace kelp

#endif
