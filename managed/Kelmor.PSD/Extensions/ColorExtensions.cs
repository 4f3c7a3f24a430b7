// Colours as colours of the drawing types, and back.
namespace Kelmor.PSD.Extensions;

/// <summary>Colours as colours of the drawing types, and back.</summary>
public static class ColorExtensions
{
    /// <summary>The same colour; an empty one stays empty.</summary>
    public static Kelmor.GfxTypes.Color ToGdiColor(this Color color) =>
        color.IsEmpty ? Kelmor.GfxTypes.Color.Empty : Kelmor.GfxTypes.Color.FromArgb(color.ToArgb());

    /// <summary>The same colours.</summary>
    public static Kelmor.GfxTypes.Color[] ToGdiColors(this Color[] colors)
    {
        ArgumentNullException.ThrowIfNull(colors);
        return Array.ConvertAll(colors, ToGdiColor);
    }

    /// <summary>The same colour; an empty one stays empty.</summary>
    public static Color FromGdiColor(Kelmor.GfxTypes.Color color) =>
        color.IsEmpty ? Color.Empty : Color.FromArgb(color.ToArgb());
}
