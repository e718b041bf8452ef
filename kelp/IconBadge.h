// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_ICONBADGE_H
#define KELP_ICONBADGE_H

#include <kelp/Export.h>

#include <QtCore/QObject>

namespace kelp {

/*!
 * The mark on an application's icon that tells the person that there is news.
 *
 * The keys are registered: QMetaEnum::fromType<kelp::IconBadge::Type>() turns them into text and back.
 */
class KELP_EXPORT IconBadge
{
    Q_GADGET

public:
    enum Type : int {
        None = 0, /*!< No mark. */
        Splat = 1 /*!< The mark is shown. */
    };
    Q_ENUM(Type)

private:
    IconBadge();
};

} // namespace kelp

#endif
