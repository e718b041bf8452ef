// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PPSATTRIBUTE_H
#define KELP_PPSATTRIBUTE_H

#include <kelp/Export.h>
#include <kelp/PpsAttributeFlag.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QSharedDataPointer>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace kelp {
class PpsAttribute;
class PpsAttributePrivate;
} // namespace kelp

/*! Attributes by their names. kelp::PpsAttributeMap is the same type. */
typedef QMap<QString, kelp::PpsAttribute> PpsAttributeMap;

namespace kelp {

using ::PpsAttributeMap;

/*!
 * One attribute of a PPS object: a typed value, and the flags that the publish/subscribe service gave it.
 *
 * Attributes come out of PpsObject::decodeWithFlags(). One that an application makes by itself is empty. Copies share
 * their value, so a whole tree is passed on at the cost of one count.
 *
 * \code
 * const PpsAttributeMap objects = kelp::PpsObject::decodeWithFlags(object.read());
 * const kelp::PpsAttribute level = objects.value("@battery").toMap().value("level");
 * if (level.isNumber() && !level.flags().testFlag(kelp::PpsAttributeFlag::Deleted)) {
 *     show(level.toInt());
 * }
 * \endcode
 *
 * The accessors never fail. A scalar one converts as QVariant does, whatever the type: the string "42" is the int 42,
 * true is 1. toInt() rounds a double, and keeps the low 32 bits of a larger integer, which toLongLong() has whole.
 * Where nothing can be converted, and for an empty attribute, an array or an object, the result is 0, false or an empty
 * string.
 *
 * Threads: a copy may be used on any thread, also while others are used elsewhere.
 */
class KELP_EXPORT PpsAttribute
{
    Q_GADGET

public:
    enum Type : int {
        None = 0,   /*!< Empty; also json's null. */
        Number = 1, /*!< An int, a 64-bit integer or a double, as it was published. */
        Bool = 2,   /*!< True or false. */
        String = 3, /*!< Text. */
        Array = 4,  /*!< A list of attributes without names. */
        Object = 5  /*!< Attributes with names; without any for one that has been deleted. */
    };
    Q_ENUM(Type)

    /*! An empty attribute: of the type None, without flags. */
    PpsAttribute();
    PpsAttribute(const PpsAttribute &other);
    PpsAttribute &operator=(const PpsAttribute &other);
    ~PpsAttribute();

    /*! Whether it is anything but None. */
    bool isValid() const;

    Type type() const;

    bool isNumber() const;
    bool isBool() const;
    bool isString() const;
    bool isArray() const;
    bool isObject() const;

    /*! What the service said about it. Members of arrays and objects within an attribute have no flags. */
    PpsAttributeFlag::Types flags() const;

    int toInt() const;
    long long toLongLong() const;
    double toDouble() const;
    bool toBool() const;

    /*! The text of a string, "true" or "false", or a number in decimals: a double with at most 15 significant digits. */
    QString toString() const;

    /*! The elements of an array; an empty list for any other type. */
    QList<PpsAttribute> toList() const;

    /*! The members of an object; an empty map for any other type. */
    PpsAttributeMap toMap() const;

    /*!
     * The value as it is kept: an int, a long long, a double, a bool, a QString; for an array or an object the
     * QList<kelp::PpsAttribute> or the PpsAttributeMap itself, and an invalid variant for None.
     *
     * \sa PpsObject::decode(), which gives plain maps and lists
     */
    QVariant toVariant() const;

    /*!
     * Whether types, flags and values are equal, at every depth.
     *
     * Numbers are compared by value, so the int 5 equals the double 5.0. Two doubles must be exactly equal; a double and
     * an integer may differ by rounding, as in qFuzzyCompare().
     */
    bool operator==(const PpsAttribute &other) const;
    bool operator!=(const PpsAttribute &other) const;

private:
    friend class PpsAttributePrivate;

    QSharedDataPointer<PpsAttributePrivate> d;
};

/*!
 * Writes an attribute with its type, flags and value: PpsAttribute( Number,  QFlags(0x4),  5 ), and on a stream without
 * spaces PpsAttribute(Number, QFlags(0x4), 5). What is inside an array or an object is always written without.
 */
KELP_EXPORT QDebug operator<<(QDebug dbg, const PpsAttribute &attribute);

} // namespace kelp

Q_DECLARE_TYPEINFO(kelp::PpsAttribute, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(PpsAttributeMap)
Q_DECLARE_METATYPE(QList<kelp::PpsAttribute>)

#endif
