// A position in fractional pixels.
namespace Kelmor.PSD;

/// <summary>A position in fractional pixels; y grows downwards.</summary>
public struct PointF
{
    /// <summary>A position from its two coordinates.</summary>
    public PointF(float x, float y)
    {
        X = x;
        Y = y;
    }

    /// <summary>The lower right corner of a size that starts at the origin.</summary>
    public PointF(SizeF size)
        : this(size.Width, size.Height) { }

    /// <summary>The origin.</summary>
    public static PointF Empty => default;

    /// <summary>True at the origin.</summary>
    public readonly bool IsEmpty => X == 0 && Y == 0;

    /// <summary>Distance from the left edge, in pixels.</summary>
    public float X { readonly get; set; }

    /// <summary>Distance from the upper edge, in pixels.</summary>
    public float Y { readonly get; set; }

    public static explicit operator SizeF(PointF point) => new(point.X, point.Y);

    public static PointF operator +(PointF point, SizeF size) => Add(point, size);

    public static PointF operator -(PointF point, SizeF size) => Subtract(point, size);

    public static bool operator ==(PointF left, PointF right) => left.Same(right);

    public static bool operator !=(PointF left, PointF right) => !left.Same(right);

    /// <summary>Moves this position by another one.</summary>
    public void Offset(PointF point) => Offset(point.X, point.Y);

    /// <summary>Moves this position.</summary>
    public void Offset(float x, float y)
    {
        X += x;
        Y += y;
    }

    /// <summary>The position moved right and down by a size.</summary>
    public static PointF Add(PointF point, SizeF size) =>
        new(point.X + size.Width, point.Y + size.Height);

    /// <summary>The position moved left and up by a size.</summary>
    public static PointF Subtract(PointF point, SizeF size) =>
        new(point.X - size.Width, point.Y - size.Height);

    private readonly bool Same(PointF other) => X == other.X && Y == other.Y;

    public override readonly bool Equals(object? obj) => obj is PointF other && Same(other);

    public override readonly int GetHashCode() => HashCode.Combine(X, Y);

    public override readonly string ToString() => $"{{X={X}, Y={Y}}}";
}
