// libpng writes every chunk; the pixel data arrive here already filtered and packed.
#include "imaging/png_chunks.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <zlib.h>

namespace kelmor {
namespace {

constexpr size_t block_size = 64 << 10;
constexpr size_t largest_pixel_chunk = 1 << 20;
constexpr int32_t largest_side = 0x7fffffff;

const int png_filters[] = {PNG_FILTER_NONE, PNG_FILTER_SUB,   PNG_FILTER_UP,
                           PNG_FILTER_AVG,  PNG_FILTER_PAETH, PNG_ALL_FILTERS};

// XMP says: an uncompressed iTXt of this keyword, so that a scan for packets finds it.
constexpr char xmp_keyword[] = "XML:com.adobe.xmp";

bool is_ascii(const std::string &text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

struct Text {
    std::string keyword, text;
};

std::vector<Text> texts_of(const kelmor_png_picture &picture) {
    std::vector<Text> result;
    for (int64_t i = 0; i < picture.text_count; ++i)
        result.push_back({picture.texts[i].keyword, picture.texts[i].text});
    if (picture.xmp)
        result.push_back({xmp_keyword, std::string(reinterpret_cast<const char *>(picture.xmp),
                                                   static_cast<size_t>(picture.xmp_length))});
    return result;
}

std::vector<png_text> chunks_of(const std::vector<Text> &texts) {
    std::vector<png_text> result;
    for (const Text &each : texts) {
        const bool international = each.keyword == xmp_keyword || !is_ascii(each.text);
        png_text chunk = {};
        chunk.compression = international ? PNG_ITXT_COMPRESSION_NONE : PNG_TEXT_COMPRESSION_NONE;
        chunk.key = const_cast<char *>(each.keyword.c_str());
        chunk.text = const_cast<char *>(each.text.c_str());
        (international ? chunk.itxt_length : chunk.text_length) = each.text.size();
        result.push_back(chunk);
    }
    return result;
}

} // namespace

// libpng leaves a failed call by longjmp to here. So no `call` may own an object with a destructor,
// and none may throw: what they need is made by their caller.
template <class Call> bool PngChunks::guarded(Call call) {
    if (status_ != KELMOR_OK) return false;
    if (setjmp(png_jmpbuf(png_))) return false; // on_error has set the status
    call();
    return true;
}

PngChunks::PngChunks(const kelmor_stream &stream) : stream_(stream) {
    block_.reserve(block_size);
    png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, on_error, on_warning);
    if (!png_) throw std::bad_alloc();
    info_ = png_create_info_struct(png_);
    if (!info_) {
        png_destroy_write_struct(&png_, nullptr);
        throw std::bad_alloc();
    }
    png_set_write_fn(png_, this, on_write, [](png_structp) {});
    png_set_user_limits(png_, largest_side, largest_side);
    // A colour profile that libpng finds at fault is then left out; the picture is written.
    png_set_benign_errors(png_, 1);
}

PngChunks::~PngChunks() { png_destroy_write_struct(&png_, &info_); }

bool PngChunks::write_head(const kelmor_png_picture &picture) {
    const std::vector<Text> texts = texts_of(picture);
    const std::vector<png_text> chunks = chunks_of(texts);
    return guarded([&] {
        set_header(picture);
        set_colours(picture);
        if (!chunks.empty())
            png_set_text(png_, info_, chunks.data(), static_cast<int>(chunks.size()));
        png_write_info(png_, info_);
    });
}

void PngChunks::set_header(const kelmor_png_picture &picture) {
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(picture.width),
                 static_cast<png_uint_32>(picture.height), picture.bit_depth, picture.color_type,
                 picture.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Only interlaced pixels go through libpng. Left alone it would choose Z_FILTERED, which is
    // slower and packs photographs worse.
    png_set_compression_level(png_, picture.level);
    png_set_compression_strategy(png_, Z_DEFAULT_STRATEGY);
    png_set_filter(png_, PNG_FILTER_TYPE_BASE, png_filters[picture.filter]);
    if (picture.pixels_per_meter_x > 0 && picture.pixels_per_meter_y > 0)
        png_set_pHYs(png_, info_, static_cast<png_uint_32>(picture.pixels_per_meter_x),
                     static_cast<png_uint_32>(picture.pixels_per_meter_y), PNG_RESOLUTION_METER);
}

void PngChunks::set_colours(const kelmor_png_picture &picture) {
    if (picture.palette_count > 0)
        png_set_PLTE(png_, info_, reinterpret_cast<png_const_colorp>(picture.palette),
                     picture.palette_count);
    if (picture.palette_alpha_count > 0)
        png_set_tRNS(png_, info_, picture.palette_alpha, picture.palette_alpha_count, nullptr);
    if (picture.has_transparent) {
        const uint16_t *key = picture.transparent;
        const png_color_16 colour = {0, key[0], key[1], key[2], key[0]};
        png_set_tRNS(png_, info_, nullptr, 0, &colour);
    }
    if (picture.icc && picture.icc_length > 0)
        png_set_iCCP(png_, info_, picture.icc_name ? picture.icc_name : "ICC profile",
                     PNG_COMPRESSION_TYPE_BASE, picture.icc,
                     static_cast<png_uint_32>(picture.icc_length));
}

bool PngChunks::write_pixels(const uint8_t *packed, size_t length) {
    return guarded([&] {
        for (size_t done = 0; done < length; done += largest_pixel_chunk)
            png_write_chunk(png_, reinterpret_cast<png_const_bytep>("IDAT"), packed + done,
                            std::min(length - done, largest_pixel_chunk));
    });
}

bool PngChunks::write_interlaced(const std::vector<const uint8_t *> &rows) {
    return guarded([&] {
        png_set_swap(png_); // does nothing for 8-bit samples
        png_write_image(png_, const_cast<png_bytepp>(rows.data()));
    });
}

// Not png_write_end: it refuses when it has not seen the pixel data itself.
bool PngChunks::write_tail() {
    return guarded(
        [&] { png_write_chunk(png_, reinterpret_cast<png_const_bytep>("IEND"), nullptr, 0); });
}

bool PngChunks::flush() {
    if (status_ != KELMOR_OK) return false;
    const bool sent = send(block_.data(), block_.size());
    block_.clear();
    return sent || fail(KELMOR_STREAM_FAILED, "The stream did not take the bytes");
}

bool PngChunks::fail(int32_t status, const char *message) {
    if (status_ == KELMOR_OK) {
        status_ = status;
        std::snprintf(message_, sizeof message_, "%s", message);
    }
    return false;
}

bool PngChunks::send(const uint8_t *block, size_t length) {
    const auto wanted = static_cast<int64_t>(length);
    return wanted == 0 || stream_.write(stream_.user, block, wanted) == wanted;
}

bool PngChunks::put(const uint8_t *block, size_t length) {
    if (block_.size() + length > block_size) {
        if (!send(block_.data(), block_.size())) return false;
        block_.clear();
    }
    if (length >= block_size) return send(block, length);
    block_.insert(block_.end(), block, block + length); // never beyond what is reserved
    return true;
}

void PngChunks::on_write(png_structp png, png_bytep block, size_t length) {
    auto *self = static_cast<PngChunks *>(png_get_io_ptr(png));
    if (self->put(block, length)) return;
    self->fail(KELMOR_STREAM_FAILED, "The stream did not take the bytes");
    png_error(png, self->message_);
}

void PngChunks::on_error(png_structp png, png_const_charp text) {
    static_cast<PngChunks *>(png_get_error_ptr(png))->fail(KELMOR_CODEC_FAILED, text);
    png_longjmp(png, 1);
}

} // namespace kelmor
