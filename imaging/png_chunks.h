// The chunk side of a PNG file: owns libpng, turns its failures into a status and a text.
#pragma once
#include "imaging/png_writer.h"
#include "imaging/stream.h"

#include <csetjmp>
#include <png.h>
#include <string>
#include <vector>

namespace kelmor {

class PngChunks {
public:
    explicit PngChunks(const kelmor_stream &stream);
    ~PngChunks();
    PngChunks(const PngChunks &) = delete;
    PngChunks &operator=(const PngChunks &) = delete;

    // Each answers false when the status is not KELMOR_OK afterwards.
    bool write_head(const kelmor_png_picture &picture);
    bool write_pixels(const uint8_t *packed, size_t length); // as IDAT chunks
    bool write_interlaced(const std::vector<const uint8_t *> &rows);
    bool write_tail(); // IEND
    bool flush();

    int32_t status() const { return status_; }
    const char *message() const { return message_; }
    bool fail(int32_t status, const char *message);

private:
    static void on_error(png_structp png, png_const_charp text);
    static void on_warning(png_structp, png_const_charp) {}
    static void on_write(png_structp png, png_bytep block, size_t length);
    bool put(const uint8_t *block, size_t length);
    bool send(const uint8_t *block, size_t length);
    void set_header(const kelmor_png_picture &picture);
    void set_colours(const kelmor_png_picture &picture);
    template <class Call> bool guarded(Call call);

    kelmor_stream stream_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::vector<uint8_t> block_; // small writes are collected here: libpng makes four a chunk
    int32_t status_ = KELMOR_OK;
    char message_[256] = ""; // no std::string: it is filled on the way into a longjmp
};

} // namespace kelmor
