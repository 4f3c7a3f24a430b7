// Colour type of a PNG image.
namespace Kelmor.PSD.FileFormats.Png;

/// <summary>Colour type of a PNG image (Portable Network Graphics Specification, 11.2.2).</summary>
public enum PngColorType
{
    Grayscale = 0,
    Truecolor = 2,
    IndexedColor = 3,
    GrayscaleWithAlpha = 4,
    TruecolorWithAlpha = 6,
}
