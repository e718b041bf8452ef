// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PROCESSSTATE_H
#define KELP_PROCESSSTATE_H

#include <kelp/Export.h>

#include <QtCore/QObject>

namespace kelp {

/*!
 * What the device lets the process do.
 *
 * The keys are registered: QMetaEnum::fromType<kelp::ProcessState::Type>() turns them into text and back.
 */
class KELP_EXPORT ProcessState
{
    Q_GADGET

public:
    enum Type : int {
        Unknown = 0,    /*!< Nothing has been reported yet, or a value that this library does not know. */
        Foreground = 1, /*!< The process owns the screen and may use the device freely. */
        Background = 2, /*!< None of its windows fills the screen: it should do little. */
        Stopping = 3    /*!< It has been asked to exit, and will be ended if it takes too long. */
    };
    Q_ENUM(Type)

private:
    ProcessState();
};

} // namespace kelp

#endif
