// Real documents come out of saving as they went in.
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Writing;
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD.Tests.Corpus;

public class WritingTests
{
    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void An_unchanged_document_is_written_byte_for_byte(string file)
    {
        var bytes = CorpusFiles.Bytes(file);
        using var image = Image.Load(new MemoryStream(bytes));
        using var plain = new MemoryStream();
        image.Save(plain);
        Assert.Equal(bytes, plain.ToArray());
        using var withOptions = new MemoryStream();
        image.Save(withOptions, image.GetOriginalOptions());
        Assert.Equal(bytes, withOptions.ToArray());
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_layer_section_made_anew_is_the_one_that_was_read(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        var anew = LayerSectionWriter
            .Build(image.File, image.File.Header.IsBig, null, false)
            .ToArray();
        Assert.Equal(image.File.Layers.Raw.ToArray(), anew);
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void Records_written_field_by_field_are_read_again(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        foreach (var layer in image.Layers)
        {
            layer.Touch();
        }
        using var again = Saved(image, image.GetOriginalOptions());
        Documents.AssertSame(image, again);
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_other_variant_of_the_format_holds_the_same(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        var options = (PsdOptions)image.GetOriginalOptions();
        options.PsdVersion = image.Version == 1 ? PsdVersion.Psb : PsdVersion.Psd;
        options.Version = (int)options.PsdVersion;
        using var other = Saved(image, options);
        Assert.Equal(options.Version, other.Version);
        Documents.AssertSame(image, other);
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void Another_packing_holds_the_same_samples(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        var options = (PsdOptions)image.GetOriginalOptions();
        options.CompressionMethod =
            image.Compression == CompressionMethod.Rle
                ? CompressionMethod.Raw
                : CompressionMethod.Rle;
        if (Record.Exception(image.File.Merged.Decode) is CoreExceptions.FrameworkException)
        {
            // Samples that cannot be unpacked cannot be packed in another way.
            Assert.Throws<CoreExceptions.ImageFormats.PsdImageException>(() =>
                Saved(image, options)
            );
            return;
        }
        using var other = Saved(image, options);
        Assert.Equal(options.CompressionMethod, other.Compression);
        Documents.AssertSame(image, other);
    }

    private static PsdImage Saved(PsdImage image, ImageOptionsBase options)
    {
        var stream = new MemoryStream();
        image.Save(stream, options);
        stream.Position = 0;
        return (PsdImage)Image.Load(stream);
    }
}
