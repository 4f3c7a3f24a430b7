// Rotation clockwise in degrees, then a flip.
namespace Kelmor.PSD;

/// <summary>
/// Rotation clockwise in degrees, then a flip; each of the eight results has two names.
/// </summary>
public enum RotateFlipType
{
    RotateNoneFlipNone = 0,
    Rotate90FlipNone = 1,
    Rotate180FlipNone = 2,
    Rotate270FlipNone = 3,
    RotateNoneFlipX = 4,
    Rotate90FlipX = 5,
    Rotate180FlipX = 6,
    Rotate270FlipX = 7,
    RotateNoneFlipY = 6,
    Rotate90FlipY = 7,
    Rotate180FlipY = 4,
    Rotate270FlipY = 5,
    RotateNoneFlipXY = 2,
    Rotate90FlipXY = 3,
    Rotate180FlipXY = 0,
    Rotate270FlipXY = 1,
}
