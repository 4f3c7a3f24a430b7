// A colour of four 8-bit channels.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>A colour with alpha, red, green and blue from 0 to 255.</summary>
public readonly struct Color : IEquatable<Color>
{
    private readonly uint _argb;
    private readonly bool _set;

    private Color(uint argb)
    {
        _argb = argb;
        _set = true;
    }

    /// <summary>The colour that has not been set.</summary>
    public static Color Empty => default;

    /// <summary>White without opacity.</summary>
    public static Color Transparent => new(0x00FFFFFF);

    /// <summary>Black.</summary>
    public static Color Black => new(0xFF000000);

    /// <summary>White.</summary>
    public static Color White => new(0xFFFFFFFF);

    /// <summary>Gray.</summary>
    public static Color Gray => new(0xFF808080);

    /// <summary>Red.</summary>
    public static Color Red => new(0xFFFF0000);

    /// <summary>Green.</summary>
    public static Color Green => new(0xFF008000);

    /// <summary>Blue.</summary>
    public static Color Blue => new(0xFF0000FF);

    /// <summary>Yellow.</summary>
    public static Color Yellow => new(0xFFFFFF00);

    /// <summary>Cyan.</summary>
    public static Color Cyan => new(0xFF00FFFF);

    /// <summary>Magenta.</summary>
    public static Color Magenta => new(0xFFFF00FF);

    /// <summary>Opacity.</summary>
    public byte A => (byte)(_argb >> 24);

    /// <summary>Red channel.</summary>
    public byte R => (byte)(_argb >> 16);

    /// <summary>Green channel.</summary>
    public byte G => (byte)(_argb >> 8);

    /// <summary>Blue channel.</summary>
    public byte B => (byte)_argb;

    /// <summary>Whether the colour has not been set.</summary>
    public bool IsEmpty => !_set;

    /// <summary>A colour of one number, alpha in the highest byte.</summary>
    public static Color FromArgb(int argb) => new(unchecked((uint)argb));

    /// <summary>An opaque colour.</summary>
    public static Color FromArgb(int red, int green, int blue) => FromArgb(255, red, green, blue);

    /// <summary>A colour of its four channels.</summary>
    public static Color FromArgb(int alpha, int red, int green, int blue) =>
        new(((uint)Channel(alpha, nameof(alpha)) << 24) | ((uint)Channel(red, nameof(red)) << 16)
            | ((uint)Channel(green, nameof(green)) << 8) | (uint)Channel(blue, nameof(blue)));

    /// <summary>Whether two colours are the same.</summary>
    public static bool operator ==(Color left, Color right) => left.Equals(right);

    /// <summary>Whether two colours differ.</summary>
    public static bool operator !=(Color left, Color right) => !left.Equals(right);

    /// <summary>The colour as one number, alpha in the highest byte.</summary>
    public int ToArgb() => unchecked((int)_argb);

    /// <summary>Brightness from 0 to 1, the middle of the largest and smallest channel.</summary>
    public float GetBrightness() => (Largest + Smallest) / (2f * 255f);

    /// <summary>Saturation from 0 to 1 at that brightness.</summary>
    public float GetSaturation()
    {
        int sum = Largest + Smallest;
        int range = Largest - Smallest;
        return range == 0 ? 0f : range / (float)(sum <= 255 ? sum : 510 - sum);
    }

    /// <summary>Hue in degrees; 0 for a gray.</summary>
    public float GetHue()
    {
        int range = Largest - Smallest;
        if (range == 0)
        {
            return 0f;
        }
        float sector = Largest == R
            ? (G - B) / (float)range
            : Largest == G ? 2f + ((B - R) / (float)range) : 4f + ((R - G) / (float)range);
        float hue = sector * 60f;
        return hue < 0f ? hue + 360f : hue;
    }

    /// <inheritdoc/>
    public bool Equals(Color other) => _argb == other._argb && _set == other._set;

    /// <inheritdoc/>
    public override bool Equals(object? obj) => obj is Color other && Equals(other);

    /// <inheritdoc/>
    public override int GetHashCode() => HashCode.Combine(_argb, _set);

    /// <inheritdoc/>
    public override string ToString() => IsEmpty
        ? "Color [Empty]"
        : string.Create(CultureInfo.InvariantCulture, $"Color [A={A}, R={R}, G={G}, B={B}]");

    private int Largest => Math.Max(R, Math.Max(G, B));

    private int Smallest => Math.Min(R, Math.Min(G, B));

    private static int Channel(int value, string name) => (uint)value <= 255
        ? value
        : throw new ArgumentOutOfRangeException(name, value, "A channel is from 0 to 255.");
}
