// From CIE L*a*b* to sRGB.
namespace Kelmor.PSD.FileFormats.Psd.Channels;

/// <summary>
/// CIE 15, 8.2.1, for the white of D50, then the Bradford adapted matrix of sRGB.
/// </summary>
internal static class LabColor
{
    /// <summary>
    /// 0x00RRGGBB of a colour stored in 8 bits: L* 0 to 100 as 0 to 255, a* and b* about 128.
    /// </summary>
    public static int ToRgb(byte lightness, byte a, byte b)
    {
        var middle = (lightness * 100f / 255 + 16) / 116;
        var x = 0.96422f * Unbend(middle + (a - 128) / 500f);
        var y = Unbend(middle);
        var z = 0.82521f * Unbend(middle - (b - 128) / 200f);
        var red = 3.1338561f * x - 1.6168667f * y - 0.4906146f * z;
        var green = -0.9787684f * x + 1.9161415f * y + 0.0334540f * z;
        var blue = 0.0719453f * x - 0.2289914f * y + 1.4052427f * z;
        return Channel(red) << 16 | Channel(green) << 8 | Channel(blue);
    }

    private static int Channel(float light) => Samples.ToByte(Samples.Encode(light));

    private static float Unbend(float value) =>
        value > 6f / 29 ? value * value * value : 3 * (6f / 29) * (6f / 29) * (value - 4f / 29);
}
