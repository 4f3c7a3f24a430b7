// Styles of a font.
namespace Kelmor.PSD;

/// <summary>Styles of a font.</summary>
[Flags]
public enum FontStyle
{
    Regular = 0,
    Bold = 1,
    Italic = 2,
    Underline = 4,
    Strikeout = 8,
}
