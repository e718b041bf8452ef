// SPDX-License-Identifier: Apache-2.0
// The running application's package manifest as one flat table of attributes. PackageInfo and ApplicationInfo
// own one each; it is read when it is made, and never again.
#pragma once

#include <QtCore/QLatin1String>
#include <QtCore/QMap>
#include <QtCore/QString>

class QIODevice;
class QTextStream;

namespace kelp {

class CaskParser
{
public:
    // Reads the manifest below the current directory. One that is missing or malformed gives warnings and no
    // attributes at all.
    CaskParser();

    // Reads a manifest from a device that is open for reading, in text mode; for the fuzz target.
    explicit CaskParser(QIODevice *device);

    // The value stored under exactly this name; null when there is none.
    QString attributeValue(const QString &name) const;

    // The same, with something else in place of a value that is missing or empty.
    QString attributeValue(const QString &name, const QString &valueIfEmpty) const;

    int numberOfAttributes();

    // An identifier or a hash as applications see it: "." in place of each "-".
    static QString changeEncoding(QString value);

private:
    using Attributes = QMap<QString, QString>;

    void parse();
    void parse(QIODevice *device);

    // Reads up to the empty line that ends the section, or to the end. False, with a warning for a line that
    // does not belong there, also when there is no attribute.
    bool parseSection(QTextStream &stream, const QLatin1String &prefix);

    // Puts the attribute that the line gives into the table, at best right behind another one. The end, with
    // a warning, for a malformed line.
    Attributes::iterator addAttribute(const QString &line, const QLatin1String &prefix,
                                      Attributes::iterator previous);

    Attributes _attributes; // values by name; of all sections, whose prefixes keep them apart
};

} // namespace kelp
