// A point in the plane, in single-precision numbers.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>A point in single-precision numbers.</summary>
public struct PointF : IEquatable<PointF>
{
    /// <summary>Makes a point of its coordinates.</summary>
    public PointF(float x, float y)
    {
        X = x;
        Y = y;
    }

    /// <summary>The origin.</summary>
    public static PointF Empty => default;

    /// <summary>Distance from the left.</summary>
    public float X { get; set; }

    /// <summary>Distance from the top.</summary>
    public float Y { get; set; }

    /// <summary>Whether this is the origin.</summary>
    public readonly bool IsEmpty => X == 0 && Y == 0;

    /// <summary>The point moved by a size.</summary>
    public static PointF Add(PointF point, SizeF size) =>
        new(point.X + size.Width, point.Y + size.Height);

    /// <summary>The point moved back by a size.</summary>
    public static PointF Subtract(PointF point, SizeF size) =>
        new(point.X - size.Width, point.Y - size.Height);

    /// <summary>Whether two points are the same.</summary>
    public static bool operator ==(PointF left, PointF right) => left.Equals(right);

    /// <summary>Whether two points differ.</summary>
    public static bool operator !=(PointF left, PointF right) => !left.Equals(right);

    /// <inheritdoc/>
    public readonly bool Equals(PointF other) => X == other.X && Y == other.Y;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is PointF other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(X, Y);

    /// <inheritdoc/>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"{{X={X}, Y={Y}}}");
}
