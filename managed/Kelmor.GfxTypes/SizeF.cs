// A width and a height, in single-precision numbers.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>A size in single-precision numbers.</summary>
public struct SizeF : IEquatable<SizeF>
{
    /// <summary>Makes a size of width and height.</summary>
    public SizeF(float width, float height)
    {
        Width = width;
        Height = height;
    }

    /// <summary>The size of nothing.</summary>
    public static SizeF Empty => default;

    /// <summary>Extent from left to right.</summary>
    public float Width { get; set; }

    /// <summary>Extent from top to bottom.</summary>
    public float Height { get; set; }

    /// <summary>Whether both extents are zero.</summary>
    public readonly bool IsEmpty => Width == 0 && Height == 0;

    /// <summary>Whether two sizes are the same.</summary>
    public static bool operator ==(SizeF left, SizeF right) => left.Equals(right);

    /// <summary>Whether two sizes differ.</summary>
    public static bool operator !=(SizeF left, SizeF right) => !left.Equals(right);

    /// <inheritdoc/>
    public readonly bool Equals(SizeF other) => Width == other.Width && Height == other.Height;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is SizeF other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(Width, Height);

    /// <inheritdoc/>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"{{Width={Width}, Height={Height}}}");
}
