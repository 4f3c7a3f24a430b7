// Writes tagged blocks (Photoshop File Formats Specification, Additional Layer Information).
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.FileFormats.Psd.Writing;

internal static class TaggedBlockWriter
{
    /// <summary>One block.</summary>
    /// <param name="writer">Target.</param>
    /// <param name="block">The block.</param>
    /// <param name="verbatim">True: a block that has not changed is written as it was read.</param>
    public static void Write(SectionWriter writer, LayerResource block, bool verbatim)
    {
        if (verbatim && !block.Raw.IsEmpty)
        {
            writer.Block(block.Raw);
            return;
        }
        Write(writer, block.SignatureCode, block.KeyCode, block.Data);
    }

    /// <summary>One block from its parts.</summary>
    public static void Write(
        SectionWriter writer,
        uint signature,
        uint key,
        ReadOnlyMemory<byte> data
    )
    {
        var padded = data.Length + 3L & ~3L;
        WriteHead(writer, signature, key, padded);
        writer.Block(data);
        writer.Zeros((int)(padded - data.Length));
    }

    /// <summary>Signature, key and length of a block.</summary>
    public static void WriteHead(SectionWriter writer, uint signature, uint key, long length)
    {
        signature = TaggedBlocks.SignatureFor(signature, key, writer.IsBig);
        writer.UInt32(signature);
        writer.UInt32(key);
        if (TaggedBlocks.HasLongLength(signature, key, writer.IsBig))
        {
            writer.UInt64((ulong)length);
        }
        else
        {
            writer.ShortLength(length);
        }
    }
}
