// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_SWIPEDOWNMODE_H
#define KELP_SWIPEDOWNMODE_H

#include <kelp/Export.h>

#include <QtCore/QObject>

namespace kelp {

/*!
 * Which part of a swipe from the top edge an application hears of.
 *
 * The keys are registered: QMetaEnum::fromType<kelp::SwipeDownMode::Type>() turns them into text and back.
 */
class KELP_EXPORT SwipeDownMode
{
    Q_GADGET

public:
    enum Type : int {
        OnCompletionOnly = 0, /*!< The completed swipe. */
        OnStartOnly = 1       /*!< Its start. */
    };
    Q_ENUM(Type)

private:
    SwipeDownMode();
};

} // namespace kelp

#endif
