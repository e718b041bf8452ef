// SPDX-License-Identifier: Apache-2.0
// What does it cost to read an application's manifest?
//
// Measures opening and parsing the file and giving one value, beside QSettings with an INI file of the same
// attributes, for manifests of 20 and of 2,000 lines. QSettings remembers the last few files that it has
// read, and goes round more of them than that. Before that, both have to give the same values.
//
// Guards: less time than QSettings. Run it without arguments.

#include "Calls.h"
#include "CaskParser.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>

#include <cstdio>
#include <stdexcept>
#include <utility>

using namespace kelp::bench;

namespace {

constexpr int INI_FILES = 8;

void check(bool holds, const char *what)
{
    if (!holds) {
        throw std::runtime_error(what);
    }
}

void write(const QString &path, const QByteArray &text)
{
    QFile file(path);
    check(QDir().mkpath(path.section('/', 0, -2)) && file.open(QIODevice::WriteOnly) &&
              file.write(text) == text.size(),
          "a file cannot be written");
}

using Attributes = QList<std::pair<QByteArray, QByteArray>>;

// As many lines as a manifest of these attributes has.
Attributes attributesOf(int lines)
{
    Attributes attributes{{"Archive-Manifest-Version", "1.1"},
                          {"Package-Type", "application"},
                          {"Package-Name", "com.example.notes"}};
    const int separators = 2;
    for (int i = attributes.size() + separators; i < lines; ++i) {
        attributes.append({"Application-Entry-" + QByteArray::number(i) + "-Name",
                           "assets/images/entry" + QByteArray::number(i * 7919) + ".png"});
    }
    return attributes;
}

QByteArray sectionOf(const QByteArray &name)
{
    return name.left(name.indexOf('-'));
}

QByteArray manifestOf(const Attributes &attributes)
{
    QByteArray text;
    QByteArray section = "Archive";
    for (const auto &[name, value] : attributes) {
        text += std::exchange(section, sectionOf(name)) == section ? "" : "\n";
        text += name + ": " + value + '\n';
    }
    return text;
}

QByteArray iniOf(const Attributes &attributes)
{
    QByteArray text;
    QByteArray section;
    for (const auto &[name, value] : attributes) {
        const bool isSame = std::exchange(section, sectionOf(name)) == section;
        text += (isSame ? "" : '[' + section + "]\n") + name + '=' + value + '\n';
    }
    return text;
}

// One set of attributes, in files of both kinds.
class Contest
{
public:
    Contest(const std::string &name, int lines)
        : _attributes(attributesOf(lines)),
          _comparison("read a manifest, " + name, "ns")
    {
        check(manifestOf(_attributes).count('\n') == lines, "a manifest has other lines than it should");
        write(_root.filePath("app/META-INF/MANIFEST.MF"), manifestOf(_attributes));
        for (int i = 0; i < INI_FILES; ++i) {
            _iniFiles += _root.filePath(QString::number(i) + ".ini");
            write(_iniFiles.back(), iniOf(_attributes));
        }
        checkValues();
        addManifest(name);
        addSettings(name);
    }
    Contest(const Contest &) = delete; // what is measured stays where it is
    Contest &operator=(const Contest &) = delete;

    const Comparison &comparison() const { return _comparison; }

private:
    static QString keyOf(const QByteArray &name) { return sectionOf(name) + '/' + name; }

    // To be called where a manifest is to be read.
    void enter() const { check(QDir::setCurrent(_root.path()), "a directory cannot be entered"); }

    void checkValues() const
    {
        const QSettings settings(_iniFiles.front(), QSettings::IniFormat);
        enter();
        kelp::CaskParser parser;
        check(parser.numberOfAttributes() == _attributes.size(), "the manifest has other attributes");
        for (const auto &[name, value] : _attributes) {
            check(parser.attributeValue(name) == QString(value), "the manifest has another value");
            check(settings.value(keyOf(name)) == QString(value), "the settings have another value");
        }
    }

    void addManifest(const std::string &name)
    {
        const QString lastName = _attributes.back().first;
        measure(name + " CaskParser", _comparison.add("CaskParser", {1, 0}),
                [this, lastName](benchmark::State &state) {
                    enter();
                    for (auto _ : state) {
                        benchmark::DoNotOptimize(kelp::CaskParser().attributeValue(lastName));
                    }
                });
    }

    void addSettings(const std::string &name)
    {
        const QString lastKey = keyOf(_attributes.back().first);
        measure(name + " QSettings", _comparison.addPeer("QSettings"),
                [this, lastKey](benchmark::State &state) {
                    int i = 0;
                    for (auto _ : state) {
                        const QSettings settings(_iniFiles.at(i++ % INI_FILES), QSettings::IniFormat);
                        benchmark::DoNotOptimize(settings.value(lastKey));
                    }
                });
    }

    const QTemporaryDir _root;
    const Attributes _attributes;
    QStringList _iniFiles; // with the same text
    Comparison _comparison;
};

void compareReaders()
{
    const Contest contests[] = {{"20 lines", 20}, {"2,000 lines", 2000}};
    runCalls();
    for (const Contest &contest : contests) {
        contest.comparison().print();
    }
}

} // namespace

int main()
{
    try {
        compareReaders();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "manifest: %s\n", error.what());
        return 1;
    }
}
