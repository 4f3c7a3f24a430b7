// The merged pixels of real documents equal those of independent decoders.
using System.Text.Json;
using Kelmor.PSD.FileFormats.Psd;

namespace Kelmor.PSD.Tests.Corpus;

public class PixelTests
{
    // Decoders differ by rounding where white is taken out of half transparent pixels.
    private const double LargestGridDifference = 1.0;

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void Merged_pixels_of_8_bits_equal_a_reference(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        var merged = CorpusFiles.Truth(file).GetProperty("merged");
        var references = References(merged).ToList();
        var isReal = !CorpusFiles
            .Truth(file)
            .GetProperty("expect")
            .GetString()!
            .Contains("no real merged image", StringComparison.Ordinal);
        var comparable =
            isReal
            && image.BitsPerChannel <= 8
            && references.Count > 0
            && image.ColorMode
                is ColorModes.Rgb
                    or ColorModes.Grayscale
                    or ColorModes.Bitmap
                    or ColorModes.Indexed
                    or ColorModes.Duotone;
        if (!comparable)
        {
            return;
        }
        var rgba = PixelBytes.Of(image);
        if (image.Palette is IPsdColorPalette { HasTransparentColor: true })
        {
            // The references leave the transparent entry of a palette opaque.
            PixelBytes.MakeOpaque(rgba);
        }
        if (
            references.Exists(reference =>
                reference.GetProperty("rgba8_sha256").GetString() == ReadingTests.Hash(rgba)
            )
        )
        {
            return;
        }
        var difference = references.Min(reference =>
            PixelBytes.GridDifference(reference.GetProperty("grid"), rgba, image.Size)
        );
        Assert.True(image.HasAlpha, $"opaque pixels differ by {difference}");
        Assert.InRange(difference, 0, LargestGridDifference);
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void Merged_pixels_of_any_kind_can_be_loaded(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        if (Record.Exception(image.File.Merged.Decode) is null)
        {
            Assert.Equal(image.Width * image.Height, image.LoadArgb32Pixels(image.Bounds).Length);
        }
    }

    private static IEnumerable<JsonElement> References(JsonElement merged) =>
        from name in (string[])["psd_tools_1_18_0", "psd_tools_1_9_24", "imagemagick_6_9_11"]
        let reference = merged.TryGetProperty(name, out var found) ? found : default
        where
            reference.ValueKind == JsonValueKind.Object
            && reference.TryGetProperty("rgba8_sha256", out _)
            && reference.GetProperty("grid").ValueKind == JsonValueKind.Object
        select reference;
}
