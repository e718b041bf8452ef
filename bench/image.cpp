// SPDX-License-Identifier: Apache-2.0
// What does a copy of an image cost?
//
// Measures ImageData::fromPixels(), of rows that lie close together and of padded ones, and the first pixels() of a
// shared image, beside new[], memcpy() and delete[] of as many bytes (row by row where the source is padded), and beside
// QImage. All allocate, copy and release the copy before. "Same" copies one image into the same memory again and again;
// "many" takes turns among more images, and results, than a cache holds. Before that, each has to give back the pixels.
//
// malloc() keeps blocks of these sizes once one has been released, so that no pages are fetched anew: what an
// application sees from its second image on. For the first one, run it with
// GLIBC_TUNABLES=glibc.malloc.mmap_threshold=131072.
//
// Guards: at most 1.05 times memcpy(). Run it without arguments; it takes 2 GB of memory.

#include "Calls.h"
#include "Comparison.h"

#include <kelp/ImageData.h>

#include <QtGui/QImage>

#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <variant>
#include <vector>

using namespace kelp::bench;
using kelp::ImageData;

namespace {

constexpr double MEMCPY_RATIO = 1.05;
constexpr std::size_t BYTES_OF_MANY = 320 << 20; // and as much for their copies
constexpr int PADDING = 64;
constexpr auto FORMAT = kelp::PixelFormat::RGBX;

using Bytes = std::unique_ptr<unsigned char[]>;
using Copy = std::variant<std::monostate, Bytes, ImageData, QImage>;

const unsigned char *pixelsOf(const Copy &copy)
{
    if (const auto *bytes = std::get_if<Bytes>(&copy)) {
        return bytes->get();
    }
    const auto *image = std::get_if<ImageData>(&copy);
    return image ? image->constPixels() : std::get<QImage>(copy).constBits();
}

// The images of one size, and the ways to copy them: each takes an image's number, and the distance of the source's rows
// where that matters.
class Gallery
{
public:
    Gallery(int width, int height) : _width(width), _height(height)
    {
        const std::size_t bytes = std::size_t(paddedLine()) * std::size_t(height);
        while ((_sources.size() + 1) * bytes <= BYTES_OF_MANY) {
            std::vector<unsigned char> &source = _sources.emplace_back(bytes);
            std::iota(source.begin(), source.end(), static_cast<unsigned char>(_sources.size()));
            _images.push_back(ImageData::fromPixels(source.data(), FORMAT, width, height, tightLine()));
        }
        _copies.resize(count());
        for (std::size_t i = 0; i < count(); ++i) {
            copyNext(&Gallery::byMemcpy, tightLine(), count()); // so that there is one to replace
        }
    }
    Gallery(const Gallery &) = delete; // what is measured stays where it is
    Gallery &operator=(const Gallery &) = delete;

    std::size_t count() const { return _sources.size(); }
    int tightLine() const { return 4 * _width; }
    int paddedLine() const { return tightLine() + PADDING; }
    std::string size() const { return std::to_string(_width) + 'x' + std::to_string(_height); }

    Copy byImageData(std::size_t number, int line) const
    {
        return ImageData::fromPixels(_sources[number].data(), FORMAT, _width, _height, line);
    }
    Copy byMemcpy(std::size_t number, int line) const { return copyOf(_sources[number].data(), line); }
    Copy byQImage(std::size_t number, int line) const
    {
        return QImage(_sources[number].data(), _width, _height, line, QImage::Format_RGBX8888).copy();
    }

    Copy detachedImageData(std::size_t number, int) const
    {
        ImageData image = _images[number];
        image.pixels();
        return image;
    }
    Copy detachedMemcpy(std::size_t number, int line) const
    {
        return copyOf(_images[number].constPixels(), line);
    }
    Copy detachedQImage(std::size_t number, int line) const
    {
        QImage image(_images[number].constPixels(), _width, _height, line, QImage::Format_RGBX8888);
        image.bits();
        return image;
    }

    using Way = Copy (Gallery::*)(std::size_t number, int line) const;

