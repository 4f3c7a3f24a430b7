// Makes and changes the channels of layers.
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class LayerPixels
{
    /// <summary>Transparency and colour channels for a rectangle without area.</summary>
    public static void AddEmptyChannels(LayerRecord record, PsdHeader header)
    {
        record.Channels.Clear();
        foreach (var id in PixelChannels(header))
        {
            record.Channels.Add(
                new ChannelInformation(id) { Data = new ChannelData([], CompressionMethod.Raw) }
            );
        }
    }

    /// <summary>Transparent pixels all over the layer's rectangle; masks stay.</summary>
    public static void Clear(LayerRecord record, PsdHeader header)
    {
        var masks = record.Channels.FindAll(IsMask);
        record.Channels.Clear();
        var layout = new PlaneLayout(record.Width, record.Height, header.Depth);
        foreach (var id in PixelChannels(header))
        {
            var plane = new byte[layout.ArrayLength];
            record.Channels.Add(
                new ChannelInformation(id) { Data = new ChannelData(plane, CompressionMethod.Rle) }
            );
        }
        record.Channels.AddRange(masks);
    }

    /// <summary>Brings the samples of masks to another depth.</summary>
    public static void ConvertMasks(LayerRecord record, int oldDepth, int newDepth)
    {
        foreach (var mask in record.Channels.Where(IsMask))
        {
            var layout = record.LayoutOf(mask.ChannelID, oldDepth);
            var target = layout with { Depth = newDepth };
            var (samples, converted) = (mask.Data.Decode(layout), new byte[target.ArrayLength]);
            var row = new byte[layout.Width];
            for (var y = 0; y < layout.Height; y++)
            {
                Samples.ReadRow(samples, layout, 0, y, row, isLight: false);
                Samples.WriteRow(converted, target, 0, y, row, isLight: false);
            }
            mask.Data.Replace(converted);
        }
    }

    private static bool IsMask(ChannelInformation channel) =>
        channel.ChannelID is ChannelIds.UserMask or ChannelIds.RealUserMask;

    /// <summary>Makes sure that a channel is there, with the value that changes nothing.</summary>
    public static ChannelInformation FindOrAdd(LayerRecord record, short id, PsdHeader header)
    {
        if (record.Channels.Find(channel => channel.ChannelID == id) is { } found)
        {
            return found;
        }
        var plane = new byte[record.LayoutOf(id, header.Depth).ArrayLength];
        if (id == ChannelIds.Transparency)
        {
            Samples.FillOpaque(plane, header.Depth);
        }
        var added = new ChannelInformation(id)
        {
            Data = new ChannelData(plane, CompressionMethod.Rle),
        };
        record.Channels.Insert(id == ChannelIds.Transparency ? 0 : record.Channels.Count, added);
        return added;
    }

    private static IEnumerable<short> PixelChannels(PsdHeader header) =>
        Enumerable.Range(-1, header.ColorChannels + 1).Select(id => (short)id);
}
