// Fonts as fonts of the drawing types.
namespace Kelmor.PSD.Extensions;

/// <summary>Fonts as fonts of the drawing types.</summary>
public static class FontExtensions
{
    /// <summary>The same font, its size in points.</summary>
    public static Kelmor.GfxTypes.Font ToGdiFont(this Font font) =>
        ToGdiFont(font, Kelmor.GfxTypes.GraphicsUnit.Point);

    /// <summary>The same font, whose size is said to count this unit.</summary>
    public static Kelmor.GfxTypes.Font ToGdiFont(
        this Font font,
        Kelmor.GfxTypes.GraphicsUnit unit
    )
    {
        ArgumentNullException.ThrowIfNull(font);
        var style = (Kelmor.GfxTypes.FontStyle)font.Style;
        return new Kelmor.GfxTypes.Font(font.Name, font.Size, style, unit);
    }
}
