// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PPSATTRIBUTEFLAG_H
#define KELP_PPSATTRIBUTEFLAG_H

#include <kelp/Export.h>

#include <QtCore/QFlags>
#include <QtCore/QObject>

QT_BEGIN_NAMESPACE
class QDebug;
QT_END_NAMESPACE

namespace kelp {

/*!
 * What the publish/subscribe service says about an attribute besides its value.
 *
 * An attribute has a set of these, PpsAttributeFlag::Types. The keys are registered, of the single flag and of the set:
 * QMetaEnum::fromType<kelp::PpsAttributeFlag::Types>() turns a set into text and back.
 *
 * \sa PpsAttribute::flags()
 */
class KELP_EXPORT PpsAttributeFlag
{
    Q_GADGET

public:
    enum Type : int {
        Incomplete = 1, /*!< The reader's buffer was too small: some attributes are missing. */
        Deleted = 2,    /*!< It has been deleted since the last read. */
        Created = 4,    /*!< It has been created since the last read. */
        Truncated = 8,  /*!< All of the object's attributes have been dropped since the last read. */
        Purged = 16     /*!< It vanished with its last publisher. */
    };
    Q_ENUM(Type)
    Q_DECLARE_FLAGS(Types, Type)
    Q_FLAG(Types)

private:
    PpsAttributeFlag();
};

Q_DECLARE_OPERATORS_FOR_FLAGS(PpsAttributeFlag::Types)

/*! Writes a set as the bits that are set, from the lowest: QFlags(0x1|0x10), and QFlags() for none. */
KELP_EXPORT QDebug operator<<(QDebug dbg, PpsAttributeFlag::Types flags);

} // namespace kelp

#endif
