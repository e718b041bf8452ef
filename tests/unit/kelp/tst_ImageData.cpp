// SPDX-License-Identifier: Apache-2.0
// ImageData: its sizes, what it copies from where, what copies of it share, and what it prints.

#include "MessageLog.h"

#include <kelp/ImageData.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QDebug>
#include <QtCore/QMetaEnum>
#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

using kelp::ImageData;
using kelp::PixelFormat;

namespace {

const PixelFormat::Type UNKNOWN = PixelFormat::Type(5);

// Images of 2 times 3 pixels out of bytes that count from 0, and the first byte of each row.
const struct {
    const char *name;
    int bytes;
    int first;
    int bytesPerLine;
    QVector<int> rows;
} SOURCES[] = {{"tight", 24, 0, 8, {0, 8, 16}},
               {"padded", 48, 0, 20, {0, 20, 40}},
               {"overlapping", 14, 0, 3, {0, 3, 6}},
               {"the same row", 8, 0, 0, {0, 0, 0}},
               {"upside down", 24, 16, -8, {16, 8, 0}}};

template <typename... Items>
QString printed(bool isSpaced, const Items &...items)
{
    QString text;
    QDebug stream(&text);
    stream.setAutoInsertSpaces(isSpaced);
    (stream << ... << items);
    return text;
}

void fill(ImageData &image, int value)
{
    std::memset(image.pixels(), value, std::size_t(image.bytesPerLine()) * image.height());
}

bool isFilled(const ImageData &image, int value)
{
    const unsigned char *end = image.constPixels() + std::size_t(image.bytesPerLine()) * image.height();
    return std::all_of(image.constPixels(), end, [value](unsigned char byte) { return byte == value; });
}

// Copies, detaches and releases the image again and again. Whether nobody else's writing was seen.
bool churn(const ImageData &image, int own)
{
    bool isIntact = true;
    for (int i = 0; i < 200; ++i) {
        ImageData copy = image;
        fill(copy, own);
        isIntact = isIntact && isFilled(image, 1) && isFilled(copy, own);
    }
    return isIntact;
}

} // namespace

class tst_ImageData : public QObject
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

    void rowsAreReadWhereTheSourceHasThem()
    {
        for (const auto &source : SOURCES) {
            std::vector<unsigned char> bytes(source.bytes);
            std::iota(bytes.begin(), bytes.end(), 0);

            const ImageData image = ImageData::fromPixels(bytes.data() + source.first, PixelFormat::RGBX, 2,
                                                          3, source.bytesPerLine);

            QVERIFY2(image.isValid() && image.bytesPerLine() == 8, source.name);
            for (int i = 0; i < 24; ++i) {
                QVERIFY2(image.constPixels()[i] == source.rows.at(i / 8) + i % 8, source.name);
            }
        }
        QVERIFY(ImageData::fromPixels(nullptr, PixelFormat::RGBX, 2, 3, 8).isValid());
    }

    void copiesShareThePixelsUntilOneIsWritten()
    {
        ImageData first(PixelFormat::RGBA_Premultiplied, 3, 2);
        fill(first, 1);
        ImageData second = first;
        ImageData third;
        third = second;
        QVERIFY(third.constPixels() == first.constPixels());

        unsigned char *own = first.pixels();
        QVERIFY(own != second.constPixels() && isFilled(first, 1));
        fill(first, 2);

        QVERIFY(isFilled(first, 2) && isFilled(second, 1) && isFilled(third, 1));
        const ImageData &same = first;
        first = same;
        QVERIFY(first.pixels() == own && same.pixels() == own);
    }

    void threadsMayShareAnImageAndTheLastOneWritesInPlace()
    {
        ImageData image(PixelFormat::RGBX, 16, 16);
        fill(image, 1);
        const unsigned char *pixels = image.constPixels();
        std::vector<ImageData> copies(4, image);
        bool isIntact[4] = {};
        std::atomic<int> released{0}; // relaxed: only the image itself orders the threads
        std::thread threads[4];
        for (int i = 0; i < 4; ++i) {
            threads[i] = std::thread([&copies, &isIntact, &released, i] {
                isIntact[i] = churn(copies[i], 2 + i);
                copies[i] = ImageData();
                released.fetch_add(1, std::memory_order_relaxed);
            });
        }
        const QDeadlineTimer limit(60000);
        while (released.load(std::memory_order_relaxed) < 4 && !limit.hasExpired()) {
            std::this_thread::yield();
        }

        fill(image, 2);

        for (std::thread &thread : threads) {
            thread.join();
        }
        QVERIFY(image.constPixels() == pixels);
        QVERIFY(isIntact[0] && isIntact[1] && isIntact[2] && isIntact[3]);
    }

    void imagesAndFormatsPrint()
    {
        QCOMPARE(printed(true, PixelFormat::RGBX, PixelFormat::RGBA_Premultiplied, UNKNOWN, 1),
                 "RGBX RGBA unknown( 5 ) 1 ");
        QCOMPARE(printed(false, PixelFormat::RGBX, PixelFormat::RGBA_Premultiplied, UNKNOWN, 1),
                 "RGBXRGBAunknown(5)1");
        QCOMPARE(QMetaEnum::fromType<PixelFormat::Type>().valueToKey(1), "RGBA_Premultiplied");

        const ImageData image(PixelFormat::RGBA_Premultiplied, 640, 480);
        const QString address = QString::number(quintptr(image.constPixels()), 16);
        QCOMPARE(printed(false, image, 1), // in the end it is spaced
                 QString("ImageData(0x%1, 640 x 480, 2560, RGBA) 1 ").arg(address));
        QCOMPARE(printed(true, ImageData()), "ImageData(0x0, 0 x 0, 0, RGBA) ");
        QCOMPARE(printed(true, ImageData(UNKNOWN, 1, 1)), "ImageData(0x0, 1 x 1, 0, unknown(5)) ");
        QCOMPARE(_messages->take().size(), 3);
    }
};

QTEST_APPLESS_MAIN(tst_ImageData)
#include "tst_ImageData.moc"
