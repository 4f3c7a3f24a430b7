// Points as points of the drawing types, and back.
namespace Kelmor.PSD.Extensions;

/// <summary>Points as points of the drawing types, and back.</summary>
public static class PointExtensions
{
    /// <summary>The same point.</summary>
    public static Kelmor.GfxTypes.PointF ToGdiPoint(this PointF point) => new(point.X, point.Y);

    /// <summary>The same points.</summary>
    public static Kelmor.GfxTypes.PointF[] ToGdiPoints(this PointF[] points)
    {
        ArgumentNullException.ThrowIfNull(points);
        return Array.ConvertAll(points, ToGdiPoint);
    }

    /// <summary>The same point.</summary>
    public static PointF FromGdiPoint(Kelmor.GfxTypes.PointF point) => new(point.X, point.Y);
}
