// What is saved as PNG is read back as it was.
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Png;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.ImageOptions;
using Kelmor.PSD.Tests.Corpus;

namespace Kelmor.PSD.Tests.Codecs;

public class PngTests
{
    [NativeCorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void A_document_saved_as_png_keeps_every_pixel(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        if (Record.Exception(image.File.Merged.Decode) is not null)
        {
            Assert.ThrowsAny<CoreExceptions.FrameworkException>(() =>
                Save(image, new PngOptions())
            );
            return;
        }
        var png = Save(image, new PngOptions { CompressionLevel = 1 });
        Assert.Equal(
            (image.Width, image.Height, 8, 6),
            (png.Width, png.Height, png.BitDepth, png.ColorType)
        );
        Assert.True(PixelBytes.Of(image).AsSpan().SequenceEqual(png.Rows));
    }

    [NativeTheory]
    [InlineData(PngColorType.Truecolor, 8, new byte[] { 255, 0, 0, 128, 255, 128 })]
    [InlineData(PngColorType.TruecolorWithAlpha, 8, new byte[] { 255, 0, 0, 255, 0, 255, 0, 127 })]
    [InlineData(
        PngColorType.TruecolorWithAlpha,
        16,
        new byte[] { 255, 255, 0, 0, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 127, 127 }
    )]
    [InlineData(PngColorType.GrayscaleWithAlpha, 8, new byte[] { 76, 255, 150, 127 })]
    [InlineData(PngColorType.Grayscale, 8, new byte[] { 76, 203 })]
    [InlineData(PngColorType.Grayscale, 1, new byte[] { 0b0100_0000 })]
    [InlineData(PngColorType.IndexedColor, 8, new byte[] { 0, 1 })]
    [InlineData(PngColorType.IndexedColor, 2, new byte[] { 0b0001_0000 })]
    public void Each_colour_type_has_its_samples(PngColorType type, byte depth, byte[] samples)
    {
        using var image = TwoPixels();
        var png = Save(image, new PngOptions { ColorType = type, BitDepth = depth });
        Assert.Equal(((int)type, (int)depth), (png.ColorType, png.BitDepth));
        Assert.Equal(samples, png.Rows);
    }

    [NativeFact]
    public void The_options_choose_interlacing_and_resolution()
    {
        using var image = TwoPixels();
        var png = Save(
            image,
            new PngOptions
            {
                Progressive = true,
                ResolutionSettings = new ResolutionSetting(300, 300),
            }
        );
        Assert.True(png.IsInterlaced);
        Assert.Equal(11811, png.PixelsPerMeter);
    }

    [NativeFact]
    public void A_part_of_the_image_is_saved()
    {
        using var image = TwoPixels();
        using var stream = new MemoryStream();
        image.Save(stream, new PngOptions(), new Rectangle(1, 0, 1, 1));
        Assert.Equal([0, 255, 0, 127], new PngPicture(stream.ToArray()).Rows);
    }

    [NativeFact]
    public void A_stream_that_throws_gives_its_own_exception()
    {
        using var image = TwoPixels();
        var failure = Assert.Throws<IOException>(() =>
            image.Save(new FailingStream(), new PngOptions())
        );
        Assert.Equal("the stream is full", failure.Message);
    }

    [Fact]
    public void A_depth_that_the_colour_type_lacks_is_refused()
    {
        using var image = TwoPixels();
        var failure = Assert.Throws<PngImageException>(() =>
            image.Save(Stream.Null, new PngOptions { BitDepth = 4 })
        );
        Assert.Equal(
            "A PNG image of the colour type TruecolorWithAlpha cannot have 4 bits.",
            failure.Message
        );
    }

    private static PsdImage TwoPixels()
    {
        var image = new PsdImage(2, 1);
        image
            .AddRegularLayer()
            .SaveArgb32Pixels(image.Bounds, [unchecked((int)0xFFFF0000), 0x7F00FF00]);
        return image;
    }

    private static PngPicture Save(Image image, PngOptions options)
    {
        using var stream = new MemoryStream();
        image.Save(stream, options);
        return new PngPicture(stream.ToArray());
    }

    private sealed class FailingStream : MemoryStream
    {
        public override void Write(ReadOnlySpan<byte> buffer) =>
            throw new IOException("the stream is full");

        public override void Write(byte[] buffer, int offset, int count) =>
            throw new IOException("the stream is full");
    }
}
