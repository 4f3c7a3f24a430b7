// Brushes as brushes of the drawing types.
using Kelmor.PSD.Brushes;

namespace Kelmor.PSD.Extensions;

/// <summary>Brushes as brushes of the drawing types.</summary>
public static class BrushExtensions
{
    /// <summary>A brush that paints the same; its opacity goes into its colour.</summary>
    public static Kelmor.GfxTypes.Brush ToGdiBrush(this Brush brush)
    {
        ArgumentNullException.ThrowIfNull(brush);
        if (brush is not SolidBrush solid)
            throw new NotSupportedException(
                $"A {brush.GetType().Name} has no like among the drawing types."
            );
        return new Kelmor.GfxTypes.SolidBrush(Faded(solid.Color, solid.Opacity).ToGdiColor());
    }

    private static Color Faded(Color color, float opacity)
    {
        float kept = Math.Clamp(opacity, 0f, 1f);
        return kept == 1f ? color : Color.FromArgb((int)MathF.Round(color.A * kept), color);
    }
}
