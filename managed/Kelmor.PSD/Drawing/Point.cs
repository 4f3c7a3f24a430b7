// A position in whole pixels.
namespace Kelmor.PSD;

/// <summary>A position in whole pixels; y grows downwards.</summary>
public struct Point
{
    /// <summary>A position from its two coordinates.</summary>
    public Point(int x, int y)
    {
        X = x;
        Y = y;
    }

    /// <summary>The lower right corner of a size that starts at the origin.</summary>
    public Point(Size size)
        : this(size.Width, size.Height) { }

    /// <summary>The origin.</summary>
    public static Point Empty => default;

    /// <summary>True at the origin.</summary>
    public readonly bool IsEmpty => X == 0 && Y == 0;

    /// <summary>Distance from the left edge, in pixels.</summary>
    public int X { readonly get; set; }

    /// <summary>Distance from the upper edge, in pixels.</summary>
    public int Y { readonly get; set; }

    public static implicit operator PointF(Point point) => new(point.X, point.Y);

    public static explicit operator Size(Point point) => new(point.X, point.Y);

    public static Point operator +(Point point, Size size) => Add(point, size);

    public static Point operator -(Point point, Size size) => Subtract(point, size);

    public static bool operator ==(Point left, Point right) => left.Same(right);

    public static bool operator !=(Point left, Point right) => !left.Same(right);

    /// <summary>Moves this position by another one.</summary>
    public void Offset(Point point) => Offset(point.X, point.Y);

    /// <summary>Moves this position.</summary>
    public void Offset(int x, int y)
    {
        X += x;
        Y += y;
    }

    /// <summary>The position moved right and down by a size.</summary>
    public static Point Add(Point point, Size size) =>
        new(point.X + size.Width, point.Y + size.Height);

    /// <summary>The position moved left and up by a size.</summary>
    public static Point Subtract(Point point, Size size) =>
        new(point.X - size.Width, point.Y - size.Height);

    /// <summary>Both coordinates rounded up.</summary>
    public static Point Ceiling(PointF point) => new(Rounding.Up(point.X), Rounding.Up(point.Y));

    /// <summary>
    /// Both coordinates rounded to the nearest whole number, halves to the even one.
    /// </summary>
    public static Point Round(PointF point) =>
        new(Rounding.Nearest(point.X), Rounding.Nearest(point.Y));

    /// <summary>Both coordinates cut towards zero.</summary>
    public static Point Truncate(PointF point) => new(Rounding.Cut(point.X), Rounding.Cut(point.Y));

    private readonly bool Same(Point other) => X == other.X && Y == other.Y;

    public override readonly bool Equals(object? obj) => obj is Point other && Same(other);

    public override readonly int GetHashCode() => HashCode.Combine(X, Y);

    public override readonly string ToString() => $"{{X={X}, Y={Y}}}";
}
