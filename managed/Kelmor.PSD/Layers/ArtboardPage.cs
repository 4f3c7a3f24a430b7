// Looks up the page of an artboard, which its own record does not tell.
using System.Buffers.Binary;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// The blocks "artb", "artd" and "abdd" (Adobe Photoshop File Formats Specification, Artboard Data).
/// </summary>
internal static class ArtboardPage
{
    private const int KeyLength = 8; // the key of an item and its type

    /// <summary>The page in the document; empty when no block holds it.</summary>
    public static Rectangle Of(LayerRecord record)
    {
        var block =
            record.Find(TaggedBlocks.Code("artb"))
            ?? record.Find(TaggedBlocks.Code("artd"))
            ?? record.Find(TaggedBlocks.Code("abdd"));
        var data = (block?.Data ?? default).Span;
        var (left, top) = (Edge(data, "Leftdoub"u8), Edge(data, "Top doub"u8));
        var (right, bottom) = (Edge(data, "Rghtdoub"u8), Edge(data, "Btomdoub"u8));
        return new Rectangle(left, top, Math.Max(0, right - left), Math.Max(0, bottom - top));
    }

    private static int Edge(ReadOnlySpan<byte> data, ReadOnlySpan<byte> key)
    {
        var at = data.IndexOf(key);
        if (at < 0 || data.Length - at < KeyLength + sizeof(double))
        {
            return 0;
        }
        var edge = BinaryPrimitives.ReadDoubleBigEndian(data[(at + KeyLength)..]);
        return Math.Abs(edge) <= LayerRecord.LargestSide ? (int)edge : 0;
    }
}
