// Reads tagged blocks (Photoshop File Formats Specification, Additional Layer Information).
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.FileFormats.Psd.Reading;

internal static class TaggedBlockReader
{
    private const int SmallestBlock = 12;

    /// <summary>Reads blocks until something that is no block stands there.</summary>
    /// <returns>The bytes that form no block; they are kept and written again.</returns>
    public static ReadOnlyMemory<byte> Read(SectionReader reader, List<LayerResource> blocks)
    {
        while (reader.Remaining >= SmallestBlock && TaggedBlocks.IsSignature(reader.PeekCode()))
        {
            var start = reader.Position;
            var signature = reader.UInt32("the signature");
            var key = reader.UInt32("the key");
            var isLong = TaggedBlocks.HasLongLength(signature, key, reader.IsBig);
            if (isLong && reader.Remaining < 8)
            {
                reader.GoTo(start);
                break;
            }
            var length = isLong ? reader.UInt64("the length") : reader.UInt32("the length");
            if (length > (ulong)reader.Remaining)
            {
                reader.GoTo(start);
                break;
            }
            var data = reader.Take(length, "the data");
            reader.Take((ulong)Padding(reader), "the padding");
            blocks.Add(LayerResourceKinds.Create(signature, key, data, reader.Since(start)));
        }
        return reader.TakeRest();
    }

    // Writers disagree whether the length includes the padding, and whether that goes up to 2 or to
    // 4 bytes:
    // the next signature tells.
    private static int Padding(SectionReader reader)
    {
        for (var padding = 0; padding < 4; padding++)
        {
            if (TaggedBlocks.IsSignature(reader.PeekCode(padding)))
            {
                return padding;
            }
        }
        return reader.Remaining < 4 ? reader.Remaining : 0;
    }
}
