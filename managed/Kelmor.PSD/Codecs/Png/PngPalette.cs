// Finds the palette of an indexed PNG image.
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD.Codecs.Png;

internal static class PngPalette
{
    /// <summary>
    /// The palette of the options, else that of the image, else one of all its colours.
    /// </summary>
    /// <exception cref="NotSupportedException">The image has more colours than a palette can
    /// hold.</exception>
    public static IColorPalette For(RasterImage image, PngOptions options, Rectangle area)
    {
        var most = 1 << options.BitDepth;
        var palette =
            options.Palette ?? image.Palette ?? new ColorPalette(Collect(image, area, most));
        return palette.EntriesCount <= most
            ? palette
            : throw new CoreExceptions.ImageFormats.PngImageException(
                $"A palette of {palette.EntriesCount} colours does not fit into "
                    + $"{options.BitDepth} bits."
            );
    }

    private static int[] Collect(RasterImage image, Rectangle area, int most)
    {
        var colors = new HashSet<int>();
        foreach (var band in image.Bands(area))
        {
            var pixels = new int[PixelAreas.Count(band)];
            image.ReadPixels(band, pixels);
            colors.UnionWith(pixels);
            if (colors.Count > most)
            {
                throw new NotSupportedException(
                    $"The image has more than {most} colours: name a palette in the options."
                );
            }
        }
        return [.. colors];
    }
}
