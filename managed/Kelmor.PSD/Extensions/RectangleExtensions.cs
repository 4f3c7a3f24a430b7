// Rectangles as rectangles of the drawing types.
namespace Kelmor.PSD.Extensions;

/// <summary>Rectangles as rectangles of the drawing types.</summary>
public static class RectangleExtensions
{
    /// <summary>The same rectangle.</summary>
    public static Kelmor.GfxTypes.Rectangle ToGdiRectangle(this Rectangle rectangle) =>
        new(rectangle.X, rectangle.Y, rectangle.Width, rectangle.Height);

    /// <summary>The same rectangle.</summary>
    public static Kelmor.GfxTypes.RectangleF ToGdiRectangle(this RectangleF rectangle) =>
        new(rectangle.X, rectangle.Y, rectangle.Width, rectangle.Height);
}
