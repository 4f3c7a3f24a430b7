// Changes of pixels that look at one pixel at a time.
namespace Kelmor.PSD;

internal static class PixelEdits
{
    /// <summary>
    /// Replaces a colour and those that differ from it by at most `difference` in each channel.
    /// </summary>
    public static void ReplaceColor(
        RasterImage image,
        int oldColor,
        byte difference,
        int newColor
    ) => Change(image, pixel => IsNear(pixel, oldColor, difference) ? newColor : pixel);

    /// <summary>
    /// Gives every pixel that is not wholly transparent another colour under its own alpha.
    /// </summary>
    public static void ReplaceNonTransparentColors(RasterImage image, int newColor) =>
        Change(
            image,
            pixel =>
                (pixel & unchecked((int)0xFF000000)) == 0
                    ? pixel
                    : pixel & unchecked((int)0xFF000000) | newColor & 0xFFFFFF
        );

    /// <summary>Multiplies the colours by their alpha, rounded.</summary>
    public static void Premultiply(Span<int> pixels)
    {
        foreach (ref var pixel in pixels)
        {
            var alpha = (int)((uint)pixel >> 24);
            pixel =
                pixel & unchecked((int)0xFF000000)
                | ColorMath.Scaled(pixel >> 16, alpha) << 16
                | ColorMath.Scaled(pixel >> 8, alpha) << 8
                | ColorMath.Scaled(pixel, alpha);
        }
    }

    /// <summary>From 8 to 16 bits in each channel: 255 becomes 65535.</summary>
    public static long Widen(int argb)
    {
        var value = unchecked((uint)argb);
        ulong spread =
            value & 0xFF
            | (value & 0xFF00UL) << 8
            | (value & 0xFF0000UL) << 16
            | (value & 0xFF000000UL) << 24;
        return unchecked((long)(spread * 257));
    }

    private static void Change(RasterImage image, Func<int, int> change)
    {
        foreach (var band in image.Bands(image.Bounds))
        {
            var pixels = image.LoadArgb32Pixels(band);
            var changed = Array.ConvertAll(pixels, pixel => change(pixel));
            if (!changed.AsSpan().SequenceEqual(pixels))
            {
                image.SaveArgb32Pixels(band, changed);
            }
        }
    }

    private static bool IsNear(int left, int right, int difference)
    {
        for (var shift = 0; shift < 32; shift += 8)
        {
            if (Math.Abs((left >> shift & 255) - (right >> shift & 255)) > difference)
            {
                return false;
            }
        }
        return true;
    }
}
