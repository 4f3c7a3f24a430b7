// A rectangle with upright sides, in whole numbers.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>A rectangle in whole numbers; right and bottom are outside.</summary>
public struct Rectangle : IEquatable<Rectangle>
{
    /// <summary>Makes a rectangle of its upper left corner and its extents.</summary>
    public Rectangle(int x, int y, int width, int height)
    {
        X = x;
        Y = y;
        Width = width;
        Height = height;
    }

    /// <summary>Makes a rectangle of its upper left corner and its size.</summary>
    public Rectangle(Point location, Size size)
        : this(location.X, location.Y, size.Width, size.Height)
    {
    }

    /// <summary>The rectangle of nothing.</summary>
    public static Rectangle Empty => default;

    /// <summary>Left side.</summary>
    public int X { get; set; }

    /// <summary>Upper side.</summary>
    public int Y { get; set; }

    /// <summary>Extent from left to right.</summary>
    public int Width { get; set; }

    /// <summary>Extent from top to bottom.</summary>
    public int Height { get; set; }

    /// <summary>Left side.</summary>
    public readonly int Left => X;

    /// <summary>Upper side.</summary>
    public readonly int Top => Y;

    /// <summary>Right side.</summary>
    public readonly int Right => X + Width;

    /// <summary>Lower side.</summary>
    public readonly int Bottom => Y + Height;

    /// <summary>Upper left corner.</summary>
    public Point Location
    {
        readonly get => new(X, Y);
        set => (X, Y) = (value.X, value.Y);
    }

    /// <summary>Width and height.</summary>
    public Size Size
    {
        readonly get => new(Width, Height);
        set => (Width, Height) = (value.Width, value.Height);
    }

    /// <summary>Whether there is no area in it.</summary>
    public readonly bool IsEmpty => Width <= 0 || Height <= 0;

    /// <summary>The rectangle between four sides.</summary>
    public static Rectangle FromLTRB(int left, int top, int right, int bottom) =>
        new(left, top, right - left, bottom - top);

    /// <summary>What two rectangles have in common; empty when they are apart.</summary>
    public static Rectangle Intersect(Rectangle first, Rectangle second)
    {
        int left = Math.Max(first.X, second.X);
        int top = Math.Max(first.Y, second.Y);
        int right = Math.Min(first.Right, second.Right);
        int bottom = Math.Min(first.Bottom, second.Bottom);
        return right >= left && bottom >= top ? FromLTRB(left, top, right, bottom) : Empty;
    }

    /// <summary>The smallest rectangle round two.</summary>
    public static Rectangle Union(Rectangle first, Rectangle second) => FromLTRB(
        Math.Min(first.X, second.X), Math.Min(first.Y, second.Y),
        Math.Max(first.Right, second.Right), Math.Max(first.Bottom, second.Bottom));

    /// <summary>Whether two rectangles are the same.</summary>
    public static bool operator ==(Rectangle left, Rectangle right) => left.Equals(right);

    /// <summary>Whether two rectangles differ.</summary>
    public static bool operator !=(Rectangle left, Rectangle right) => !left.Equals(right);

    /// <summary>Whether a point is inside.</summary>
    public readonly bool Contains(int x, int y) => X <= x && x < Right && Y <= y && y < Bottom;

    /// <summary>Whether a point is inside.</summary>
    public readonly bool Contains(Point point) => Contains(point.X, point.Y);

    /// <summary>Whether another rectangle is wholly inside.</summary>
    public readonly bool Contains(Rectangle other) =>
        X <= other.X && other.Right <= Right && Y <= other.Y && other.Bottom <= Bottom;

    /// <summary>Whether another rectangle shares some area.</summary>
    public readonly bool IntersectsWith(Rectangle other) =>
        other.X < Right && X < other.Right && other.Y < Bottom && Y < other.Bottom;

    /// <summary>Moves each side outwards.</summary>
    public void Inflate(int width, int height)
    {
        X -= width;
        Y -= height;
        Width += 2 * width;
        Height += 2 * height;
    }

    /// <summary>Moves the rectangle.</summary>
    public void Offset(int x, int y)
    {
        X += x;
        Y += y;
    }

    /// <inheritdoc/>
    public readonly bool Equals(Rectangle other) =>
        X == other.X && Y == other.Y && Width == other.Width && Height == other.Height;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Rectangle other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(X, Y, Width, Height);

    /// <inheritdoc/>
    public override readonly string ToString() => string.Create(
        CultureInfo.InvariantCulture,
        $"{{X={X}, Y={Y}, Width={Width}, Height={Height}}}");
}
