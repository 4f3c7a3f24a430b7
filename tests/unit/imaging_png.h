// Writes pictures through the flat interface and reads them back with libpng, for the tests.
#pragma once
#include "imaging/png_writer.h"

#include <cstring>
#include <png.h>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace imaging_test {

using Bytes = std::vector<uint8_t>;

struct Sink { // stands for the caller's stream; refuses from `refuse_at` bytes on
    Bytes bytes;
    size_t refuse_at = SIZE_MAX;
    int calls = 0;
    int calls_after_refusal = 0;
    bool refused = false;

    kelmor_stream stream() {
        kelmor_stream result = {};
        result.user = this;
        result.write = [](void *user, const uint8_t *block, int64_t length) -> int64_t {
            auto &self = *static_cast<Sink *>(user);
            ++self.calls;
            if (self.refused) ++self.calls_after_refusal;
            if (self.bytes.size() + size_t(length) > self.refuse_at) {
                self.refused = true;
                return -1;
            }
            self.bytes.insert(self.bytes.end(), block, block + length);
            return length;
        };
        return result;
    }
};

inline kelmor_png_picture picture(int width, int height, int depth, int color_type) {
    kelmor_png_picture result = {};
    result.width = width;
    result.height = height;
    result.bit_depth = depth;
    result.color_type = color_type;
    result.level = 1;
    result.filter = 5;
    return result;
}

inline size_t row_length(const kelmor_png_picture &p) {
    const int samples[] = {1, 0, 3, 1, 2, 0, 4};
    return (size_t(p.width) * size_t(samples[p.color_type]) * size_t(p.bit_depth) + 7) / 8;
}

// A slope with some noise, so that every filter wins on some row. The unused bits at the end of a
// row stay zero.
inline Bytes pixels(const kelmor_png_picture &p, unsigned seed = 1) {
    const size_t length = row_length(p);
    Bytes result(length * size_t(p.height));
    std::mt19937 random(seed);
    for (size_t i = 0; i < result.size(); ++i)
        result[i] =
            uint8_t(i / length * 3 + i % length + (i / length % 3 ? random() % 4 : random()));
    const int used = p.bit_depth < 8 ? int(size_t(p.width) * size_t(p.bit_depth) % 8) : 0;
    for (size_t y = 1; used && y <= size_t(p.height); ++y)
        result[y * length - 1] &= uint8_t(0xff << (8 - used));
    return result;
}

inline Bytes write(const kelmor_png_picture &p, const Bytes &pixels, int rows_a_call = 7) {
    Sink sink;
    const kelmor_stream stream = sink.stream();
    kelmor_png_writer *writer = nullptr;
    int32_t status = kelmor_png_begin(&p, &stream, &writer);
    const size_t length = row_length(p);
    for (int y = 0; y < p.height && status == KELMOR_OK; y += rows_a_call)
        status = kelmor_png_rows(writer, pixels.data() + size_t(y) * length, int64_t(length),
                                 std::min(rows_a_call, p.height - y));
    if (status == KELMOR_OK) status = kelmor_png_end(writer);
    const std::string message = kelmor_png_message(writer);
    kelmor_png_release(writer);
    if (status != KELMOR_OK) throw std::runtime_error(message);
    return sink.bytes;
}

class Reader { // libpng over bytes; its failures are thrown, libpng's frames hold nothing to free
public:
    explicit Reader(const Bytes &bytes) : bytes_(bytes) {
        png_ = png_create_read_struct(
            PNG_LIBPNG_VER_STRING, nullptr,
            [](png_structp, png_const_charp text) { throw std::runtime_error(text); },
            [](png_structp, png_const_charp text) { throw std::runtime_error(text); });
        info_ = png_create_info_struct(png_);
        png_set_read_fn(png_, this, [](png_structp png, png_bytep block, size_t length) {
            auto &self = *static_cast<Reader *>(png_get_io_ptr(png));
            if (self.at_ + length > self.bytes_.size()) throw std::runtime_error("short");
            std::memcpy(block, self.bytes_.data() + self.at_, length);
            self.at_ += length;
        });
        png_read_info(png_, info_);
    }
    ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    Reader(const Reader &) = delete;

    Bytes pixels() {
        png_set_swap(png_);
        png_set_interlace_handling(png_);
        const size_t length = png_get_rowbytes(png_, info_);
        const size_t height = png_get_image_height(png_, info_);
        Bytes result(length * height);
        std::vector<png_bytep> rows(height);
        for (size_t y = 0; y < height; ++y) rows[y] = result.data() + y * length;
        png_read_image(png_, rows.data());
        png_read_end(png_, nullptr);
        if (at_ != bytes_.size()) throw std::runtime_error("bytes behind the end mark");
        return result;
    }
    png_structp png() { return png_; }
    png_infop info() { return info_; }

private:
    const Bytes &bytes_;
    size_t at_ = 0;
    png_structp png_;
    png_infop info_;
};

} // namespace imaging_test
