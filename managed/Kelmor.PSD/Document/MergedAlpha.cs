// The transparency of the merged image.
using System.Buffers.Binary;

namespace Kelmor.PSD.FileFormats.Psd;

internal static class MergedAlpha
{
    private const short AlphaIdentifiers = 1053;

    /// <summary>
    /// True when the first channel behind the colours is transparency and no stored selection.
    /// </summary>
    public static bool IsTransparency(PsdFile file)
    {
        if (file.Layers.HasMergedTransparency)
        {
            return true;
        }
        if (file.Layers.Blocks.Exists(block => TaggedBlocks.IsTransparencyMark(block.KeyCode)))
        {
            return true;
        }
        // Stored selections have identifiers of their own; that of transparency is 0.
        var identifiers = file.Resources.Find(resource => resource.ID == AlphaIdentifiers);
        return identifiers is { DataSize: >= 4 }
            && BinaryPrimitives.ReadInt32BigEndian(identifiers.Data.Span) == 0;
    }

    /// <summary>Undoes the blending with white that merged colours went through.</summary>
    public static void TakeMatteOff(Span<int> pixels)
    {
        foreach (ref var pixel in pixels)
        {
            var alpha = (int)((uint)pixel >> 24);
            if (alpha is > 0 and < 255)
            {
                pixel =
                    alpha << 24
                    | Off(pixel >> 16, alpha) << 16
                    | Off(pixel >> 8, alpha) << 8
                    | Off(pixel, alpha);
            }
        }
    }

    /// <summary>Blends colours with white under their transparency.</summary>
    public static void PutMatteOn(Span<int> pixels)
    {
        foreach (ref var pixel in pixels)
        {
            var alpha = (int)((uint)pixel >> 24);
            if (alpha < 255)
            {
                pixel =
                    alpha << 24
                    | On(pixel >> 16, alpha) << 16
                    | On(pixel >> 8, alpha) << 8
                    | On(pixel, alpha);
            }
        }
    }

    // Cut off, not rounded: other readers of these documents do so, and so get the same picture.
    private static int Off(int channel, int alpha) =>
        Math.Max(0, ((channel & 255) + alpha - 255) * 255 / alpha);

    // Rounded up, so that colours whose matte was taken off become the stored ones again.
    private static int On(int channel, int alpha) =>
        255 - alpha + ((channel & 255) * alpha + 254) / 255;
}
