// SPDX-License-Identifier: Apache-2.0
// What the copies of an ImageData share. Copying it copies the pixels: that is how one of them detaches.
#pragma once

#include <kelp/ImageData.h>

#include <QtCore/QSharedData>

#include <memory>

namespace kelp {

class Q_DECL_HIDDEN ImageData::ImageDataPrivate : public QSharedData
{
public:
    ImageDataPrivate() = default;
    ImageDataPrivate(PixelFormat::Type imageFormat, int imageWidth, int imageHeight);
    ImageDataPrivate(const ImageDataPrivate &other);
    ImageDataPrivate &operator=(const ImageDataPrivate &) = delete;
    ~ImageDataPrivate() = default;

    // Fills the pixels, which there must be, from rows that begin sourceBytesPerLine bytes apart.
    void copyRows(const unsigned char *source, int sourceBytesPerLine);

    std::unique_ptr<unsigned char[]> pixels; // null in an invalid image
    int width = 0;                           // in pixels, as asked for: also negative
    int height = 0;                          // in rows, likewise
    int bytesPerLine = 0;                    // from row to row
    PixelFormat::Type format = PixelFormat::RGBA_Premultiplied;
};

} // namespace kelp
