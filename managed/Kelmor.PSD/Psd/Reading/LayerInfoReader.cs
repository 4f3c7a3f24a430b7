// Reads layer records and cuts out their channel data (Photoshop File Formats, Layer info).
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd.Channels;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.FileFormats.Psd.Reading;

internal static class LayerInfoReader
{
    private const int SmallestRecord = 34; // without channels, names and blocks
    private const int MostChannels = 56 + 3; // colour and spot channels, transparency and two masks

    /// <summary>Fills the layers of a section.</summary>
    public static void Read(
        LayerSection section,
        SectionReader reader,
        PsdHeader header,
        DataRecoveryMode recovery
    )
    {
        var signedCount = reader.Int16("the number of layers");
        var count = Math.Abs((int)signedCount);
        section.HasMergedTransparency = signedCount < 0;
        if ((long)count * SmallestRecord > reader.Remaining)
        {
            throw new PsdImageException(
                $"The layer info is damaged: it cannot hold {count} layers in "
                    + $"{reader.Remaining} bytes."
            );
        }
        var records = new List<LayerRecord>(count);
        for (var i = 0; i < count; i++)
        {
            records.Add(ReadRecord(reader, i));
        }
        foreach (var record in records)
        {
            ReadChannels(reader, record, recovery);
            section.Layers.Add(LayerKinds.Create(record, header));
        }
        section.LayerInfoRest = reader.TakeRest();
    }

    private static LayerRecord ReadRecord(SectionReader reader, int index)
    {
        var start = reader.Position;
        var record = new LayerRecord
        {
            Top = reader.Int32("a rectangle"),
            Left = reader.Int32("a rectangle"),
            Bottom = reader.Int32("a rectangle"),
            Right = reader.Int32("a rectangle"),
        };
        VerifyRectangle(record, index);
        ReadChannelLengths(reader, record, index);
        record.Signature = reader.UInt32("the blend mode signature");
        if (!TaggedBlocks.IsSignature(record.Signature))
        {
            throw new PsdImageException(
                $"The record of layer {index} is damaged: its blend mode has no signature."
            );
        }
        record.BlendMode = reader.Int32("the blend mode");
        record.Opacity = reader.Byte("the opacity");
        record.Clipping = reader.Byte("the clipping");
        record.Flags = reader.Byte("the flags");
        record.Filler = reader.Byte("the filler");
        ReadExtra(
            reader.Part(
                reader.UInt32("the length of the extra data"),
                $"extra data of layer {index}"
            ),
            record
        );
        record.Raw = reader.Since(start);
        return record;
    }

    private static void VerifyRectangle(LayerRecord record, int index)
    {
        var width = record.Right - (long)record.Left;
        var height = record.Bottom - (long)record.Top;
        if (width is < 0 or > LayerRecord.LargestSide || height is < 0 or > LayerRecord.LargestSide)
        {
            throw new PsdImageException(
                $"The record of layer {index} is damaged: its rectangle has {width} x "
                    + $"{height} pixels."
            );
        }
    }

    private static void ReadChannelLengths(SectionReader reader, LayerRecord record, int index)
    {
        var channels = reader.UInt16("the number of channels");
        if (channels > MostChannels)
        {
            throw new PsdImageException(
                $"The record of layer {index} is damaged: it has {channels} channels."
            );
        }
        for (var i = 0; i < channels; i++)
        {
            var id = reader.Int16("a channel");
            record.Channels.Add(
                new ChannelInformation(id)
                {
                    StoredLength = reader.Length("the length of a channel"),
                }
            );
        }
    }

    private static void ReadExtra(SectionReader reader, LayerRecord record)
    {
        record.Mask = reader.Take(reader.UInt32("the length of the mask data"), "the mask data");
        record.BlendingRanges = reader.Take(
            reader.UInt32("the length of the blending ranges"),
            "the blending ranges"
        );
        var start = reader.Position;
        var length = reader.Byte("the length of the name");
        reader.Take(length, "the name");
        reader.TakeUpTo((ulong)(-(length + 1) & 3), "the padding of the name");
        record.PascalName = reader.Since(start);
        record.Rest = TaggedBlockReader.Read(reader, record.Blocks);
    }

    private static void ReadChannels(
        SectionReader reader,
        LayerRecord record,
        DataRecoveryMode recovery
    )
    {
        foreach (var channel in record.Channels)
        {
            var stored =
                recovery == DataRecoveryMode.None
                    ? reader.Take(channel.StoredLength, "channel data")
                    : reader.TakeUpTo(channel.StoredLength, "channel data");
            channel.Data = new ChannelData(stored, reader.IsBig, recovery);
        }
    }
}
