// SPDX-License-Identifier: Apache-2.0
// ImageData: what cannot be had. A program of its own, for it replaces operators of the language.

#include "MessageLog.h"
#include "tests/unit/FailingMemory.h"

#include <kelp/ImageData.h>

#include <QtTest/QtTest>

#include <climits>
#include <memory>
#include <optional>

using kelp::ImageData;
using kelp::PixelFormat;

namespace {

const char FORMAT[] = "warning: ImageData: invalid pixel format";
const char DIMENSIONS[] = "warning: ImageData: Could not allocate - invalid dimensions";
const char MEMORY[] = "warning: ImageData: Could not allocate";

// What becomes of an image, and of a shared copy that is asked for writable pixels, when there is no memory.
const struct {
    const char *name;
    PixelFormat::Type format;
    int width;
    int height;
    int bytesPerLine;
    std::size_t wanted;
    QStringList warnings;
    QStringList whenDetached;
} ROWS[] = {
    {"one pixel", PixelFormat::RGBX, 1, 1, 4, 4, {MEMORY}, {MEMORY}},
    {"no width", PixelFormat::RGBX, 0, 10, 0, 0, {DIMENSIONS}, {DIMENSIONS}},
    {"no height", PixelFormat::RGBX, 10, 0, 40, 0, {DIMENSIONS}, {DIMENSIONS}},
    {"negative", PixelFormat::RGBX, -5, -5, -20, 0, {DIMENSIONS}, {DIMENSIONS}},
    {"negative, 32 bits", PixelFormat::RGBX, -1000000000, INT_MAX, 294967296, 0, {DIMENSIONS}, {DIMENSIONS}},
    {"widest", PixelFormat::RGBA_Premultiplied, 536870911, 1, 2147483644, 2147483644, {MEMORY}, {MEMORY}},
    {"too wide", PixelFormat::RGBA_Premultiplied, 536870912, 1, 0, 0, {DIMENSIONS}, {DIMENSIONS}},
    {"highest", PixelFormat::RGBX, 1, 536870911, 4, 2147483644, {MEMORY}, {MEMORY}},
    {"too high", PixelFormat::RGBX, 1, 536870912, 4, 0, {DIMENSIONS}, {DIMENSIONS}},
    {"32 bits are few", PixelFormat::RGBX, 100000, 100000, 400000, 0, {DIMENSIONS}, {DIMENSIONS}},
    {"format", PixelFormat::Type(5), 10, 10, 0, 0, {FORMAT, DIMENSIONS, FORMAT}, {DIMENSIONS}},
};

} // namespace

class tst_ImageDataMemory : public QObject
{
    Q_OBJECT

    std::unique_ptr<MessageLog> _messages;

private Q_SLOTS:
    void init() { _messages = std::make_unique<MessageLog>(); }

    void cleanup()
    {
        QCOMPARE(_messages->take(), QStringList());
        _messages.reset();
    }

    void whatCannotBeAllocatedWarnsAndKeepsItsFields()
    {
        const FailingMemory failing;
        for (const auto &row : ROWS) {
            const ImageData image(row.format, row.width, row.height);
            QVERIFY2(_messages->take() == row.warnings, row.name);
            QVERIFY2(FailingMemory::takeRefused() == row.wanted, row.name);

            ImageData copy = image;
            QVERIFY2(!copy.pixels() && !copy.pixels(), row.name); // shared the first time only
            QVERIFY2(_messages->take() == row.whenDetached, row.name);
            QVERIFY2(FailingMemory::takeRefused() == row.wanted, row.name);
            for (const ImageData &each : {image, copy}) {
                QVERIFY2(!each.isValid() && !each.pixels(), row.name);
                QVERIFY2(each.width() == row.width && each.height() == row.height, row.name);
                QVERIFY2(each.bytesPerLine() == row.bytesPerLine && each.format() == row.format, row.name);
            }
        }
    }

    void memoryThatIsGoneMayComeBack()
    {
        const unsigned char black[4] = {};
        std::optional<FailingMemory> failing(std::in_place);
        QVERIFY(!ImageData::fromPixels(black, PixelFormat::RGBX, 1, 1, 4).isValid());
        const ImageData image(PixelFormat::RGBX, 1, 1);
        ImageData copy = image;
        failing.reset();
        copy.pixels()[3] = 1;
        QVERIFY(copy.isValid() && !image.isValid());
        QCOMPARE(_messages->take(), QStringList({MEMORY, MEMORY}));

        ImageData another = copy;
        failing.emplace();
        QVERIFY(!another.pixels());
        QCOMPARE(int(copy.constPixels()[3]), 1);
        QCOMPARE(_messages->take(), QStringList({MEMORY}));
    }
};

QTEST_APPLESS_MAIN(tst_ImageDataMemory)
#include "tst_ImageDataMemory.moc"
