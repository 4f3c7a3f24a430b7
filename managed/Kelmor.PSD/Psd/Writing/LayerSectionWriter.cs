// Writes the layer and mask information section (Photoshop File Formats Specification).
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.FileFormats.Psd.Writing;

internal static class LayerSectionWriter
{
    private static readonly uint TextEngine = TaggedBlocks.Code("Txt2");

    /// <summary>The section with its length.</summary>
    /// <param name="writer">Target.</param>
    /// <param name="file">The document.</param>
    /// <param name="method">Another packing of all channels, or null to keep each.</param>
    /// <param name="dropTextEngine">True: the text resource shared by all layers is left
    /// out.</param>
    public static void Write(
        SectionWriter writer,
        PsdFile file,
        CompressionMethod? method,
        bool dropTextEngine
    )
    {
        var section = file.Layers;
        var verbatim = writer.IsBig == file.Header.IsBig;
        if (
            verbatim
            && !section.IsChanged
            && method is null
            && !(dropTextEngine && HasTextEngine(section))
        )
        {
            writer.SectionLength(section.Raw.Length);
            writer.Block(section.Raw);
            return;
        }
        var part = Build(file, writer.IsBig, method, dropTextEngine);
        writer.SectionLength(part.Length);
        writer.Append(part);
    }

    /// <summary>The section without its length, made anew from its parts.</summary>
    public static SectionWriter Build(
        PsdFile file,
        bool isBig,
        CompressionMethod? method,
        bool dropTextEngine
    )
    {
        var section = file.Layers;
        var verbatim = isBig == file.Header.IsBig;
        var part = new SectionWriter(isBig);
        if (IsEmpty(section))
        {
            part.Block(section.Rest);
            return part;
        }
        var info = LayerInfoWriter.Build(file, isBig, method);
        if (section.Place == LayerPlace.Block)
        {
            part.SectionLength(0);
        }
        else
        {
            part.SectionLength(info.Length);
            part.Append(info);
        }
        if (section.GlobalMask is { } mask)
        {
            part.ShortLength(mask.Length);
            part.Block(mask);
        }
        foreach (var block in section.Blocks)
        {
            if (block == section.PlaceBlock && section.Place == LayerPlace.Block)
            {
                WriteLayerBlock(part, block, info);
            }
            else if (!dropTextEngine || block.KeyCode != TextEngine)
            {
                TaggedBlockWriter.Write(part, block, verbatim);
            }
        }
        if (NeedsTransparencyMark(section))
        {
            var key = TaggedBlocks.TransparencyMark(file.Header.Depth);
            TaggedBlockWriter.Write(part, TaggedBlocks.Signature, key, default);
        }
        part.Block(section.Rest);
        return part;
    }

    // Unlike that of layers, the length of the document's blocks leaves the padding out.
    private static void WriteLayerBlock(
        SectionWriter part,
        LayerResource block,
        SectionWriter info
    )
    {
        TaggedBlockWriter.WriteHead(part, block.SignatureCode, block.KeyCode, info.Length);
        part.Append(info);
        part.Zeros((int)(-info.Length & 3));
    }

    // The sign of the number of layers tells of transparency; 0 has none.
    private static bool NeedsTransparencyMark(LayerSection section) =>
        section is { HasMergedTransparency: true, Layers.Count: 0 }
        && !section.Blocks.Exists(block => TaggedBlocks.IsTransparencyMark(block.KeyCode));

    private static bool HasTextEngine(LayerSection section) =>
        section.Blocks.Exists(block => block.KeyCode == TextEngine);

    private static bool IsEmpty(LayerSection section) =>
        section.Layers.Count == 0
        && section.Blocks.Count == 0
        && section.GlobalMask is null
        && section.LayerInfoRest.IsEmpty;
}
