// A rectangle with upright sides, in single-precision numbers.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>A rectangle in single-precision numbers; right and bottom are outside.</summary>
public struct RectangleF : IEquatable<RectangleF>
{
    /// <summary>Makes a rectangle of its upper left corner and its extents.</summary>
    public RectangleF(float x, float y, float width, float height)
    {
        X = x;
        Y = y;
        Width = width;
        Height = height;
    }

    /// <summary>Makes a rectangle of its upper left corner and its size.</summary>
    public RectangleF(PointF location, SizeF size)
        : this(location.X, location.Y, size.Width, size.Height)
    {
    }

    /// <summary>The rectangle of nothing.</summary>
    public static RectangleF Empty => default;

    /// <summary>Left side.</summary>
    public float X { get; set; }

    /// <summary>Upper side.</summary>
    public float Y { get; set; }

    /// <summary>Extent from left to right.</summary>
    public float Width { get; set; }

    /// <summary>Extent from top to bottom.</summary>
    public float Height { get; set; }

    /// <summary>Left side.</summary>
    public readonly float Left => X;

    /// <summary>Upper side.</summary>
    public readonly float Top => Y;

    /// <summary>Right side.</summary>
    public readonly float Right => X + Width;

    /// <summary>Lower side.</summary>
    public readonly float Bottom => Y + Height;

    /// <summary>Upper left corner.</summary>
    public PointF Location
    {
        readonly get => new(X, Y);
        set => (X, Y) = (value.X, value.Y);
    }

    /// <summary>Width and height.</summary>
    public SizeF Size
    {
        readonly get => new(Width, Height);
        set => (Width, Height) = (value.Width, value.Height);
    }

    /// <summary>Whether there is no area in it.</summary>
    public readonly bool IsEmpty => Width <= 0 || Height <= 0;

    /// <summary>The rectangle between four sides.</summary>
    public static RectangleF FromLTRB(float left, float top, float right, float bottom) =>
        new(left, top, right - left, bottom - top);

    /// <summary>What two rectangles have in common; empty when they are apart.</summary>
    public static RectangleF Intersect(RectangleF first, RectangleF second)
    {
        float left = Math.Max(first.X, second.X);
        float top = Math.Max(first.Y, second.Y);
        float right = Math.Min(first.Right, second.Right);
        float bottom = Math.Min(first.Bottom, second.Bottom);
        return right >= left && bottom >= top ? FromLTRB(left, top, right, bottom) : Empty;
    }

    /// <summary>The smallest rectangle round two.</summary>
    public static RectangleF Union(RectangleF first, RectangleF second) => FromLTRB(
        Math.Min(first.X, second.X), Math.Min(first.Y, second.Y),
        Math.Max(first.Right, second.Right), Math.Max(first.Bottom, second.Bottom));

    /// <summary>Whether two rectangles are the same.</summary>
    public static bool operator ==(RectangleF left, RectangleF right) => left.Equals(right);

    /// <summary>Whether two rectangles differ.</summary>
    public static bool operator !=(RectangleF left, RectangleF right) => !left.Equals(right);

    /// <summary>Whether a point is inside.</summary>
    public readonly bool Contains(float x, float y) => X <= x && x < Right && Y <= y && y < Bottom;

    /// <summary>Whether a point is inside.</summary>
    public readonly bool Contains(PointF point) => Contains(point.X, point.Y);

    /// <summary>Whether another rectangle is wholly inside.</summary>
    public readonly bool Contains(RectangleF other) =>
        X <= other.X && other.Right <= Right && Y <= other.Y && other.Bottom <= Bottom;

    /// <summary>Whether another rectangle shares some area.</summary>
    public readonly bool IntersectsWith(RectangleF other) =>
        other.X < Right && X < other.Right && other.Y < Bottom && Y < other.Bottom;

    /// <summary>Moves each side outwards.</summary>
    public void Inflate(float width, float height)
    {
        X -= width;
        Y -= height;
        Width += 2 * width;
        Height += 2 * height;
    }

    /// <summary>Moves the rectangle.</summary>
    public void Offset(float x, float y)
    {
        X += x;
        Y += y;
    }

    /// <inheritdoc/>
    public readonly bool Equals(RectangleF other) =>
        X == other.X && Y == other.Y && Width == other.Width && Height == other.Height;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is RectangleF other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(X, Y, Width, Height);

    /// <inheritdoc/>
    public override readonly string ToString() => string.Create(
        CultureInfo.InvariantCulture,
        $"{{X={X}, Y={Y}, Width={Width}, Height={Height}}}");
}
