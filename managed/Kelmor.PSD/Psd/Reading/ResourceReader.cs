// Reads the image resources (Photoshop File Formats Specification, Image Resource Blocks).
using Kelmor.PSD.FileFormats.Psd.Resources;

namespace Kelmor.PSD.FileFormats.Psd.Reading;

internal static class ResourceReader
{
    private const int SmallestBlock = 12;

    /// <summary>
    /// Reads blocks until the section ends or something that is no block stands in it.
    /// </summary>
    /// <returns>The bytes that form no block; they are kept and written again.</returns>
    public static ReadOnlyMemory<byte> Read(
        ReadOnlyMemory<byte> section,
        List<ResourceBlock> blocks,
        bool isBig
    )
    {
        var reader = new SectionReader(section, "image resources", isBig);
        while (reader.Remaining >= SmallestBlock && ResourceBlock.IsSignature(reader.PeekCode()))
        {
            var start = reader.Position;
            var signature = reader.Int32("the signature");
            var id = reader.Int16("the identifier");
            var nameLength = reader.Byte("the length of the name");
            // Length byte and name together have an even number of bytes; so has the data.
            if ((nameLength | 1) + 4 > reader.Remaining)
            {
                reader.GoTo(start);
                break;
            }
            var name = reader.Take(nameLength, "the name");
            reader.Take((ulong)(1 - (nameLength & 1)), "the padding of the name");
            var length = reader.UInt32("the length");
            if (length > (ulong)reader.Remaining)
            {
                reader.GoTo(start);
                break;
            }
            var data = reader.Take(length, "the data");
            reader.TakeUpTo(length & 1, "the padding");
            blocks.Add(ResourceKinds.Create(signature, id, name, data, reader.Since(start)));
        }
        return reader.TakeRest();
    }
}
