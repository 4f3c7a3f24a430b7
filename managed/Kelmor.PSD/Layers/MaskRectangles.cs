// Finds the rectangles of a layer's masks (Photoshop File Formats Specification, Layer mask data).
using System.Buffers.Binary;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class MaskRectangles
{
    /// <summary>
    /// Flags, background and rectangle of the real user mask follow those of the user mask at once.
    /// </summary>
    /// <remarks>The format's description puts the optional parameters in between; files have them
    /// behind.</remarks>
    public const int RealMaskStart = 18;

    /// <summary>Length from which on there is a real user mask.</summary>
    public const int WithRealMask = 36;

    /// <summary>
    /// Rectangle of the user mask or of the real user mask; empty when there is none.
    /// </summary>
    public static Rectangle Of(ReadOnlyMemory<byte> mask, bool real)
    {
        var data = mask.Span;
        if (data.Length < (real ? WithRealMask : 16))
        {
            return Rectangle.Empty;
        }
        return Read(data[(real ? RealMaskStart + 2 : 0)..]);
    }

    private static Rectangle Read(ReadOnlySpan<byte> data)
    {
        var top = BinaryPrimitives.ReadInt32BigEndian(data);
        var left = BinaryPrimitives.ReadInt32BigEndian(data[4..]);
        var height = BinaryPrimitives.ReadInt32BigEndian(data[8..]) - (long)top;
        var width = BinaryPrimitives.ReadInt32BigEndian(data[12..]) - (long)left;
        // Writers turn rectangles without area inside out; anything beyond the largest document
        // holds no mask either.
        var isMask =
            width is >= 0 and <= LayerRecord.LargestSide
            && height is >= 0 and <= LayerRecord.LargestSide;
        return isMask
            ? new Rectangle(left, top, (int)width, (int)height)
            : new Rectangle(left, top, 0, 0);
    }
}
