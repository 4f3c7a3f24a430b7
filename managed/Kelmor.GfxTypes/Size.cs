// A width and a height, in whole numbers.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>A size in whole numbers.</summary>
public struct Size : IEquatable<Size>
{
    /// <summary>Makes a size of width and height.</summary>
    public Size(int width, int height)
    {
        Width = width;
        Height = height;
    }

    /// <summary>The size of nothing.</summary>
    public static Size Empty => default;

    /// <summary>Extent from left to right.</summary>
    public int Width { get; set; }

    /// <summary>Extent from top to bottom.</summary>
    public int Height { get; set; }

    /// <summary>Whether both extents are zero.</summary>
    public readonly bool IsEmpty => Width == 0 && Height == 0;

    /// <summary>Whether two sizes are the same.</summary>
    public static bool operator ==(Size left, Size right) => left.Equals(right);

    /// <summary>Whether two sizes differ.</summary>
    public static bool operator !=(Size left, Size right) => !left.Equals(right);

    /// <inheritdoc/>
    public readonly bool Equals(Size other) => Width == other.Width && Height == other.Height;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Size other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(Width, Height);

    /// <inheritdoc/>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"{{Width={Width}, Height={Height}}}");
}
