// What becomes of the rows of a picture until they are written: three ways, one face.
#pragma once
#include "imaging/png_chunks.h"
#include "imaging/png_filter.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kelmor {

// The figures that every way needs, worked out once from a checked description.
struct RowLayout {
    size_t length; // bytes of a row
    size_t unit;   // bytes of a pixel, at least 1
    size_t count;
    bool wide; // 16-bit samples, which PNG stores with the high byte first
    int level;
    RowFilter filter;
};

class PngPixels {
public:
    virtual ~PngPixels() = default;
    virtual bool row(const uint8_t *row) = 0;
    virtual bool finish() = 0; // everything up to the end mark
};

// Packed as a whole where it fits the memory that is worth it, as a stream above that and when
// nothing is to be packed, through libpng when it is interlaced. `streamed_from` is the size in
// bytes from which the stream is taken.
std::unique_ptr<PngPixels> make_png_pixels(PngChunks &chunks, const RowLayout &layout,
                                           bool interlaced, size_t streamed_from);

} // namespace kelmor
