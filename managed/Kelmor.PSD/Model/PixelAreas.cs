// Checks that rectangles lie inside of an image and fit the pixels given for them.
namespace Kelmor.PSD;

internal static class PixelAreas
{
    /// <summary>Refuses a rectangle that does not lie inside of an image wholly.</summary>
    public static void VerifyInside(Rectangle area, int width, int height)
    {
        var fits =
            area.X >= 0
            && area.Y >= 0
            && area.Width >= 0
            && area.Height >= 0
            && area.Width <= width - (long)area.X
            && area.Height <= height - (long)area.Y;
        if (!fits)
        {
            throw new ArgumentOutOfRangeException(
                nameof(area),
                $"The rectangle {area} lies outside of an image of {width} x {height} pixels."
            );
        }
    }

    /// <summary>Refuses fewer pixels than a rectangle has.</summary>
    public static void VerifyCount(Rectangle area, long count)
    {
        var needed = (long)area.Width * area.Height;
        if (area.Width < 0 || area.Height < 0 || count < needed)
        {
            throw new ArgumentException(
                $"The rectangle {area} has {needed} pixels, but {count} are given.",
                nameof(count)
            );
        }
    }

    /// <summary>Number of pixels of a rectangle, when an array can hold them.</summary>
    /// <exception cref="CoreExceptions.LimitMemoryException">The rectangle has more pixels than an
    /// array can hold.</exception>
    public static int Count(Rectangle area)
    {
        var count = (long)area.Width * area.Height;
        return count <= Array.MaxLength
            ? (int)count
            : throw new CoreExceptions.LimitMemoryException(
                $"The rectangle {area} has too many pixels to be loaded at once."
            );
    }
}
