// The pixels of a layer, as its channels hold them.
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

public partial class Layer
{
    private protected override bool PixelsDecoded =>
        Record.Channels.TrueForAll(channel => channel.Data.IsDecoded);

    private protected override float ImageOpacityCore => Record.Opacity / 255f;

    /// <summary>Decodes one channel, or null when the layer has none with this number.</summary>
    internal byte[]? DecodeChannel(short id) =>
        FindChannel(id)?.Data.Decode(Record.LayoutOf(id, Header.Depth));

    private protected override void PreparePixels() => DecodePlanes();

    internal override void ReadPixels(Rectangle area, Span<int> pixels)
    {
        if (DecodePlanes() is { } planes)
        {
            PixelReader.Read(planes, area, pixels);
        }
        else
        {
            pixels.Clear();
        }
    }

    // Null for a layer that shows no pixels of its own.
    private PixelPlanes? DecodePlanes()
    {
        var layout = new PlaneLayout(Record.Width, Record.Height, Header.Depth);
        if (layout.Bytes == 0 || Record.Channels.Count == 0 || this is LayerGroup)
        {
            return null;
        }
        var colors = new byte[]?[Header.ColorChannels];
        for (short id = 0; id < colors.Length; id++)
        {
            colors[id] = DecodeChannel(id);
        }
        var alpha = DecodeChannel(ChannelIds.Transparency);
        return new PixelPlanes(Header.Mode, layout, colors, alpha, null);
    }

    internal override void WritePixels(Rectangle area, ReadOnlySpan<int> pixels)
    {
        PixelWriter.VerifySupported(Header.Mode, Header.Depth);
        if (area.Width == 0 || area.Height == 0 || this is LayerGroup)
        {
            return;
        }
        var layout = new PlaneLayout(Record.Width, Record.Height, Header.Depth);
        if (HasAlpha || PixelWriter.HasTransparency(pixels))
        {
            var alpha = LayerPixels.FindOrAdd(Record, ChannelIds.Transparency, Header);
            Own(alpha, layout);
        }
        var colors = new byte[Header.ColorChannels][];
        for (short id = 0; id < colors.Length; id++)
        {
            colors[id] = Own(LayerPixels.FindOrAdd(Record, id, Header), layout);
        }
        var transparency = FindChannel(ChannelIds.Transparency)?.Data.Decode(layout);
        PixelWriter.Write(
            new PixelPlanes(Header.Mode, layout, colors, transparency, null),
            area,
            pixels
        );
        Touch();
    }

    /// <summary>Takes the layer over into a document of another kind.</summary>
    internal void AdaptTo(PsdHeader header)
    {
        if (header.IsBig != Header.IsBig)
        {
            Record.ForgetRaw(); // some of its lengths have another size there
        }
        if (header.Mode == Header.Mode && header.Depth == Header.Depth)
        {
            Header = header;
            return;
        }
        PixelWriter.VerifySupported(header.Mode, header.Depth);
        var area = new Rectangle(0, 0, Record.Width, Record.Height);
        var pixels = new int[PixelAreas.Count(area)];
        ReadPixels(area, pixels);
        LayerPixels.ConvertMasks(Record, Header.Depth, header.Depth);
        Header = header;
        Record.IsChanged = true;
        LayerPixels.Clear(Record, header);
        WritePixels(area, pixels);
    }

    /// <summary>Gives the layer a rectangle with transparent pixels.</summary>
    internal void Reset(Rectangle area)
    {
        (Record.Left, Record.Top, Record.Right, Record.Bottom) = (
            area.Left,
            area.Top,
            area.Right,
            area.Bottom
        );
        LayerPixels.Clear(Record, Header);
        Touch();
    }

    private protected override void DecodePixels()
    {
        foreach (var channel in Record.Channels)
        {
            channel.Data.Decode(Record.LayoutOf(channel.ChannelID, Header.Depth));
        }
    }

    private void FillFrom(RasterImage image)
    {
        Reset(new Rectangle(0, 0, image.Width, image.Height));
        foreach (var band in image.Bands(image.Bounds))
        {
            var pixels = new int[PixelAreas.Count(band)];
            image.ReadPixels(band, pixels);
            WritePixels(band, pixels);
        }
    }

    private void FillFrom(Rectangle bounds, params byte[][] planes)
    {
        if (bounds.Width < 0 || bounds.Height < 0)
        {
            throw new ArgumentException(
                $"The rectangle {bounds} has a negative size.",
                nameof(bounds)
            );
        }
        var count = (long)bounds.Width * bounds.Height;
        (Record.Left, Record.Top, Record.Right, Record.Bottom) = (
            bounds.Left,
            bounds.Top,
            bounds.Right,
            bounds.Bottom
        );
        Record.Channels.Clear();
        for (short id = 0; id < planes.Length; id++)
        {
            ArgumentNullException.ThrowIfNull(planes[id]);
            if (planes[id].Length != count)
            {
                throw new ArgumentException(
                    $"Channel {id} has {planes[id].Length} bytes for {count} pixels.",
                    nameof(bounds)
                );
            }
            var data = new ChannelData((byte[])planes[id].Clone(), CompressionMethod.Rle);
            Record.Channels.Add(new ChannelInformation(id) { Data = data });
        }
        Touch();
    }

    // The samples of a channel as an array that may be changed in place.
    private static byte[] Own(ChannelInformation channel, PlaneLayout layout)
    {
        var plane = channel.Data.IsChanged
            ? channel.Data.Decode(layout)
            : (byte[])channel.Data.Decode(layout).Clone();
        channel.Data.Replace(plane);
        return plane;
    }
}
