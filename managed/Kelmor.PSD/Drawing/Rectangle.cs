// A rectangle along the axes in whole pixels.
namespace Kelmor.PSD;

/// <summary>A rectangle in whole pixels; its right and lower edges lie outside.</summary>
public struct Rectangle
{
    /// <summary>A rectangle from its upper left corner and its two lengths.</summary>
    public Rectangle(int x, int y, int width, int height)
    {
        X = x;
        Y = y;
        Width = width;
        Height = height;
    }

    /// <summary>A rectangle from its upper left corner and its size.</summary>
    public Rectangle(Point location, Size size)
        : this(location.X, location.Y, size.Width, size.Height) { }

    /// <summary>The rectangle of no size at the origin.</summary>
    public static Rectangle Empty => default;

    /// <summary>Upper left corner.</summary>
    public Point Location
    {
        readonly get => new(X, Y);
        set
        {
            X = value.X;
            Y = value.Y;
        }
    }

    /// <summary>Width and height.</summary>
    public Size Size
    {
        readonly get => new(Width, Height);
        set
        {
            Width = value.Width;
            Height = value.Height;
        }
    }

    /// <summary>Left edge in pixels.</summary>
    public int X { readonly get; set; }

    /// <summary>Upper edge in pixels.</summary>
    public int Y { readonly get; set; }

    /// <summary>Width in pixels.</summary>
    public int Width { readonly get; set; }

    /// <summary>Height in pixels.</summary>
    public int Height { readonly get; set; }

    /// <summary>Left edge; writing it moves the edge alone and keeps the right one.</summary>
    public int Left
    {
        readonly get => X;
        set
        {
            Width += X - value;
            X = value;
        }
    }

    /// <summary>Upper edge; writing it moves the edge alone and keeps the lower one.</summary>
    public int Top
    {
        readonly get => Y;
        set
        {
            Height += Y - value;
            Y = value;
        }
    }

    /// <summary>Right edge, outside of the rectangle; writing it keeps the left one.</summary>
    public int Right
    {
        readonly get => X + Width;
        set => Width = value - X;
    }

    /// <summary>Lower edge, outside of the rectangle; writing it keeps the upper one.</summary>
    public int Bottom
    {
        readonly get => Y + Height;
        set => Height = value - Y;
    }

    /// <summary>True when the rectangle is at the origin and has no size.</summary>
    public readonly bool IsEmpty => X == 0 && Y == 0 && Width == 0 && Height == 0;

    public static implicit operator RectangleF(Rectangle rect) =>
        new(rect.X, rect.Y, rect.Width, rect.Height);

    public static bool operator ==(Rectangle left, Rectangle right) => left.Same(right);

    public static bool operator !=(Rectangle left, Rectangle right) => !left.Same(right);

    /// <summary>The rectangle with two opposite corners.</summary>
    public static Rectangle FromPoints(Point point1, Point point2) =>
        FromLeftTopRightBottom(
            Math.Min(point1.X, point2.X),
            Math.Min(point1.Y, point2.Y),
            Math.Max(point1.X, point2.X),
            Math.Max(point1.Y, point2.Y)
        );

    /// <summary>A rectangle from its four edges.</summary>
    public static Rectangle FromLeftTopRightBottom(int left, int top, int right, int bottom) =>
        new(left, top, right - left, bottom - top);

    /// <summary>Corner and lengths rounded up.</summary>
    public static Rectangle Ceiling(RectangleF value) =>
        new(
            Rounding.Up(value.X),
            Rounding.Up(value.Y),
            Rounding.Up(value.Width),
            Rounding.Up(value.Height)
        );

    /// <summary>Corner and lengths cut towards zero.</summary>
    public static Rectangle Truncate(RectangleF value) =>
        new(
            Rounding.Cut(value.X),
            Rounding.Cut(value.Y),
            Rounding.Cut(value.Width),
            Rounding.Cut(value.Height)
        );

