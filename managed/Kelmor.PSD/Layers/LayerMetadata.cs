// Looks into the metadata block of a layer.
using System.Buffers.Binary;
using System.Text;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class LayerMetadata
{
    private static readonly byte[] TimeKey = Encoding.ASCII.GetBytes("layerTime");

    /// <summary>
    /// The date that the block "shmd" gives, in UTC; the earliest date when there is none.
    /// </summary>
    public static DateTime CreationDate(LayerRecord record)
    {
        if (record.Find(TaggedBlocks.Code("shmd")) is not { } block)
        {
            return DateTime.MinValue;
        }
        // The descriptor's item: key "layerTime", type "doub", seconds since 1970.
        var data = block.Data.Span;
        var at = data.IndexOf(TimeKey);
        if (
            at < 0
            || at + TimeKey.Length + 12 > data.Length
            || !data.Slice(at + TimeKey.Length, 4).SequenceEqual("doub"u8)
        )
        {
            return DateTime.MinValue;
        }
        var seconds = BinaryPrimitives.ReadDoubleBigEndian(data[(at + TimeKey.Length + 4)..]);
        return seconds is >= 0 and < 253_402_300_799
            ? DateTime.UnixEpoch.AddSeconds(seconds)
            : DateTime.MinValue;
    }
}