    // In place of one that was made before: the next of so many.
    void copyNext(Way way, int line, std::size_t among)
    {
        _next = (_next + 1) % among;
        _copies[_next] = {};
        _copies[_next] = (this->*way)(_next, line);
        benchmark::DoNotOptimize(_copies[_next]);
        benchmark::ClobberMemory();
    }

    // Throws when a copy is not what it was made of.
    void check(Way way, int line) const
    {
        const std::size_t last = count() - 1;
        const Copy copy = (this->*way)(last, line);
        const auto length = std::size_t(tightLine());
        for (std::size_t row = 0; row < std::size_t(_height); ++row) {
            if (std::memcmp(pixelsOf(copy) + row * length, &_sources[last][row * std::size_t(line)],
                            length) != 0) {
                throw std::runtime_error("a copy has other pixels than its source");
            }
        }
    }

private:
    Copy copyOf(const unsigned char *source, int line) const
    {
        const auto length = std::size_t(tightLine());
        const auto rows = std::size_t(_height);
        Bytes copy(new unsigned char[length * rows]);
        if (line == tightLine()) {
            std::memcpy(copy.get(), source, length * rows);
            return copy;
        }
        for (std::size_t row = 0; row < rows; ++row) {
            std::memcpy(copy.get() + row * length, source + row * std::size_t(line), length);
        }
        return copy;
    }

    int _width;
    int _height;
    std::vector<std::vector<unsigned char>>
        _sources;                   // padded; from the beginning also read as if they were not
    std::vector<ImageData> _images; // with a source's first bytes each
    std::vector<Copy> _copies;      // the latest
    std::size_t _next = 0;
};

// One way to begin, three ways to copy, of the same image or of many.
class Contest
{
public:
    struct Ways {
        const char *name;
        bool isPadded;
        Gallery::Way ours;
        Gallery::Way peer;
        Gallery::Way toolkit;
    };

    Contest(Gallery &gallery, const Ways &ways, bool isOfMany)
        : _comparison(ways.name + (", " + gallery.size()) + (isOfMany ? ", many" : ", same"), "ns"),
          _gallery(gallery),
          _title(ways.name + gallery.size() + (isOfMany ? " many " : " same ")),
          _line(ways.isPadded ? gallery.paddedLine() : gallery.tightLine()),
          _among(isOfMany ? gallery.count() : 1)
    {
        enter("ImageData", ways.ours, _comparison.add("ImageData", {MEMCPY_RATIO, 0}));
        enter("memcpy", ways.peer, _comparison.addPeer("memcpy"));
        enter("QImage", ways.toolkit, _comparison.add("QImage"));
    }
    Contest(const Contest &) = delete;
    Contest &operator=(const Contest &) = delete;

    void print() const { _comparison.print(); }

private:
    void enter(const char *name, Gallery::Way way, Samples &samples)
    {
        _gallery.check(way, _line);
        measure(_title + name, samples, [this, way](benchmark::State &state) {
            _gallery.copyNext(way, _line, _among);
            for (auto _ : state) {
                _gallery.copyNext(way, _line, _among);
            }
        });
    }

    Comparison _comparison;
    Gallery &_gallery;
    std::string _title;
    int _line;
    std::size_t _among;
};

constexpr Contest::Ways WAYS[] = {
    {"fromPixels", false, &Gallery::byImageData, &Gallery::byMemcpy, &Gallery::byQImage},
    {"fromPixels, padded", true, &Gallery::byImageData, &Gallery::byMemcpy, &Gallery::byQImage},
    {"detach", false, &Gallery::detachedImageData, &Gallery::detachedMemcpy, &Gallery::detachedQImage},
};

void compareCopies()
{
    (void)ImageData(FORMAT, 3840,
                    2160); // malloc() keeps blocks up to the size of the largest that was released
    Gallery small(1280, 768);
    Gallery large(3840, 2160);
    std::deque<Contest> contests;
    for (Gallery *gallery : {&small, &large}) {
        for (const Contest::Ways &ways : WAYS) {
            contests.emplace_back(*gallery, ways, false);
            contests.emplace_back(*gallery, ways, true);
        }
    }
    runCalls();
    for (const Contest &contest : contests) {
        contest.print();
    }
}

} // namespace

int main()
{
    try {
        compareCopies();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "image: %s\n", error.what());
        return 1;
    }
}
