// Attachments of a PNG file, its refusals and its behaviour towards a stream that fails.
#include "imaging_png.h"

#include <gtest/gtest.h>
#include <map>

using namespace imaging_test;

namespace {

std::vector<std::pair<std::string, size_t>> chunks_of(const Bytes &file) {
    std::vector<std::pair<std::string, size_t>> result;
    for (size_t at = 8; at + 12 <= file.size();) {
        const size_t length = size_t(file[at]) << 24 | size_t(file[at + 1]) << 16 |
                              size_t(file[at + 2]) << 8 | file[at + 3];
        result.emplace_back(std::string(file.begin() + long(at) + 4, file.begin() + long(at) + 8),
                            length);
        at += 12 + length;
    }
    return result;
}

// The smallest profile that libpng takes, a head of 128 bytes and an empty table of tags, with some
// noise behind: packed to less than 92 bytes, libpng would not read it again.
Bytes profile_of(const char *space) {
    Bytes profile(132);
    std::mt19937 random(7);
    while (profile.size() < 252) profile.push_back(uint8_t(random()));
    profile[3] = 252;
    profile[8] = 2;
    std::memcpy(&profile[12], "mntr", 4);
    std::memcpy(&profile[16], space, 4);
    std::memcpy(&profile[20], "XYZ ", 4);
    std::memcpy(&profile[36], "acsp", 4);
    const uint8_t d50[] = {0, 0, 0xf6, 0xd6, 0, 1, 0, 0, 0, 0, 0xd3, 0x2d};
    std::memcpy(&profile[68], d50, sizeof d50);
    return profile;
}

std::pair<int32_t, std::string> refusal(const kelmor_png_picture &p) {
    Sink sink;
    const kelmor_stream stream = sink.stream();
    kelmor_png_writer *writer = nullptr;
    const int32_t status = kelmor_png_begin(&p, &stream, &writer);
    std::string words = kelmor_png_message(writer);
    kelmor_png_release(writer);
    EXPECT_EQ(sink.calls, 0);
    return {status, words};
}

} // namespace

TEST(PngChunks, TheColourProfileIsStored) {
    kelmor_png_picture p = picture(4, 4, 8, 2);
    const Bytes profile = profile_of("RGB ");
    p.icc = profile.data();
    p.icc_length = int64_t(profile.size());
    p.icc_name = "Working space";
    const Bytes file = write(p, pixels(p));
    Reader reader(file);
    png_charp name = nullptr;
    png_bytep stored = nullptr;
    png_uint_32 length = 0;
    int method = 0;
    ASSERT_EQ(png_get_iCCP(reader.png(), reader.info(), &name, &method, &stored, &length),
              unsigned(PNG_INFO_iCCP));
    EXPECT_STREQ(name, "Working space");
    EXPECT_EQ(Bytes(stored, stored + length), profile);
}

TEST(PngChunks, AProfileOfAnotherColourSpaceIsLeftOut) {
    kelmor_png_picture p = picture(4, 4, 8, 2);
    const Bytes profile = profile_of("CMYK");
    p.icc = profile.data();
    p.icc_length = int64_t(profile.size());
    const Bytes sent = pixels(p), file = write(p, sent);
    for (const auto &chunk : chunks_of(file)) EXPECT_NE(chunk.first, "iCCP");
    EXPECT_EQ(Reader(file).pixels(), sent);
}

TEST(PngChunks, TheResolutionIsStored) {
    kelmor_png_picture p = picture(4, 4, 8, 0);
    p.pixels_per_meter_x = 11811;
    p.pixels_per_meter_y = 5906;
    const Bytes file = write(p, pixels(p));
    Reader reader(file);
    EXPECT_EQ(png_get_x_pixels_per_meter(reader.png(), reader.info()), 11811u);
    EXPECT_EQ(png_get_y_pixels_per_meter(reader.png(), reader.info()), 5906u);
}

TEST(PngChunks, TextsAndXmpAreStored) {
    kelmor_png_picture p = picture(4, 4, 8, 0);
    const kelmor_png_text texts[] = {{"Title", "plain"}, {"Author", "J\xc3\xb6rg"}};
    const std::string xmp = "<x:xmpmeta/>";
    p.texts = texts;
    p.text_count = 2;
    p.xmp = reinterpret_cast<const uint8_t *>(xmp.data());
    p.xmp_length = int64_t(xmp.size());
    const Bytes file = write(p, pixels(p));
    Reader reader(file);
    png_textp stored = nullptr;
    const int count = png_get_text(reader.png(), reader.info(), &stored, nullptr);
    std::map<std::string, std::pair<std::string, int>> found;
    for (int i = 0; i < count; ++i) found[stored[i].key] = {stored[i].text, stored[i].compression};
    EXPECT_EQ(found["Title"], std::pair(std::string("plain"), PNG_TEXT_COMPRESSION_NONE));
    EXPECT_EQ(found["Author"], std::pair(std::string("J\xc3\xb6rg"), PNG_ITXT_COMPRESSION_NONE));
    EXPECT_EQ(found["XML:com.adobe.xmp"], std::pair(xmp, PNG_ITXT_COMPRESSION_NONE));
}

