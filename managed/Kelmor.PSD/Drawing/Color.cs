// A colour of 8 bits a channel with alpha, and the name it was made from.
namespace Kelmor.PSD;

/// <summary>A colour in RGB with alpha, 0 to 255 in each channel, not premultiplied.</summary>
public readonly partial struct Color
{
    private readonly int argb; // 0xAARRGGBB
    private readonly KnownColor known; // None for a colour that was made from numbers
    private readonly bool isSet; // false in `default`: Empty is no transparent black

    private Color(int argb, KnownColor known)
    {
        this.argb = argb;
        this.known = known;
        isSet = true;
    }

    /// <summary>A colour from its number.</summary>
    /// <param name="argb">0xAARRGGBB.</param>
    public static Color FromArgb(int argb) => new(argb, KnownColor.None);

    /// <summary>A colour from four channels, each 0 to 255.</summary>
    /// <exception cref="ArgumentException">A channel is outside of 0 to 255.</exception>
    public static Color FromArgb(int alpha, int red, int green, int blue) =>
        new(
            Channel(alpha, nameof(alpha)) << 24
                | Channel(red, nameof(red)) << 16
                | Channel(green, nameof(green)) << 8
                | Channel(blue, nameof(blue)),
            KnownColor.None
        );

    /// <summary>Another colour with a new alpha, 0 to 255.</summary>
    public static Color FromArgb(int alpha, Color baseColor) =>
        new(Channel(alpha, nameof(alpha)) << 24 | baseColor.argb & 0xFFFFFF, KnownColor.None);

    /// <summary>An opaque colour from three channels, each 0 to 255.</summary>
    public static Color FromArgb(int red, int green, int blue) => FromArgb(255, red, green, blue);

    /// <summary>The colour as ink amounts by plain subtraction, without a colour profile.</summary>
    public CmykColor ToCmyk()
    {
        var key = 255 - Math.Max(R, Math.Max(G, B));
        var rest = 255 - key;
        if (rest == 0)
        {
            return CmykColor.FromParams(0, 0, 0, 255);
        }
        return CmykColor.FromParams(
            (rest - R) * 255 / rest,
            (rest - G) * 255 / rest,
            (rest - B) * 255 / rest,
            key
        );
    }

    /// <summary>The colour as ink amounts through the default CMYK profile.</summary>
    public CmykColor ToCmykIcc() => throw NotYet.Member();

    /// <summary>A named colour; a number that names none gives <see cref="Empty"/>.</summary>
    public static Color FromKnownColor(KnownColor color) =>
        KnownColors.Has(color) ? new Color(KnownColors.ToArgb(color), color) : default;

    /// <summary>
    /// A colour by its name, in any case; a name that is not known gives <see cref="Empty"/>.
    /// </summary>
    public static Color FromName(string name)
    {
        ArgumentNullException.ThrowIfNull(name);
        return KnownColors.TryFind(name, out var color) ? FromKnownColor(color) : default;
    }

    /// <summary>Lightness of the HSL model, 0 to 1.</summary>
    public float GetBrightness() => (Largest + Smallest) / 510f;

    /// <summary>Hue of the HSL model in degrees, 0 to 360; 0 for grays.</summary>
    public float GetHue()
    {
        float range = Largest - Smallest;
        if (range == 0)
        {
            return 0;
        }
        var hue =
            Largest == R ? (G - B) / range
            : Largest == G ? 2 + (B - R) / range
            : 4 + (R - G) / range;
        return hue < 0 ? hue * 60 + 360 : hue * 60;
    }

    /// <summary>Saturation of the HSL model, 0 to 1.</summary>
    public float GetSaturation()
    {
        float range = Largest - Smallest;
        var sum = Largest + Smallest;
        return range == 0 ? 0 : range / (sum <= 255 ? sum : 510 - sum);
    }

    /// <summary>0xAARRGGBB.</summary>
    public int ToArgb() => argb;

    /// <summary>The name that the colour was made from, else None.</summary>
    public KnownColor ToKnownColor() => known;

    /// <summary>Red, 0 to 255.</summary>
    public byte R => (byte)(argb >> 16);

    /// <summary>Green, 0 to 255.</summary>
    public byte G => (byte)(argb >> 8);

    /// <summary>Blue, 0 to 255.</summary>
    public byte B => (byte)argb;

    /// <summary>Alpha, 0 transparent to 255 opaque.</summary>
    public byte A => (byte)(argb >> 24);

    /// <summary>True when the colour was made from a name.</summary>
    public bool IsKnownColor => known != KnownColor.None;

    /// <summary>True for the value that no colour was put into.</summary>
    public bool IsEmpty => !isSet;

    /// <summary>True when the colour was made from a name.</summary>
    public bool IsNamedColor => IsKnownColor;

    /// <summary>The colour's name; else its number in hexadecimal digits.</summary>
    public string Name =>
        IsKnownColor ? known.ToString()
        : isSet ? argb.ToString("x")
        : "0";

    private int Largest => Math.Max(R, Math.Max(G, B));

    private int Smallest => Math.Min(R, Math.Min(G, B));

    public static bool operator ==(Color left, Color right) => left.Same(right);

    public static bool operator !=(Color left, Color right) => !left.Same(right);

    /// <summary>
    /// Same number and same name: a named colour differs from the same number without a name.
    /// </summary>
    private bool Same(Color other) =>
        argb == other.argb && known == other.known && isSet == other.isSet;

    public override bool Equals(object? obj) => obj is Color other && Same(other);

    public override int GetHashCode() => HashCode.Combine(argb, known, isSet);

    public override string ToString() =>
        IsEmpty ? "Color [Empty]"
        : IsKnownColor ? $"Color [{known}]"
        : $"Color [A={A}, R={R}, G={G}, B={B}]";

    private static int Channel(int value, string name) =>
        value is >= 0 and <= 255
            ? value
            : throw new ArgumentException(
                $"The value '{value}' of '{name}' must lie between 0 and 255.",
                name
            );
}
