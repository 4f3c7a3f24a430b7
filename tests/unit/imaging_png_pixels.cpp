// What the PNG writer stores is what libpng reads back, whatever the way the pixels took.
#include "imaging/png_pixels.h"
#include "imaging_png.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <tuple>

using namespace imaging_test;

namespace {

struct Form {
    int color_type, depth;
};
const Form forms[] = {{0, 1}, {0, 2}, {0, 4}, {0, 8}, {0, 16}, {2, 8}, {2, 16}, {3, 1},
                      {3, 2}, {3, 4}, {3, 8}, {4, 8}, {4, 16}, {6, 8}, {6, 16}};

const Bytes palette = [] {
    Bytes colours(768);
    for (size_t i = 0; i < colours.size(); ++i) colours[i] = uint8_t(i * 7);
    return colours;
}();

kelmor_png_picture with_palette(kelmor_png_picture p) {
    if (p.color_type != 3) return p;
    p.palette = palette.data();
    p.palette_count = 1 << p.bit_depth;
    return p;
}

} // namespace

class EveryForm : public testing::TestWithParam<std::tuple<Form, int, int>> {};

TEST_P(EveryForm, ComesBackFromLibpng) {
    const auto [form, interlaced, level] = GetParam();
    kelmor_png_picture p = with_palette(picture(53, 31, form.depth, form.color_type));
    p.interlaced = interlaced;
    p.level = level;
    const Bytes sent = pixels(p);
    const Bytes file = write(p, sent);
    Reader reader(file);
    EXPECT_EQ(png_get_image_width(reader.png(), reader.info()), 53u);
    EXPECT_EQ(png_get_image_height(reader.png(), reader.info()), 31u);
    EXPECT_EQ(png_get_bit_depth(reader.png(), reader.info()), form.depth);
    EXPECT_EQ(png_get_color_type(reader.png(), reader.info()), form.color_type);
    EXPECT_EQ(png_get_interlace_type(reader.png(), reader.info()), interlaced);
    EXPECT_EQ(reader.pixels(), sent);
}

INSTANTIATE_TEST_SUITE_P(PngPixels, EveryForm,
                         testing::Combine(testing::ValuesIn(forms), testing::Values(0, 1),
                                          testing::Values(0, 1, 6, 9)));

class EveryFilter : public testing::TestWithParam<int> {};

TEST_P(EveryFilter, IsUndoneByLibpng) {
    for (const Form form : {Form{0, 8}, Form{2, 8}, Form{6, 16}}) {
        kelmor_png_picture p = picture(40, 20, form.depth, form.color_type);
        p.filter = GetParam();
        const Bytes sent = pixels(p), file = write(p, sent);
        EXPECT_EQ(Reader(file).pixels(), sent);
    }
}

INSTANTIATE_TEST_SUITE_P(PngPixels, EveryFilter, testing::Range(0, 6));

TEST(PngPixels, APictureOfOnePixelIsWritten) {
    const kelmor_png_picture p = picture(1, 1, 8, 6);
    EXPECT_EQ(Reader(write(p, {1, 2, 3, 4})).pixels(), (Bytes{1, 2, 3, 4}));
}

TEST(PngPixels, RowsMayStandApart) {
    const kelmor_png_picture p = picture(2, 2, 8, 0);
    const Bytes spaced = {1, 2, 99, 99, 3, 4, 99, 99};
    Sink sink;
    const kelmor_stream stream = sink.stream();
    kelmor_png_writer *writer = nullptr;
    ASSERT_EQ(kelmor_png_begin(&p, &stream, &writer), KELMOR_OK);
    ASSERT_EQ(kelmor_png_rows(writer, spaced.data(), 4, 2), KELMOR_OK);
    ASSERT_EQ(kelmor_png_end(writer), KELMOR_OK);
    kelmor_png_release(writer);
    EXPECT_EQ(Reader(sink.bytes).pixels(), (Bytes{1, 2, 3, 4}));
}

TEST(PngPixels, AHigherLevelIsSmallerAndLevelZeroStores) {
    kelmor_png_picture p = picture(200, 200, 8, 2);
    const Bytes sent = pixels(p);
    std::vector<size_t> sizes;
    for (const int level : {0, 1, 9}) {
        p.level = level;
        sizes.push_back(write(p, sent).size());
    }
    EXPECT_GT(sizes[0], sent.size());
    EXPECT_LT(sizes[1], sent.size());
    EXPECT_LT(sizes[2], sizes[1]);
}

TEST(PngPixels, AStreamedPictureIsThePackedOne) {
    kelmor_png_picture p = picture(300, 700, 16, 6); // more than one block of the stream
    const Bytes sent = pixels(p);
    Sink sink;
    const kelmor_stream stream = sink.stream();
    kelmor::PngChunks chunks(stream);
    const kelmor::RowLayout layout = {row_length(p), 8, 700, true, 1, kelmor::RowFilter::paeth};
    const auto rows = kelmor::make_png_pixels(chunks, layout, false, 1000);
    ASSERT_TRUE(chunks.write_head(p));
    for (size_t y = 0; y < 700; ++y) ASSERT_TRUE(rows->row(sent.data() + y * layout.length));
    ASSERT_TRUE(rows->finish() && chunks.flush());
    EXPECT_EQ(Reader(sink.bytes).pixels(), sent);
}

TEST(PngPixels, TheFilterOfSmallestDifferencesIsTaken) {
    const Bytes above = {10, 20, 30, 40, 50, 60}, row = {11, 21, 31, 41, 51, 61};
    Bytes out(7), scratch(7);
    kelmor::filter_row(kelmor::RowFilter::best, {row.data(), above.data(), 6, 1}, out.data(),
                       scratch.data());
    EXPECT_EQ(out, (Bytes{2, 1, 1, 1, 1, 1, 1})); // up: every byte is one more than above
}

TEST(PngPixels, PngcheckFindsNoFault) {
    if (std::system("command -v pngcheck >/dev/null") != 0) GTEST_SKIP() << "pngcheck is missing";
    for (const Form form : forms) {
        for (const int interlaced : {0, 1}) {
            kelmor_png_picture p = with_palette(picture(67, 45, form.depth, form.color_type));
            p.interlaced = interlaced;
            const Bytes file = write(p, pixels(p));
            const std::string path = testing::TempDir() + "kelmor_pngcheck.png";
            FILE *out = std::fopen(path.c_str(), "wb");
            ASSERT_NE(out, nullptr);
            std::fwrite(file.data(), 1, file.size(), out);
            std::fclose(out);
            EXPECT_EQ(std::system(("pngcheck -q " + path).c_str()), 0);
            std::remove(path.c_str());
        }
    }
}
