// A width and a height in fractional pixels.
namespace Kelmor.PSD;

/// <summary>A width and a height in fractional pixels.</summary>
public struct SizeF
{
    /// <summary>The size from the origin to a position.</summary>
    public SizeF(PointF point)
        : this(point.X, point.Y) { }

    /// <summary>A size from its two lengths.</summary>
    public SizeF(float width, float height)
    {
        Width = width;
        Height = height;
    }

    /// <summary>No width and no height.</summary>
    public static SizeF Empty => default;

    /// <summary>True when both lengths are 0.</summary>
    public readonly bool IsEmpty => Width == 0 && Height == 0;

    /// <summary>Width in pixels.</summary>
    public float Width { readonly get; set; }

    /// <summary>Height in pixels.</summary>
    public float Height { readonly get; set; }

    public static explicit operator PointF(SizeF size) => new(size.Width, size.Height);

    public static SizeF operator +(SizeF left, SizeF right) => Add(left, right);

    public static SizeF operator -(SizeF left, SizeF right) => Subtract(left, right);

    public static bool operator ==(SizeF left, SizeF right) => left.Same(right);

    public static bool operator !=(SizeF left, SizeF right) => !left.Same(right);

    /// <summary>Sum of two sizes.</summary>
    public static SizeF Add(SizeF size1, SizeF size2) =>
        new(size1.Width + size2.Width, size1.Height + size2.Height);

    /// <summary>Difference of two sizes.</summary>
    public static SizeF Subtract(SizeF size1, SizeF size2) =>
        new(size1.Width - size2.Width, size1.Height - size2.Height);

    /// <summary>The size as a position.</summary>
    public readonly PointF ToPointF() => (PointF)this;

    /// <summary>Both lengths cut towards zero.</summary>
    public readonly Size ToSize() => Size.Truncate(this);

    private readonly bool Same(SizeF other) => Width == other.Width && Height == other.Height;

    public override readonly bool Equals(object? obj) => obj is SizeF other && Same(other);

    public override readonly int GetHashCode() => HashCode.Combine(Width, Height);

    public override readonly string ToString() => $"{{Width={Width}, Height={Height}}}";
}
