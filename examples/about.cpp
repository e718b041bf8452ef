// SPDX-License-Identifier: Apache-2.0
// An application that prints what it can know of itself and of the device: its package, the memory and the storage,
// and what becomes of an image that is passed by value.
//
//     cd examples/about && kelp-device run -- about
//
// prints its lines, then one for each warning of low memory, until it is asked to exit. A package's manifest lies in
// app/META-INF below the directory in which its application starts; this one's is in examples/about.

#include <kelp/Application>
#include <kelp/ApplicationInfo>
#include <kelp/FileSystemInfo>
#include <kelp/ImageData>
#include <kelp/MemoryInfo>
#include <kelp/PackageInfo>

#include <QtCore/QDebug>
#include <QtCore/QMetaEnum>
#include <QtCore/QTextStream>

#include <cstdio>

namespace {

// One line at once, so that whoever reads the other end of a pipe sees each as it happens.
void say(const char *what, const QString &value)
{
    QTextStream out(stdout);
    out << what << ": " << value << '\n';
}

void say(const char *what, qint64 number)
{
    say(what, QString::number(number));
}

void printPackage()
{
    const kelp::PackageInfo package;
    say("package", package.name());
    say("install id", package.installId());
    say("package version", package.version());
    say("author", package.author());
    say("description", package.description());
    say("needs system", package.systemDependency());
    QStringList languages;
    for (const QLocale &locale : package.locales()) {
        languages.append(QLocale::languageToString(locale.language()));
    }
    say("languages", languages.join(QLatin1String(", ")));

    const kelp::ApplicationInfo application;
    say("title", application.title());
    say("version", application.version());
}

// In bytes, all of them.
void printMemory(const kelp::MemoryInfo &memory)
{
    say("device memory", memory.totalDeviceMemory());
    say("available memory", memory.availableDeviceMemory());
    say("memory of this process", memory.memoryUsedByCurrentProcess());
}

void printStorage()
{
    kelp::FileSystemInfo storage;
    say("storage", storage.physicalCapacity());
    say("capacity of /", storage.fileSystemCapacity(QStringLiteral("/")));
    say("free on /", storage.availableFileSystemSpace(QStringLiteral("/")));
    if (storage.fileSystemCapacity(QStringLiteral("/no such place")) == -1) {
        say("capacity of /no such place", storage.errorString());
    }
}

// The caller's image keeps its pixels: writing gives this one pixels of its own.
kelp::ImageData inverted(kelp::ImageData image)
{
    unsigned char *pixel = image.pixels();
    const unsigned char *const end = pixel + qint64(image.height()) * image.bytesPerLine();
    for (; pixel != end; ++pixel) {
        *pixel = static_cast<unsigned char>(~*pixel);
    }
    return image;
}

void printImages()
{
    constexpr unsigned char CHECKERBOARD[] = {0, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 0};
    const auto image = kelp::ImageData::fromPixels(CHECKERBOARD, kelp::PixelFormat::RGBX, 2, 2, 8);
    kelp::ImageData shared;
    shared = image;
    const kelp::ImageData other = inverted(image);
    say("a copy shares the pixels",
        shared.constPixels() == image.constPixels() ? QStringLiteral("yes") : QStringLiteral("no"));
    say("first pixel", image.constPixels()[0]);
    say("first pixel inverted", other.constPixels()[0]);
}

} // namespace

int main(int argc, char **argv)
{
    kelp::Application app(argc, argv);
    const kelp::MemoryInfo memory;
    QObject::connect(&memory, QOverload<kelp::LowMemoryWarningLevel::Type>::of(&kelp::MemoryInfo::lowMemory),
                     [](kelp::LowMemoryWarningLevel::Type level) {
                         const auto keys = QMetaEnum::fromType<kelp::LowMemoryWarningLevel::Type>();
                         say("low memory", QLatin1String(keys.valueToKey(level)));
                     });
    printPackage();
    printMemory(memory);
    printStorage();
    printImages();
    say("process", QCoreApplication::applicationPid());
    return app.exec();
}
