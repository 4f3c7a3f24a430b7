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

    /// <summary>Transparent pixels all over the layer's rectangle.</summary>
    public static void Clear(LayerRecord record, PsdHeader header)
    {
        record.Channels.Clear();
        var layout = new PlaneLayout(record.Width, record.Height, header.Depth);
        foreach (var id in PixelChannels(header))
        {
            var plane = new byte[layout.ArrayLength];
            record.Channels.Add(
                new ChannelInformation(id) { Data = new ChannelData(plane, CompressionMethod.Rle) }
            );
        }
    }

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
