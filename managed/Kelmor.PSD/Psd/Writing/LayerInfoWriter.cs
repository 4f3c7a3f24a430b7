// Writes layer records and their channel data (Photoshop File Formats Specification, Layer info).
using Kelmor.PSD.FileFormats.Psd.Channels;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.FileFormats.Psd.Writing;

internal static class LayerInfoWriter
{
    private const int Alignment = 4;

    /// <summary>The layer info without its length.</summary>
    public static SectionWriter Build(PsdFile file, bool isBig, CompressionMethod? method)
    {
        var section = file.Layers;
        var info = new SectionWriter(isBig);
        if (
            section is { Place: LayerPlace.LayerInfo, Layers.Count: 0 }
            && !section.HasMergedTransparency
            && section.LayerInfoRest.IsEmpty
        )
        {
            return info;
        }
        var count = section.Layers.Count;
        info.Int16((short)(section.HasMergedTransparency ? -count : count));
        var pixels = new SectionWriter(isBig);
        foreach (var layer in section.Layers)
        {
            WriteLayer(info, pixels, layer, file.Header, method);
        }
        info.Append(pixels);
        info.Block(section.LayerInfoRest);
        // Parts that have not changed come out with the padding that they had.
        var asRead = !section.IsChanged && method is null && isBig == file.Header.IsBig;
        info.Zeros(asRead ? 0 : (int)(-info.Length & (Alignment - 1)));
        return info;
    }

    private static void WriteLayer(
        SectionWriter info,
        SectionWriter pixels,
        Layer layer,
        PsdHeader header,
        CompressionMethod? method
    )
    {
        var record = layer.Record;
        var stored = new ReadOnlyMemory<byte>[record.Channels.Count];
        for (var i = 0; i < stored.Length; i++)
        {
            var channel = record.Channels[i];
            var layout = record.LayoutOf(channel.ChannelID, header.Depth);
            stored[i] = channel.Data.Store(
                layout,
                info.IsBig,
                MethodFor(channel.Data, layout, method)
            );
            pixels.Block(stored[i]);
        }
        var verbatim =
            !record.Raw.IsEmpty
            && !record.IsChanged
            && info.IsBig == header.IsBig
            && record.Channels.TrueForAll(channel => !channel.Data.IsChanged)
            && method is null;
        if (verbatim)
        {
            info.Block(record.Raw);
        }
        else
        {
            WriteRecord(info, record, stored, info.IsBig == header.IsBig);
        }
    }

    // Channels without samples keep the few bytes that they have.
    private static CompressionMethod? MethodFor(
        ChannelData data,
        PlaneLayout layout,
        CompressionMethod? wanted
    ) => layout.Bytes == 0 || !data.IsDecoded && !Enum.IsDefined(data.Method) ? null : wanted;

    private static void WriteRecord(
        SectionWriter info,
        LayerRecord record,
        ReadOnlyMemory<byte>[] stored,
        bool sameVariant
    )
    {
        info.Int32(record.Top);
        info.Int32(record.Left);
        info.Int32(record.Bottom);
        info.Int32(record.Right);
        info.Int16((short)record.Channels.Count);
        for (var i = 0; i < stored.Length; i++)
        {
            info.Int16(record.Channels[i].ChannelID);
            info.SectionLength(stored[i].Length);
        }
        info.UInt32(record.Signature);
        info.Int32(record.BlendMode);
        info.Byte(record.Opacity);
        info.Byte(record.Clipping);
        info.Byte(record.Flags);
        info.Byte(record.Filler);
        WriteExtra(info, record, sameVariant);
    }

    private static void WriteExtra(SectionWriter info, LayerRecord record, bool sameVariant)
    {
        var extra = new SectionWriter(info.IsBig);
        extra.ShortLength(record.Mask.Length);
        extra.Block(record.Mask);
        extra.ShortLength(record.BlendingRanges.Length);
        extra.Block(record.BlendingRanges);
        extra.Block(record.PascalName);
        foreach (var block in record.Blocks)
        {
            TaggedBlockWriter.Write(extra, block, sameVariant);
        }
        extra.Block(record.Rest);
        info.ShortLength(extra.Length);
        info.Append(extra);
    }
}
