// Arithmetic of single channels, rounded to the nearest.
namespace Kelmor.PSD;

internal static class ColorMath
{
    /// <summary>
    /// Brightness of 0xAARRGGBB, 0 to 255, by the weights of ITU-R BT.601 in 65536ths.
    /// </summary>
    public static byte Luma(int argb) =>
        (byte)(
            (19595 * (argb >> 16 & 255) + 38470 * (argb >> 8 & 255) + 7471 * (argb & 255) + 32768)
            >> 16
        );

    /// <summary>The lowest byte times an alpha of 0 to 255.</summary>
    public static int Scaled(int channel, int alpha) => ((channel & 255) * alpha + 127) / 255;

    /// <summary>A pixel blended with white, its alpha kept.</summary>
    public static int OnWhite(int argb)
    {
        var alpha = (int)((uint)argb >> 24);
        if (alpha == 255)
        {
            return argb;
        }
        var white = 255 - alpha;
        return alpha << 24
            | (Scaled(argb >> 16, alpha) + white) << 16
            | (Scaled(argb >> 8, alpha) + white) << 8
            | (Scaled(argb, alpha) + white);
    }
}
