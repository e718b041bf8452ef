// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PROCESSUISTATE_H
#define KELP_PROCESSUISTATE_H

#include <kelp/Export.h>

#include <QtCore/QMetaType>
#include <QtCore/QObject>

namespace kelp {

/*!
 * How much of a window group is to be seen.
 *
 * \note The keys are not registered with the meta-object system: code that needs them as text spells them itself.
 */
class KELP_EXPORT ProcessUIState
{
    Q_GADGET

public:
    enum Type : int {
        Unknown = 0,   /*!< Nothing has been reported yet. */
        Invisible = 1, /*!< Covered, or put away. */
        Thumbnail = 2, /*!< A small picture among those of other applications. */
        FullScreen = 3 /*!< It fills the screen. */
    };

private:
    ProcessUIState();
};

} // namespace kelp

Q_DECLARE_METATYPE(kelp::ProcessUIState::Type)

#endif
