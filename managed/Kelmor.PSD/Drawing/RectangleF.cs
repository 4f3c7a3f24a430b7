// A rectangle along the axes in fractional pixels.
namespace Kelmor.PSD;

/// <summary>A rectangle in fractional pixels; its right and lower edges lie outside.</summary>
public struct RectangleF
{
    /// <summary>A rectangle from its upper left corner and its two lengths.</summary>
    public RectangleF(float x, float y, float width, float height)
    {
        X = x;
        Y = y;
        Width = width;
        Height = height;
    }

    /// <summary>A rectangle from its upper left corner and its size.</summary>
    public RectangleF(PointF location, SizeF size)
        : this(location.X, location.Y, size.Width, size.Height) { }

    /// <summary>The rectangle of no size at the origin.</summary>
    public static RectangleF Empty => default;

    /// <summary>Upper left corner.</summary>
    public PointF Location
    {
        readonly get => new(X, Y);
        set
        {
            X = value.X;
            Y = value.Y;
        }
    }

    /// <summary>Width and height.</summary>
    public SizeF Size
    {
        readonly get => new(Width, Height);
        set
        {
            Width = value.Width;
            Height = value.Height;
        }
    }

    /// <summary>Left edge in pixels.</summary>
    public float X { readonly get; set; }

    /// <summary>Upper edge in pixels.</summary>
    public float Y { readonly get; set; }

    /// <summary>Width in pixels.</summary>
    public float Width { readonly get; set; }

    /// <summary>Height in pixels.</summary>
    public float Height { readonly get; set; }

    /// <summary>Left edge; writing it moves the edge alone and keeps the right one.</summary>
    public float Left
    {
        readonly get => X;
        set
        {
            Width += X - value;
            X = value;
        }
    }

    /// <summary>Upper edge; writing it moves the edge alone and keeps the lower one.</summary>
    public float Top
    {
        readonly get => Y;
        set
        {
            Height += Y - value;
            Y = value;
        }
    }

    /// <summary>Right edge, outside of the rectangle; writing it keeps the left one.</summary>
    public float Right
    {
        readonly get => X + Width;
        set => Width = value - X;
    }

    /// <summary>Lower edge, outside of the rectangle; writing it keeps the upper one.</summary>
    public float Bottom
    {
        readonly get => Y + Height;
        set => Height = value - Y;
    }

    /// <summary>True when a length is not positive.</summary>
    public readonly bool IsEmpty => Width <= 0 || Height <= 0;

    public static bool operator ==(RectangleF left, RectangleF right) => left.Same(right);

    public static bool operator !=(RectangleF left, RectangleF right) => !left.Same(right);

    /// <summary>The rectangle with two opposite corners.</summary>
    public static RectangleF FromPoints(PointF point1, PointF point2) =>
        FromLeftTopRightBottom(
            Math.Min(point1.X, point2.X),
            Math.Min(point1.Y, point2.Y),
            Math.Max(point1.X, point2.X),
            Math.Max(point1.Y, point2.Y)
        );

    /// <summary>A rectangle from its four edges.</summary>
    public static RectangleF FromLeftTopRightBottom(
        float left,
        float top,
        float right,
        float bottom
    ) => new(left, top, right - left, bottom - top);

    /// <summary>A rectangle grown on all four sides.</summary>
    /// <param name="rect">The rectangle to grow; it stays as it is.</param>
    /// <param name="x">Pixels to the left and to the right.</param>
    /// <param name="y">Pixels upwards and downwards.</param>
    public static RectangleF Inflate(RectangleF rect, float x, float y)
    {
        rect.Inflate(x, y);
        return rect;
    }

    /// <summary>Grows this rectangle on all four sides; negative numbers shrink it.</summary>
    public void Inflate(float width, float height)
    {
        X -= width;
        Y -= height;
        Width += 2 * width;
        Height += 2 * height;
    }

    /// <summary>Grows this rectangle on all four sides.</summary>
    public void Inflate(SizeF size) => Inflate(size.Width, size.Height);

    /// <summary>
    /// What two rectangles share; <see cref="Empty"/> when they do not even touch.
    /// </summary>
    public static RectangleF Intersect(RectangleF a, RectangleF b)
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
    public void Intersect(RectangleF rect) => this = Intersect(rect, this);

    /// <summary>The smallest rectangle that holds both.</summary>
    public static RectangleF Union(RectangleF a, RectangleF b) =>
        FromLeftTopRightBottom(
            Math.Min(a.X, b.X),
            Math.Min(a.Y, b.Y),
            Math.Max(a.Right, b.Right),
            Math.Max(a.Bottom, b.Bottom)
        );

    /// <summary>True when a position lies inside.</summary>
    public readonly bool Contains(float x, float y) => X <= x && x < Right && Y <= y && y < Bottom;

    /// <summary>True when a position lies inside.</summary>
    public readonly bool Contains(PointF point) => Contains(point.X, point.Y);

    /// <summary>True when the whole of another rectangle lies inside.</summary>
    public readonly bool Contains(RectangleF rect) =>
        X <= rect.X && rect.Right <= Right && Y <= rect.Y && rect.Bottom <= Bottom;

    /// <summary>True when both share an area.</summary>
    public readonly bool IntersectsWith(RectangleF rect) =>
        rect.X < Right && X < rect.Right && rect.Y < Bottom && Y < rect.Bottom;

    /// <summary>Moves this rectangle.</summary>
    public void Offset(PointF pos) => Offset(pos.X, pos.Y);

    /// <summary>Moves this rectangle.</summary>
    public void Offset(float x, float y)
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

    private readonly bool Same(RectangleF other) =>
        X == other.X && Y == other.Y && Width == other.Width && Height == other.Height;

    public override readonly bool Equals(object? obj) => obj is RectangleF other && Same(other);

    public override readonly int GetHashCode() => HashCode.Combine(X, Y, Width, Height);

    public override readonly string ToString() =>
        $"{{X={X}, Y={Y}, Width={Width}, Height={Height}}}";
}
