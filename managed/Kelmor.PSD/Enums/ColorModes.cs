// Colour mode of a document.
namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>
/// Colour mode of a document: the field of the file header (Adobe Photoshop File Formats
/// Specification, File Header Section).
/// </summary>
public enum ColorModes : short
{
    Bitmap = 0,
    Grayscale = 1,
    Indexed = 2,
    Rgb = 3,
    Cmyk = 4,
    Multichannel = 7,
    Duotone = 8,
    Lab = 9,
}
