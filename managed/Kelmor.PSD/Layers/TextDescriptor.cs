// Looks up the few facts about a text layer that need no rendering.
using System.Buffers.Binary;
using System.Text;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// The block "TySh" (Adobe Photoshop File Formats Specification, Type tool object setting).
/// </summary>
internal static class TextDescriptor
{
    private const int MatrixStart = 2;
    private const int MatrixLength = 6;

    /// <summary>The characters; empty when the block does not hold them.</summary>
    public static string TextOf(LayerRecord record)
    {
        var data = (record.Find(TaggedBlocks.Code("TySh"))?.Data ?? default).Span;
        // The descriptor's item: key "Txt ", type "TEXT", number of UTF-16 units.
        var at = data.IndexOf("Txt TEXT"u8);
        if (at < 0 || at + 12 > data.Length)
        {
            return "";
        }
        var count = BinaryPrimitives.ReadUInt32BigEndian(data[(at + 8)..]);
        return count * 2L <= data.Length - at - 12
            ? Encoding.BigEndianUnicode.GetString(data.Slice(at + 12, (int)count * 2)).TrimEnd('\0')
            : "";
    }

    /// <summary>xx, xy, yx, yy, tx, ty; the identity when the block does not hold them.</summary>
    public static double[] MatrixOf(LayerRecord record)
    {
        var data = (record.Find(TaggedBlocks.Code("TySh"))?.Data ?? default).Span;
        if (data.Length < MatrixStart + MatrixLength * 8)
        {
            return [1, 0, 0, 1, 0, 0];
        }
        var matrix = new double[MatrixLength];
        for (var i = 0; i < MatrixLength; i++)
        {
            matrix[i] = BinaryPrimitives.ReadDoubleBigEndian(data[(MatrixStart + i * 8)..]);
        }
        return matrix;
    }
}
