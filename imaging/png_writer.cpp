// The entries of the PNG writer: checks the description, then feeds rows on in order.
#include "imaging/png_writer.h"
#include "imaging/png_chunks.h"
#include "imaging/png_pixels.h"

#include <new>

namespace {

using kelmor::PngChunks;
using kelmor::PngPixels;
using kelmor::RowLayout;

// libdeflate wants the whole filtered picture in memory; beyond this the stream is the better deal.
constexpr size_t largest_whole_picture = size_t(256) << 20;
constexpr int64_t largest_profile = int64_t(1) << 30;

int samples_of(int32_t color_type) {
    switch (color_type) {
    case PNG_COLOR_TYPE_GRAY:
    case PNG_COLOR_TYPE_PALETTE:
        return 1;
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return 2;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 0;
    }
}

bool depth_fits(const kelmor_png_picture &picture) {
    switch (picture.bit_depth) {
    case 1:
    case 2:
    case 4:
        return samples_of(picture.color_type) == 1;
    case 8:
        return true;
    case 16:
        return picture.color_type != PNG_COLOR_TYPE_PALETTE;
    default:
        return false;
    }
}

bool palette_fits(const kelmor_png_picture &picture) {
    if (picture.palette_alpha_count < 0 || picture.palette_alpha_count > picture.palette_count)
        return false;
    if (picture.palette_alpha_count > 0 && !picture.palette_alpha) return false;
    if (picture.color_type != PNG_COLOR_TYPE_PALETTE) return picture.palette_count == 0;
    return picture.palette && picture.palette_count >= 1 &&
           picture.palette_count <= 1 << picture.bit_depth;
}

bool attachments_fit(const kelmor_png_picture &picture) {
    if (picture.icc && (picture.icc_length < 0 || picture.icc_length > largest_profile))
        return false;
    if (picture.xmp && (picture.xmp_length < 0 || picture.xmp_length > largest_profile))
        return false;
    return picture.text_count >= 0 && (picture.text_count == 0 || picture.texts);
}

// Null when the description holds.
const char *objection(const kelmor_png_picture &picture) {
    if (picture.width < 1 || picture.height < 1) return "The picture has no pixels";
    if (samples_of(picture.color_type) == 0) return "The color type is unknown";
    if (!depth_fits(picture)) return "The bit depth does not go with the color type";
    if (picture.level < 0 || picture.level > 9) return "The compression level is out of range";
    if (picture.filter < 0 || picture.filter > 5) return "The filter is unknown";
    if (!palette_fits(picture)) return "The palette does not go with the color type";
    if (!attachments_fit(picture)) return "An attachment has a wrong length";
    return nullptr;
}

RowLayout layout_of(const kelmor_png_picture &picture) {
    const size_t bits = size_t(samples_of(picture.color_type)) * size_t(picture.bit_depth);
    // Filters bring nothing on indexes and bits: neighbours in value are not neighbours in colour.
    const bool plain = picture.color_type == PNG_COLOR_TYPE_PALETTE || picture.bit_depth < 8;
    return {(size_t(picture.width) * bits + 7) / 8,
            bits < 8 ? 1 : bits / 8,
            size_t(picture.height),
            picture.bit_depth == 16,
            picture.level,
            plain ? kelmor::RowFilter::none : static_cast<kelmor::RowFilter>(picture.filter)};
}

} // namespace

struct kelmor_png_writer {
    explicit kelmor_png_writer(const kelmor_stream &stream) : chunks(stream) {}

    PngChunks chunks;
    RowLayout layout = {};
    std::unique_ptr<PngPixels> pixels;
    size_t rows_left = 0;
    bool ended = false;

    int32_t begin(const kelmor_png_picture &picture) {
        if (const char *words = objection(picture)) {
            chunks.fail(KELMOR_WRONG_ARGUMENT, words);
            return chunks.status();
        }
        layout = layout_of(picture);
        rows_left = layout.count;
        pixels = make_png_pixels(chunks, layout, picture.interlaced != 0, largest_whole_picture);
        chunks.write_head(picture);
        return chunks.status();
    }

    int32_t rows(const uint8_t *row, int64_t stride, size_t count) {
        if (count > rows_left)
            chunks.fail(KELMOR_WRONG_ARGUMENT, "There are more rows than the picture has");
        for (; count > 0 && chunks.status() == KELMOR_OK; --count, --rows_left, row += stride)
            pixels->row(row);
        return chunks.status();
    }

    int32_t end() {
        if (ended || rows_left > 0)
            chunks.fail(KELMOR_WRONG_ARGUMENT, ended ? "The picture has ended already"
                                                     : "There are fewer rows than the picture has");
        ended = true;
        if (chunks.status() == KELMOR_OK && pixels->finish()) chunks.flush();
        return chunks.status();
    }
};

namespace {

// No exception leaves an entry; lack of memory is the only one that can come up.
template <class Step> int32_t entry(kelmor_png_writer *writer, Step step) {
    try {
        return step();
    } catch (const std::bad_alloc &) {
        if (writer) writer->chunks.fail(KELMOR_OUT_OF_MEMORY, "There is not enough memory");
        return KELMOR_OUT_OF_MEMORY;
    } catch (const std::exception &failure) {
        if (writer) writer->chunks.fail(KELMOR_CODEC_FAILED, failure.what());
        return KELMOR_CODEC_FAILED;
    }
}

} // namespace

int32_t kelmor_png_begin(const kelmor_png_picture *picture, const kelmor_stream *stream,
                         kelmor_png_writer **writer) {
    if (!writer) return KELMOR_WRONG_ARGUMENT;
    *writer = nullptr;
    if (!picture || !stream || !stream->write) return KELMOR_WRONG_ARGUMENT;
    const int32_t made = entry(nullptr, [&] {
        *writer = new kelmor_png_writer(*stream);
        return int32_t(KELMOR_OK);
    });
    if (made != KELMOR_OK) return made;
    return entry(*writer, [&] { return (*writer)->begin(*picture); });
}

int32_t kelmor_png_rows(kelmor_png_writer *writer, const uint8_t *rows, int64_t stride,
                        int32_t count) {
    if (!writer || !rows || count < 0) return KELMOR_WRONG_ARGUMENT;
    return entry(writer, [&] { return writer->rows(rows, stride, static_cast<size_t>(count)); });
}

int32_t kelmor_png_end(kelmor_png_writer *writer) {
    if (!writer) return KELMOR_WRONG_ARGUMENT;
    return entry(writer, [&] { return writer->end(); });
}

const char *kelmor_png_message(const kelmor_png_writer *writer) {
    return writer ? writer->chunks.message() : "";
}

void kelmor_png_release(kelmor_png_writer *writer) { delete writer; }
