// A width and a height in whole pixels.
namespace Kelmor.PSD;

/// <summary>A width and a height in whole pixels.</summary>
public struct Size
{
    /// <summary>The size from the origin to a position.</summary>
    public Size(Point point)
        : this(point.X, point.Y) { }

    /// <summary>A size from its two lengths.</summary>
    public Size(int width, int height)
    {
        Width = width;
        Height = height;
    }

    /// <summary>No width and no height.</summary>
    public static Size Empty => default;

    /// <summary>True when both lengths are 0.</summary>
    public readonly bool IsEmpty => Width == 0 && Height == 0;

    /// <summary>Width in pixels.</summary>
    public int Width { readonly get; set; }

    /// <summary>Height in pixels.</summary>
    public int Height { readonly get; set; }

    public static implicit operator SizeF(Size size) => new(size.Width, size.Height);

    public static explicit operator Point(Size size) => new(size.Width, size.Height);

    public static Size operator +(Size left, Size right) => Add(left, right);

    public static Size operator -(Size left, Size right) => Subtract(left, right);

    public static bool operator ==(Size left, Size right) => left.Same(right);

    public static bool operator !=(Size left, Size right) => !left.Same(right);

    /// <summary>Sum of two sizes.</summary>
    public static Size Add(Size size1, Size size2) =>
        new(size1.Width + size2.Width, size1.Height + size2.Height);

    /// <summary>Both lengths rounded up.</summary>
    public static Size Ceiling(SizeF size) =>
        new(Rounding.Up(size.Width), Rounding.Up(size.Height));

    /// <summary>Difference of two sizes.</summary>
    public static Size Subtract(Size size1, Size size2) =>
        new(size1.Width - size2.Width, size1.Height - size2.Height);

    /// <summary>Both lengths cut towards zero.</summary>
    public static Size Truncate(SizeF size) =>
        new(Rounding.Cut(size.Width), Rounding.Cut(size.Height));

    /// <summary>Both lengths rounded to the nearest whole number, halves to the even one.</summary>
    public static Size Round(SizeF size) =>
        new(Rounding.Nearest(size.Width), Rounding.Nearest(size.Height));

    private readonly bool Same(Size other) => Width == other.Width && Height == other.Height;

    public override readonly bool Equals(object? obj) => obj is Size other && Same(other);

    public override readonly int GetHashCode() => HashCode.Combine(Width, Height);

    public override readonly string ToString() => $"{{Width={Width}, Height={Height}}}";
}
