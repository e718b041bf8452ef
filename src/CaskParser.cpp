// SPDX-License-Identifier: Apache-2.0
// See CaskParser.h. A failure anywhere leaves no attribute, also none of the sections before it.

#include "CaskParser.h"

#include "Messages.h"
#include "qtcompat_p.h"

#include <QtCore/QFile>
#include <QtCore/QTextStream>

#include <iterator>

namespace kelp {

namespace {

const char FORMAT_ERROR[] = "CaskParser: file format error: ";

} // namespace

CaskParser::CaskParser()
{
    parse();
}

CaskParser::CaskParser(QIODevice *device)
{
    parse(device);
}

QString CaskParser::attributeValue(const QString &name) const
{
    return _attributes.value(name);
}

QString CaskParser::attributeValue(const QString &name, const QString &valueIfEmpty) const
{
    const QString value = attributeValue(name);
    return value.isEmpty() ? valueIfEmpty : value;
}

int CaskParser::numberOfAttributes()
{
    return static_cast<int>(_attributes.size());
}

QString CaskParser::changeEncoding(QString value)
{
    return value.replace(QLatin1Char('-'), QLatin1Char('.'));
}

void CaskParser::parse()
{
    QFile file(QStringLiteral("app/META-INF/MANIFEST.MF"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qWarning() << "CaskParser: Failed to open the MANIFEST.MF file";
        return;
    }
    parse(&file);
}

void CaskParser::parse(QIODevice *device)
{
    QTextStream stream(device);
    readAsUtf8(stream);
    const char *warning = nullptr;
    if (!parseSection(stream, QLatin1String("Archive-"))) {
        warning = "CaskParser: Failed to parse the Archive section";
    } else if (!parseSection(stream, QLatin1String("Package-"))) {
        warning = "CaskParser: Failed to parse the Package section";
    } else if (attributeValue(QStringLiteral("Package-Type")) == QLatin1String("application") &&
               !parseSection(stream, QLatin1String("Application-"))) {
        warning = "CaskParser: Failed to parse the Application section";
    }
    if (warning) {
        qWarning() << warning;
        _attributes.clear();
    }
}

bool CaskParser::parseSection(QTextStream &stream, const QLatin1String &prefix)
{
    // The section's last attribute. Looking it up by name for each continuation line would take time that
    // grows with the length of the name.
    Attributes::iterator last = _attributes.end();
    QString line;
    while (!stream.atEnd() && stream.readLineInto(&line) && !line.isEmpty()) {
        if (!line.startsWith(QLatin1Char(' '))) {
            last = addAttribute(line, prefix, last);
        } else if (last != _attributes.end()) {
            last->append(line.constData() + 1, line.size() - 1);
        } else {
            qWarning() << FORMAT_ERROR << "an attribute line should not start with a white space";
        }
        if (last == _attributes.end()) {
            return false;
        }
    }
    return last != _attributes.end();
}

CaskParser::Attributes::iterator CaskParser::addAttribute(const QString &line, const QLatin1String &prefix,
                                                          Attributes::iterator previous)
{
    if (!line.startsWith(prefix)) {
        qWarning() << FORMAT_ERROR << "all keys in the current section should start with "
                   << Quoted{QString(prefix)};
        return _attributes.end();
    }
    const QLatin1String separator(": ");
    const auto nameLength = line.indexOf(separator);
    if (nameLength < 0) {
        qWarning() << FORMAT_ERROR << "an attribute line should contain a \": \" separator";
        return _attributes.end();
    }
    // In a sorted manifest the name's place is behind the one before it, and need not be searched for.
    const auto next = previous == _attributes.end() ? previous : std::next(previous);
    return _attributes.insert(next, line.left(nameLength), line.mid(nameLength + separator.size()));
}

} // namespace kelp
