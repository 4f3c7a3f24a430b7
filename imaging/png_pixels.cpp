// Packs filtered rows: libdeflate for whole pictures, zlib for streams, libpng for Adam7.
#include "imaging/png_pixels.h"

#include <cstring>
#include <libdeflate.h>
#include <new>
#include <utility>
#include <vector>
#include <zlib.h>

namespace kelmor {
namespace {

constexpr size_t stream_block = 256 << 10;

// The filter needs the row above, in the byte order of the file: two rows take turns.
class FilteredRows {
public:
    explicit FilteredRows(const RowLayout &layout)
        : layout_(layout), current_(layout.length), above_(layout.length),
          scratch_(layout.length + 1) {}

    void filter(const uint8_t *row, uint8_t *out) {
        if (layout_.wide) {
            for (size_t i = 0; i + 1 < layout_.length; i += 2) {
                current_[i] = row[i + 1];
                current_[i + 1] = row[i];
            }
        } else {
            std::memcpy(current_.data(), row, layout_.length);
        }
        filter_row(layout_.filter, {current_.data(), above_.data(), layout_.length, layout_.unit},
                   out, scratch_.data());
        std::swap(current_, above_);
    }

private:
    RowLayout layout_;
    std::vector<uint8_t> current_, above_, scratch_;
};

struct FreeCompressor {
    void operator()(libdeflate_compressor *compressor) const {
        libdeflate_free_compressor(compressor);
    }
};

class WholePixels final : public PngPixels {
public:
    WholePixels(PngChunks &chunks, const RowLayout &layout)
        : chunks_(chunks), layout_(layout), rows_(layout),
          filtered_(new uint8_t[(layout.length + 1) * layout.count]) {}

    bool row(const uint8_t *row) override {
        rows_.filter(row, filtered_.get() + used_);
        used_ += layout_.length + 1;
        return true;
    }

    bool finish() override {
        std::unique_ptr<libdeflate_compressor, FreeCompressor> compressor(
            libdeflate_alloc_compressor(layout_.level));
        if (!compressor) throw std::bad_alloc();
        const size_t bound = libdeflate_zlib_compress_bound(compressor.get(), used_);
        std::unique_ptr<uint8_t[]> packed(new uint8_t[bound]);
        const size_t length =
            libdeflate_zlib_compress(compressor.get(), filtered_.get(), used_, packed.get(), bound);
        if (length == 0) return chunks_.fail(KELMOR_CODEC_FAILED, "The pixels could not be packed");
        filtered_.reset();
        return chunks_.write_pixels(packed.get(), length) && chunks_.write_tail();
    }

private:
    PngChunks &chunks_;
    RowLayout layout_;
    FilteredRows rows_;
    std::unique_ptr<uint8_t[]> filtered_;
    size_t used_ = 0;
};

class StreamedPixels final : public PngPixels {
public:
    StreamedPixels(PngChunks &chunks, const RowLayout &layout)
        : chunks_(chunks), rows_(layout), filtered_(layout.length + 1), packed_(stream_block) {
        if (deflateInit(&zlib_, layout.level) != Z_OK) throw std::bad_alloc();
        restart_block();
    }
    ~StreamedPixels() override { deflateEnd(&zlib_); }

    bool row(const uint8_t *row) override {
        rows_.filter(row, filtered_.data());
        zlib_.next_in = filtered_.data();
        zlib_.avail_in = static_cast<uInt>(filtered_.size());
        while (zlib_.avail_in > 0) {
            deflate(&zlib_, Z_NO_FLUSH);
            if (zlib_.avail_out == 0 && !write_block()) return false;
        }
        return true;
    }

    bool finish() override {
        while (deflate(&zlib_, Z_FINISH) != Z_STREAM_END)
            if (!write_block()) return false;
        return write_block() && chunks_.write_tail();
    }

private:
    void restart_block() {
        zlib_.next_out = packed_.data();
        zlib_.avail_out = static_cast<uInt>(packed_.size());
    }

    bool write_block() {
        const size_t length = packed_.size() - zlib_.avail_out;
        restart_block();
        return length == 0 || chunks_.write_pixels(packed_.data(), length);
    }

    PngChunks &chunks_;
    FilteredRows rows_;
    std::vector<uint8_t> filtered_, packed_;
    z_stream zlib_ = {};
};

// Adam7 visits the picture seven times, so all rows must be there first.
class InterlacedPixels final : public PngPixels {
public:
    InterlacedPixels(PngChunks &chunks, const RowLayout &layout)
        : chunks_(chunks), layout_(layout), pixels_(new uint8_t[layout.length * layout.count]) {}

    bool row(const uint8_t *row) override {
        std::memcpy(pixels_.get() + used_, row, layout_.length);
        used_ += layout_.length;
        return true;
    }

    bool finish() override {
        std::vector<const uint8_t *> rows(layout_.count);
        for (size_t y = 0; y < layout_.count; ++y) rows[y] = pixels_.get() + y * layout_.length;
        return chunks_.write_interlaced(rows) && chunks_.write_tail();
    }

private:
    PngChunks &chunks_;
    RowLayout layout_;
    std::unique_ptr<uint8_t[]> pixels_;
    size_t used_ = 0;
};

} // namespace

std::unique_ptr<PngPixels> make_png_pixels(PngChunks &chunks, const RowLayout &layout,
                                           bool interlaced, size_t streamed_from) {
    if (interlaced) return std::make_unique<InterlacedPixels>(chunks, layout);
    if (layout.level == 0 || (layout.length + 1) > streamed_from / layout.count)
        return std::make_unique<StreamedPixels>(chunks, layout);
    return std::make_unique<WholePixels>(chunks, layout);
}

} // namespace kelmor
