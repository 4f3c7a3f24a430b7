// Row filter of a PNG image.
namespace Kelmor.PSD.FileFormats.Png;

/// <summary>Row filter of a PNG image (Portable Network Graphics Specification, 9).</summary>
public enum PngFilterType
{
    None = 0,
    Sub = 1,
    Up = 2,
    Avg = 3,
    Paeth = 4,

    /// <summary>The filter that suits each row best.</summary>
    Adaptive = 5,
}
