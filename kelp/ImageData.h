// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_IMAGEDATA_H
#define KELP_IMAGEDATA_H

#include <kelp/Export.h>
#include <kelp/PixelFormat.h>

#include <QtCore/QSharedDataPointer>

namespace kelp {

/*!
 * A block of pixels with its width, height and format, cheap to pass by value.
 *
 * The object owns its pixels. Copies of it share them until one asks for writable ones: that one gets pixels of its own
 * first. The last copy frees them.
 *
 * \code
 * kelp::ImageData image(kelp::PixelFormat::RGBX, 640, 480);
 * if (image.isValid()) {
 *     std::memset(image.pixels(), 0xff, std::size_t(image.bytesPerLine()) * image.height());
 * }
 * \endcode
 *
 * A pixel has 4 bytes. Rows lie from top to bottom without a gap, so that each begins 4 * width() bytes after the one
 * above. An image has at most 2,147,483,647 bytes.
 *
 * What fails gives a warning in the log and an invalid image, which still has the width, height and format that were
 * asked for.
 *
 * Threads: a copy may be used on any thread, also while others are used elsewhere. Nothing guards one object that
 * several threads use, nor the pixels behind a pointer that an object has given away.
 */
class KELP_EXPORT ImageData
{
public:
    /*! An empty image: invalid, all of its sizes 0, its format RGBA_Premultiplied. Gives no warning. */
    ImageData();

    /*!
     * An image of \a width times \a height pixels, whose bytes have no particular values yet.
     *
     * Invalid with a warning when either is less than 1, when the pixels would have more than 2,147,483,647 bytes, when
     * \a format is none of PixelFormat's, and when the memory is not to be had.
     *
     * \sa isValid()
     */
    ImageData(PixelFormat::Type format, int width, int height);

    /*! Shares the pixels of \a other; none are copied. */
    ImageData(const ImageData &other);
    ImageData &operator=(const ImageData &other);
    ~ImageData();

    /*!
     * An image with a copy of \a pixels, which stay the caller's and are not needed afterwards.
     *
     * Rows of the source begin \a bytesPerLine bytes apart, whatever lies between them, and the first 4 * \a width bytes
     * of each are read. Rows may overlap; with a negative distance \a pixels is the source's last row in memory, and the
     * image's first. The image itself has no gaps.
     *
     * Invalid with a warning as the constructor says. When \a pixels is null, the image is valid, but its bytes have no
     * particular values.
     */
    static ImageData fromPixels(const unsigned char *pixels, PixelFormat::Type format, int width, int height,
                                int bytesPerLine);

    /*! Whether there are pixels. */
    bool isValid() const;

    /*! In pixels, as it was asked for; the same for height(), in rows. An invalid image may have a negative one. */
    int width() const;
    int height() const;

    /*!
     * The distance between the beginnings of two rows in bytes: 4 * width().
     *
     * 0 when that is more than 2,147,483,647, and when the format is unknown.
     */
    int bytesPerLine() const;

    /*! As it was asked for, also if it is none of PixelFormat's. */
    PixelFormat::Type format() const;

    /*!
     * The pixels to write to, height() times bytesPerLine() bytes of them; null when the image is invalid.
     *
     * While other objects share the pixels, this one first gets a copy of them, so that they do not see the change. When
     * there is no memory for that it gives a warning, and this image has become an invalid one. A shared image
     * that is invalid for its dimensions gives their warning anew; one that lacked memory asks for it again, and if it gets
     * it becomes a valid image whose bytes have no particular values.
     *
     * The pointer holds until this object is destroyed, assigned to, or asked for writable pixels while copies share
     * them. Copy the object only when the writing is over: from then on the copies share what the pointer points to, and
     * would see it change.
     */
    unsigned char *pixels();

    /*! The same as constPixels(). */
    const unsigned char *pixels() const;

    /*!
     * The pixels to read, which are not copied; null when the image is invalid.
     *
     * The pointer holds until this object is destroyed, assigned to or asked for writable pixels().
     */
    const unsigned char *constPixels() const;

private:
    class ImageDataPrivate;

    QSharedDataPointer<ImageDataPrivate> d;
};

/*!
 * Writes an image's address, size, distance of rows in bytes and format, as in ImageData(0x7f5c, 640 x 480, 2560, RGBA)
 * and a space. The stream then puts spaces between items, whether or not it did before.
 */
KELP_EXPORT QDebug operator<<(QDebug dbg, const ImageData &image);

} // namespace kelp

Q_DECLARE_TYPEINFO(kelp::ImageData, Q_MOVABLE_TYPE);

#endif