TEST(PngChunks, PaletteTransparencyAndColourKeyAreStored) {
    const Bytes colours = {1, 2, 3, 4, 5, 6}, alpha = {128};
    kelmor_png_picture p = picture(8, 1, 1, 3);
    p.palette = colours.data();
    p.palette_count = 2;
    p.palette_alpha = alpha.data();
    p.palette_alpha_count = 1;
    const Bytes file = write(p, {0x55});
    Reader reader(file);
    png_bytep stored = nullptr;
    int count = 0;
    png_get_tRNS(reader.png(), reader.info(), &stored, &count, nullptr);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(stored[0], 128);

    kelmor_png_picture keyed = picture(1, 1, 8, 2);
    keyed.has_transparent = 1;
    keyed.transparent[0] = 7;
    keyed.transparent[1] = 8;
    keyed.transparent[2] = 9;
    const Bytes second = write(keyed, {7, 8, 9});
    Reader other(second);
    png_color_16p key = nullptr;
    png_get_tRNS(other.png(), other.info(), nullptr, nullptr, &key);
    ASSERT_NE(key, nullptr);
    EXPECT_EQ((std::vector<int>{key->red, key->green, key->blue}), (std::vector<int>{7, 8, 9}));
}

TEST(PngChunks, PixelsAreCutIntoChunksOfOneMebibyte) {
    kelmor_png_picture p = picture(700, 700, 8, 6);
    Bytes noise(row_length(p) * 700);
    std::mt19937 random(3);
    for (uint8_t &byte : noise) byte = uint8_t(random());
    const Bytes file = write(p, noise);
    std::vector<std::pair<std::string, size_t>> found = chunks_of(file);
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(found[0], std::pair(std::string("IHDR"), size_t(13)));
    EXPECT_EQ(found[1], std::pair(std::string("IDAT"), size_t(1 << 20)));
    EXPECT_EQ(found[2].first, "IDAT");
    EXPECT_EQ(found[3], std::pair(std::string("IEND"), size_t(0)));
}

TEST(PngChunks, SmallChunksReachTheStreamTogether) {
    const kelmor_png_picture p = picture(16, 16, 8, 2);
    const Bytes sent = pixels(p);
    Sink sink;
    const kelmor_stream stream = sink.stream();
    kelmor_png_writer *writer = nullptr;
    kelmor_png_begin(&p, &stream, &writer);
    kelmor_png_rows(writer, sent.data(), 48, 16);
    EXPECT_EQ(kelmor_png_end(writer), KELMOR_OK);
    kelmor_png_release(writer);
    EXPECT_EQ(sink.calls, 1);
}

class RefusingStream : public testing::TestWithParam<std::tuple<size_t, int, int>> {};

TEST_P(RefusingStream, EndsTheWorkWithItsOwnStatus) {
    const auto [refuse_at, interlaced, level] = GetParam();
    kelmor_png_picture p = picture(600, 400, 8, 6);
    p.interlaced = interlaced;
    p.level = level;
    Bytes noise(row_length(p) * 400);
    std::mt19937 random(5);
    for (uint8_t &byte : noise) byte = uint8_t(random());
    Sink sink;
    sink.refuse_at = refuse_at;
    const kelmor_stream stream = sink.stream();
    kelmor_png_writer *writer = nullptr;
    ASSERT_EQ(kelmor_png_begin(&p, &stream, &writer), KELMOR_OK); // the head is in the block still
    int32_t status = kelmor_png_rows(writer, noise.data(), int64_t(row_length(p)), 400);
    if (status == KELMOR_OK) status = kelmor_png_end(writer);
    EXPECT_EQ(status, KELMOR_STREAM_FAILED);
    EXPECT_STREQ(kelmor_png_message(writer), "The stream did not take the bytes");
    EXPECT_EQ(kelmor_png_end(writer), KELMOR_STREAM_FAILED);
    kelmor_png_release(writer);
    EXPECT_EQ(sink.calls_after_refusal, 0);
}

