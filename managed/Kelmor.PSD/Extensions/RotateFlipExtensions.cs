// Turns and mirrorings as those of the drawing types.
namespace Kelmor.PSD.Extensions;

/// <summary>Turns and mirrorings as those of the drawing types.</summary>
public static class RotateFlipExtensions
{
    /// <summary>The same turn and mirroring: the numbers are the same.</summary>
    public static Kelmor.GfxTypes.RotateFlipType ToGdiRotateFlip(this RotateFlipType rotateFlip) =>
        (Kelmor.GfxTypes.RotateFlipType)rotateFlip;
}
