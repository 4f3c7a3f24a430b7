// Reads the layer and mask information section (Photoshop File Formats Specification).
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.FileFormats.Psd.Reading;

internal static class LayerSectionReader
{
    private static readonly uint[] LayerBlocks =
    [
        TaggedBlocks.Code("Lr16"),
        TaggedBlocks.Code("Lr32"),
        TaggedBlocks.Code("Layr"),
    ];

    /// <summary>Fills a section from its raw bytes.</summary>
    public static void Read(LayerSection section, PsdHeader header, DataRecoveryMode recovery)
    {
        var reader = new SectionReader(section.Raw, "layer section", header.IsBig);
        if (reader.Remaining < (header.IsBig ? 8 : 4))
        {
            section.Rest = reader.TakeRest();
            return;
        }
        var length = reader.Length("the length of the layer info");
        var info =
            recovery == DataRecoveryMode.None
                ? reader.Take(length, "the layer info")
                : reader.TakeUpTo(length, "the layer info");
        ReadGlobalMask(section, reader);
        section.Rest = TaggedBlockReader.Read(reader, section.Blocks);
        ReadLayers(section, info, header, recovery);
    }

    private static void ReadGlobalMask(LayerSection section, SectionReader reader)
    {
        var start = reader.Position;
        // Some writers leave the global mask info out and go on with blocks at once.
        if (reader.Remaining < 4 || TaggedBlocks.IsSignature(reader.PeekCode()))
        {
            return;
        }
        var length = reader.UInt32("the length of the global layer mask info");
        if (length > (ulong)reader.Remaining)
        {
            reader.GoTo(start);
            return;
        }
        section.GlobalMask = reader.Take(length, "the global layer mask info");
    }

    private static void ReadLayers(
        LayerSection section,
        ReadOnlyMemory<byte> info,
        PsdHeader header,
        DataRecoveryMode recovery
    )
    {
        var block = section.Blocks.FirstOrDefault(candidate =>
            LayerBlocks.Contains(candidate.KeyCode) && candidate.Data.Length >= 2
        );
        if (info.Length == 0 && block is not null)
        {
            section.Place = LayerPlace.Block;
            section.PlaceBlock = block;
            info = block.Data;
        }
        if (info.Length == 0)
        {
            return;
        }
        try
        {
            LayerInfoReader.Read(
                section,
                new SectionReader(info, "layer info", header.IsBig),
                header,
                recovery
            );
            LayerTree.VerifyDepth(section.Layers);
        }
        catch (PsdImageException) when (recovery != DataRecoveryMode.None)
        {
            section.Layers.Clear();
            section.LayerInfoRest = info;
        }
    }
}