    /// <summary>
    /// Corner and lengths rounded to the nearest whole number, halves to the even one.
    /// </summary>
    public static Rectangle Round(RectangleF value) =>
        new(
            Rounding.Nearest(value.X),
            Rounding.Nearest(value.Y),
            Rounding.Nearest(value.Width),
            Rounding.Nearest(value.Height)
        );

    /// <summary>A rectangle grown on all four sides.</summary>
    /// <param name="rect">The rectangle to grow; it stays as it is.</param>
    /// <param name="x">Pixels to the left and to the right.</param>
    /// <param name="y">Pixels upwards and downwards.</param>
    public static Rectangle Inflate(Rectangle rect, int x, int y)
    {
        rect.Inflate(x, y);
        return rect;
    }

    /// <summary>Grows this rectangle on all four sides; negative numbers shrink it.</summary>
    public void Inflate(int width, int height)
    {
        X -= width;
        Y -= height;
        Width += 2 * width;
        Height += 2 * height;
    }

    /// <summary>Grows this rectangle on all four sides.</summary>
    public void Inflate(Size size) => Inflate(size.Width, size.Height);

    /// <summary>
    /// What two rectangles share; <see cref="Empty"/> when they do not even touch.
    /// </summary>
    public static Rectangle Intersect(Rectangle a, Rectangle b)
    {
        var left = Math.Max(a.X, b.X);
        var top = Math.Max(a.Y, b.Y);
        var right = Math.Min(a.Right, b.Right);
        var bottom = Math.Min(a.Bottom, b.Bottom);
        return right >= left && bottom >= top
            ? FromLeftTopRightBottom(left, top, right, bottom)
            : Empty;
    }

    /// <summary>Shrinks this rectangle to what it shares with another.</summary>
    public void Intersect(Rectangle rect) => this = Intersect(rect, this);

    /// <summary>The smallest rectangle that holds both.</summary>
    public static Rectangle Union(Rectangle a, Rectangle b) =>
        FromLeftTopRightBottom(
            Math.Min(a.X, b.X),
            Math.Min(a.Y, b.Y),
            Math.Max(a.Right, b.Right),
            Math.Max(a.Bottom, b.Bottom)
        );

    /// <summary>True when a position lies inside.</summary>
    public readonly bool Contains(int x, int y) => X <= x && x < Right && Y <= y && y < Bottom;

    /// <summary>True when a position lies inside.</summary>
    public readonly bool Contains(Point point) => Contains(point.X, point.Y);

    /// <summary>True when the whole of another rectangle lies inside.</summary>
    public readonly bool Contains(Rectangle rect) =>
        X <= rect.X && rect.Right <= Right && Y <= rect.Y && rect.Bottom <= Bottom;

    /// <summary>True when both share an area.</summary>
    public readonly bool IntersectsWith(Rectangle rect) =>
        rect.X < Right && X < rect.Right && rect.Y < Bottom && Y < rect.Bottom;

    /// <summary>Moves this rectangle.</summary>
    public void Offset(Point pos) => Offset(pos.X, pos.Y);

    /// <summary>Moves this rectangle.</summary>
    public void Offset(int x, int y)
    {
        X += x;
        Y += y;
    }

    /// <summary>Makes negative lengths positive, with the same area covered.</summary>
    public void Normalize()
    {
        if (Width < 0)
        {
            X += Width;
            Width = -Width;
        }
        if (Height < 0)
        {
            Y += Height;
            Height = -Height;
        }
    }

    private readonly bool Same(Rectangle other) =>
        X == other.X && Y == other.Y && Width == other.Width && Height == other.Height;

    public override readonly bool Equals(object? obj) => obj is Rectangle other && Same(other);

    public override readonly int GetHashCode() => HashCode.Combine(X, Y, Width, Height);

    public override readonly string ToString() =>
        $"{{X={X}, Y={Y}, Width={Width}, Height={Height}}}";
}
