// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PPSOPENMODE_H
#define KELP_PPSOPENMODE_H

#include <kelp/Export.h>

#include <QtCore/QFlags>
#include <QtCore/QObject>

namespace kelp {

/*!
 * How a PPS object is opened: one or several of these, joined by '|'.
 *
 * Without Publish the access is read-only, also when nothing is set at all.
 *
 * \sa PpsObject::open()
 */
class KELP_EXPORT PpsOpenMode
{
    Q_GADGET

public:
    enum Type : int {
        Publish = 1,                            /*!< To write attributes. */
        Subscribe = 2,                          /*!< To read them, and to hear of changes. */
        PublishSubscribe = Publish | Subscribe, /*!< Both. */
        Create = 4,                             /*!< Makes the object; one that exists already is an error. */
        DeleteContents = 8                      /*!< Drops all attributes that the object has. */
    };
    Q_ENUM(Type)
    Q_DECLARE_FLAGS(Types, Type)

private:
    PpsOpenMode();
};

Q_DECLARE_OPERATORS_FOR_FLAGS(PpsOpenMode::Types)

} // namespace kelp

#endif
