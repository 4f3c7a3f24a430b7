// Writes PNG: libpng lays out the chunks, the pixel data are filtered here and packed by
// libdeflate.
#pragma once
#include "imaging/stream.h"

#include <cstddef>
#include <cstdint>

#define KELMOR_EXPORT __attribute__((visibility("default")))

extern "C" {

// Both texts are UTF-8 and end in a zero byte; the keyword has 1 to 79 Latin-1 characters.
struct kelmor_png_text {
    const char *keyword;
    const char *text;
};
static_assert(sizeof(kelmor_png_text) == 16);

// Everything that stands before the pixels. Pointers are read by kelmor_png_begin only.
struct kelmor_png_picture {
    int32_t width;
    int32_t height;
    int32_t bit_depth;           // 8, 16; also 1, 2, 4 for gray and palette
    int32_t color_type;          // as in IHDR: 0 gray, 2 RGB, 3 palette, 4 gray + alpha, 6 RGBA
    int32_t interlaced;          // 1: Adam7
    int32_t level;               // 0 stored, 1 fastest to 9 smallest
    int32_t filter;              // 0 none, 1 sub, 2 up, 3 average, 4 Paeth, 5 the best of each row
    int32_t palette_count;       // 1 to 256 with color type 3
    int32_t palette_alpha_count; // 0 to palette_count
    int32_t has_transparent;     // 1: `transparent` holds for gray and RGB without alpha
    uint16_t transparent[4];     // gray or red, green, blue; the fourth is padding
    int32_t pixels_per_meter_x;  // 0 in both: no pHYs
    int32_t pixels_per_meter_y;
    const uint8_t *palette;       // RGB triples
    const uint8_t *palette_alpha; // one byte an entry, or null
    const char *icc_name;         // null: "ICC profile"
    const uint8_t *icc;           // an ICC profile, or null
    int64_t icc_length;
    const uint8_t *xmp; // an XMP packet in UTF-8, or null
    int64_t xmp_length;
    const kelmor_png_text *texts;
    int64_t text_count;
};
static_assert(sizeof(kelmor_png_picture) == 128);
static_assert(offsetof(kelmor_png_picture, transparent) == 40);
static_assert(offsetof(kelmor_png_picture, palette) == 56);
static_assert(offsetof(kelmor_png_picture, texts) == 112);

struct kelmor_png_writer;

// Writes all that stands before the pixels through stream->write. `*writer` is set also on
// failure, for its message, unless memory is lacking; release it in every case.
KELMOR_EXPORT int32_t kelmor_png_begin(const kelmor_png_picture *picture,
                                       const kelmor_stream *stream, kelmor_png_writer **writer);

// The next `count` rows, top to bottom, `stride` bytes apart, samples interleaved; 16-bit samples
// in the machine's own byte order, samples of less than 8 bits packed with the leftmost pixel
// highest.
KELMOR_EXPORT int32_t kelmor_png_rows(kelmor_png_writer *writer, const uint8_t *rows,
                                      int64_t stride, int32_t count);

// After the last row: packs what is kept, writes it and the end mark.
KELMOR_EXPORT int32_t kelmor_png_end(kelmor_png_writer *writer);

// The words for the last failure, in UTF-8; "" when there was none. Lives as long as the writer.
KELMOR_EXPORT const char *kelmor_png_message(const kelmor_png_writer *writer);

// At any time; frees everything. Null does nothing.
KELMOR_EXPORT void kelmor_png_release(kelmor_png_writer *writer);
}
