// A point in the plane, in whole numbers.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>A point in whole numbers.</summary>
public struct Point : IEquatable<Point>
{
    /// <summary>Makes a point of its coordinates.</summary>
    public Point(int x, int y)
    {
        X = x;
        Y = y;
    }

    /// <summary>The origin.</summary>
    public static Point Empty => default;

    /// <summary>Distance from the left.</summary>
    public int X { get; set; }

    /// <summary>Distance from the top.</summary>
    public int Y { get; set; }

    /// <summary>Whether this is the origin.</summary>
    public readonly bool IsEmpty => X == 0 && Y == 0;

    /// <summary>The point moved by a size.</summary>
    public static Point Add(Point point, Size size) =>
        new(point.X + size.Width, point.Y + size.Height);

    /// <summary>The point moved back by a size.</summary>
    public static Point Subtract(Point point, Size size) =>
        new(point.X - size.Width, point.Y - size.Height);

    /// <summary>Whether two points are the same.</summary>
    public static bool operator ==(Point left, Point right) => left.Equals(right);

    /// <summary>Whether two points differ.</summary>
    public static bool operator !=(Point left, Point right) => !left.Equals(right);

    /// <inheritdoc/>
    public readonly bool Equals(Point other) => X == other.X && Y == other.Y;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Point other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(X, Y);

    /// <inheritdoc/>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"{{X={X}, Y={Y}}}");
}
