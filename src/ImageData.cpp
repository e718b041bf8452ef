// SPDX-License-Identifier: Apache-2.0
// See kelp/ImageData.h, and ImageDataPrivate for what the copies share; here also the printers of images and formats.

#include <kelp/ImageData.h>

#include "ImageDataPrivate.h"

#include <QtCore/QDebug>

namespace kelp {

ImageData::ImageData() : d(new ImageDataPrivate) {}

ImageData::ImageData(PixelFormat::Type format, int width, int height)
    : d(new ImageDataPrivate(format, width, height))
{}

ImageData::ImageData(const ImageData &other) = default;

ImageData &ImageData::operator=(const ImageData &other) = default;

ImageData::~ImageData() = default;

ImageData ImageData::fromPixels(const unsigned char *pixels, PixelFormat::Type format, int width, int height,
                                int bytesPerLine)
{
    ImageData image(format, width, height);
    if (image.isValid() && pixels) {
        image.d->copyRows(pixels, bytesPerLine);
    }
    return image;
}

bool ImageData::isValid() const
{
    return constPixels() != nullptr;
}

int ImageData::width() const
{
    return d->width;
}

int ImageData::height() const
{
    return d->height;
}

int ImageData::bytesPerLine() const
{
    return d->bytesPerLine;
}

PixelFormat::Type ImageData::format() const
{
    return d->format;
}

unsigned char *ImageData::pixels()
{
    const ImageDataPrivate *own = d.data(); // detaches
    // The pointer asks relaxed whether it is the only one. Acquire, so that what another thread read through its copy
    // before it released it comes before what the caller is going to write.
    (void)own->ref.loadAcquire();
    return own->pixels.get();
}

const unsigned char *ImageData::pixels() const
{
    return constPixels();
}

const unsigned char *ImageData::constPixels() const
{
    return d->pixels.get();
}

QDebug operator<<(QDebug dbg, PixelFormat::Type format)
{
    switch (format) {
    case PixelFormat::RGBX:
        return dbg << "RGBX";
    case PixelFormat::RGBA_Premultiplied:
        return dbg << "RGBA"; // the short word, on purpose
    }
    return dbg << "unknown(" << static_cast<int>(format) << ")";
}

QDebug operator<<(QDebug dbg, const ImageData &image)
{
    dbg.nospace() << "ImageData(" << static_cast<const void *>(image.constPixels()) << ", " << image.width()
                  << " x " << image.height() << ", " << image.bytesPerLine() << ", " << image.format() << ")";
    return dbg.space(); // also if there were none before
}

} // namespace kelp
