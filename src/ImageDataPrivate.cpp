// SPDX-License-Identifier: Apache-2.0
// See ImageDataPrivate.h. All of ImageData's arithmetic of sizes, its allocation and its copying of pixels.

#include "ImageDataPrivate.h"

#include <QtCore/QDebug>

#include <cstddef>
#include <cstring>
#include <limits>
#include <new>

namespace kelp {

namespace {

constexpr qint64 BYTES_PER_PIXEL = 4;
constexpr qint64 MOST_BYTES = std::numeric_limits<int>::max();

// Of a negative width, the low 32 bits: the image is invalid, but shows them.
int rowLength(PixelFormat::Type format, int width)
{
    switch (format) {
    case PixelFormat::RGBX:
    case PixelFormat::RGBA_Premultiplied: {
        const qint64 length = BYTES_PER_PIXEL * width;
        return length > MOST_BYTES ? 0 : static_cast<int>(length);
    }
    }
    qWarning() << "ImageData: invalid pixel format";
    return 0;
}

// Not initialised: most callers overwrite all of it at once.
std::unique_ptr<unsigned char[]> allocate(int width, int height, int bytesPerLine)
{
    const qint64 size = qint64(bytesPerLine) * height;
    if (width < 1 || height < 1 || size == 0 || size > MOST_BYTES) {
        qWarning() << "ImageData: Could not allocate - invalid dimensions";
        return nullptr;
    }
    std::unique_ptr<unsigned char[]> pixels(new (std::nothrow) unsigned char[static_cast<std::size_t>(size)]);
    if (!pixels) {
        qWarning() << "ImageData: Could not allocate";
    }
    return pixels;
}

} // namespace

// The length is computed twice on purpose: with an unknown format applications expect its warning before and after that
// of the dimensions.
ImageData::ImageDataPrivate::ImageDataPrivate(PixelFormat::Type imageFormat, int imageWidth, int imageHeight)
    : pixels(allocate(imageWidth, imageHeight, rowLength(imageFormat, imageWidth))),
      width(imageWidth),
      height(imageHeight),
      bytesPerLine(rowLength(imageFormat, imageWidth)),
      format(imageFormat)
{}

ImageData::ImageDataPrivate::ImageDataPrivate(const ImageDataPrivate &other)
    : QSharedData(other),
      pixels(allocate(other.width, other.height, other.bytesPerLine)),
      width(other.width),
      height(other.height),
      bytesPerLine(other.bytesPerLine),
      format(other.format)
{
    if (pixels && other.pixels) {
        copyRows(other.pixels.get(), other.bytesPerLine);
    }
}

void ImageData::ImageDataPrivate::copyRows(const unsigned char *source, int sourceBytesPerLine)
{
    const auto length = static_cast<std::size_t>(bytesPerLine); // of a row: there are no gaps here
    const auto rows = static_cast<std::size_t>(height);
    if (sourceBytesPerLine == bytesPerLine) {
        std::memcpy(pixels.get(), source, length * rows);
        return;
    }
    for (std::size_t row = 0; row < rows; ++row) {
        const auto distance = static_cast<std::ptrdiff_t>(row) * sourceBytesPerLine; // which may be negative
        std::memcpy(pixels.get() + row * length, source + distance, length);
    }
}

} // namespace kelp
