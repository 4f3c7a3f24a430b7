// A colour as four ink amounts of 8 bits.
namespace Kelmor.PSD;

/// <summary>A colour in cyan, magenta, yellow and black, 0 no ink to 255 full ink.</summary>
public readonly struct CmykColor
{
    private readonly uint value; // 0xCCMMYYKK

    private CmykColor(uint value) => this.value = value;

    /// <summary>No ink at all.</summary>
    public static CmykColor Empty => default;

    /// <summary>A colour from four ink amounts, each 0 to 255.</summary>
    /// <exception cref="ArgumentException">An amount is outside of 0 to 255.</exception>
    public static CmykColor FromParams(int cyan, int magenta, int yellow, int black) =>
        new(
            Ink(cyan, nameof(cyan)) << 24
                | Ink(magenta, nameof(magenta)) << 16
                | Ink(yellow, nameof(yellow)) << 8
                | Ink(black, nameof(black))
        );

    /// <summary>A colour from its number.</summary>
    /// <param name="cmyk">0xCCMMYYKK as a signed number.</param>
    public static CmykColor FromCmyk32(int cmyk) => new(unchecked((uint)cmyk));

    /// <summary>0xCCMMYYKK as a signed number.</summary>
    public int ToCmyk32() => unchecked((int)value);

    /// <summary>The opaque RGB colour by plain multiplication, without a colour profile.</summary>
    public Color ToColor() =>
        Color.FromArgb(
            (255 - C) * (255 - K) / 255,
            (255 - M) * (255 - K) / 255,
            (255 - Y) * (255 - K) / 255
        );

    /// <summary>Cyan, 0 to 255.</summary>
    public byte C => (byte)(value >> 24);

    /// <summary>Magenta, 0 to 255.</summary>
    public byte M => (byte)(value >> 16);

    /// <summary>Yellow, 0 to 255.</summary>
    public byte Y => (byte)(value >> 8);

    /// <summary>Black, 0 to 255.</summary>
    public byte K => (byte)value;

    /// <summary>True when there is no ink.</summary>
    public bool IsEmpty => value == 0;

    public static bool operator ==(CmykColor left, CmykColor right) => left.value == right.value;

    public static bool operator !=(CmykColor left, CmykColor right) => left.value != right.value;

    private bool Same(CmykColor other) => value == other.value;

    public override bool Equals(object? obj) => obj is CmykColor other && Same(other);

    public override int GetHashCode() => value.GetHashCode();

    public override string ToString() => $"CmykColor [C={C}, M={M}, Y={Y}, K={K}]";

    private static uint Ink(int amount, string name) =>
        amount is >= 0 and <= 255
            ? (uint)amount
            : throw new ArgumentException(
                $"The value '{amount}' of '{name}' must lie between 0 and 255.",
                name
            );
}