INSTANTIATE_TEST_SUITE_P(PngChunks, RefusingStream,
                         testing::Combine(testing::Values(0, 70000, 900000), testing::Values(0, 1),
                                          testing::Values(0, 1)));

TEST(PngChunks, AWriterCanBeGivenUpAtAnyPoint) {
    const kelmor_png_picture p = picture(16, 16, 8, 2);
    const Bytes sent = pixels(p);
    Sink sink;
    const kelmor_stream stream = sink.stream();
    kelmor_png_writer *writer = nullptr;
    kelmor_png_begin(&p, &stream, &writer);
    kelmor_png_rows(writer, sent.data(), 48, 3);
    kelmor_png_release(writer);
    kelmor_png_release(nullptr);
    EXPECT_TRUE(sink.bytes.empty());
}

TEST(PngChunks, TheNumberOfRowsMustBeRight) {
    const kelmor_png_picture p = picture(4, 2, 8, 0);
    const Bytes sent = pixels(p);
    for (const int rows : {1, 2, 3}) {
        Sink sink;
        const kelmor_stream stream = sink.stream();
        kelmor_png_writer *writer = nullptr;
        kelmor_png_begin(&p, &stream, &writer);
        int32_t status = KELMOR_OK;
        for (int y = 0; y < rows && status == KELMOR_OK; ++y)
            status = kelmor_png_rows(writer, sent.data(), 4, 1);
        if (status == KELMOR_OK) status = kelmor_png_end(writer);
        EXPECT_EQ(status, rows == 2 ? KELMOR_OK : KELMOR_WRONG_ARGUMENT);
        const char *words[] = {"", "There are fewer rows than the picture has", "",
                               "There are more rows than the picture has"};
        EXPECT_STREQ(kelmor_png_message(writer), words[rows]);
        kelmor_png_release(writer);
    }
}

TEST(PngChunks, AContradictoryDescriptionIsRefusedBeforeAnyByte) {
    using Answer = std::pair<int32_t, std::string>;
    const auto answer = [](const char *words) { return Answer(KELMOR_WRONG_ARGUMENT, words); };
    EXPECT_EQ(refusal(picture(0, 1, 8, 0)), answer("The picture has no pixels"));
    EXPECT_EQ(refusal(picture(1, -1, 8, 0)), answer("The picture has no pixels"));
    EXPECT_EQ(refusal(picture(1, 1, 8, 5)), answer("The color type is unknown"));
    EXPECT_EQ(refusal(picture(1, 1, 4, 2)),
              answer("The bit depth does not go with the color type"));
    EXPECT_EQ(refusal(picture(1, 1, 16, 3)),
              answer("The bit depth does not go with the color type"));
    EXPECT_EQ(refusal(picture(1, 1, 8, 3)), answer("The palette does not go with the color type"));
    kelmor_png_picture p = picture(1, 1, 8, 0);
    p.level = 10;
    EXPECT_EQ(refusal(p), answer("The compression level is out of range"));
    p = picture(1, 1, 8, 0);
    p.filter = 6;
    EXPECT_EQ(refusal(p), answer("The filter is unknown"));
    p = picture(1, 1, 8, 0);
    p.text_count = 1;
    EXPECT_EQ(refusal(p), answer("An attachment has a wrong length"));
}

TEST(PngChunks, NullArgumentsAreRefused) {
    const kelmor_png_picture p = picture(1, 1, 8, 0);
    Sink sink;
    const kelmor_stream stream = sink.stream();
    kelmor_png_writer *writer = nullptr;
    EXPECT_EQ(kelmor_png_begin(nullptr, &stream, &writer), KELMOR_WRONG_ARGUMENT);
    EXPECT_EQ(kelmor_png_begin(&p, nullptr, &writer), KELMOR_WRONG_ARGUMENT);
    EXPECT_EQ(kelmor_png_begin(&p, &stream, nullptr), KELMOR_WRONG_ARGUMENT);
    EXPECT_EQ(writer, nullptr);
    EXPECT_EQ(kelmor_png_rows(nullptr, nullptr, 0, 0), KELMOR_WRONG_ARGUMENT);
    EXPECT_EQ(kelmor_png_end(nullptr), KELMOR_WRONG_ARGUMENT);
    EXPECT_STREQ(kelmor_png_message(nullptr), "");
}

TEST(PngChunks, APictureBeyondAllMemoryIsRefused) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer ends the process where operator new throws";
#endif
    kelmor_png_picture p = picture(0x7fffffff, 0x7fffffff, 16, 6);
    p.interlaced = 1;
    EXPECT_EQ(refusal(p).first, KELMOR_OUT_OF_MEMORY);
}
