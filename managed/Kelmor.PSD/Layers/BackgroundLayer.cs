// Turns the picture of a document without layers into its lowest layer.
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// Programs show the layers of a document once it has some: what the picture alone held would be
/// gone from sight with the first layer that is added.
/// </summary>
internal static class BackgroundLayer
{
    /// <summary>The picture as a layer; null when the document shows none of its own.</summary>
    public static Layer? Of(PsdImage image)
    {
        if (!image.IsFlatten || image.IsMergedStale || !image.File.Merged.IsPresent)
        {
            return null;
        }
        var record = new LayerRecord { Right = image.Width, Bottom = image.Height };
        var layer = new Layer(record, image.File.Header);
        if (image.MergedAlphaIndex < 0)
        {
            CopyChannels(image, record);
        }
        else
        {
            CopyPixels(image, layer);
        }
        layer.Name = "Background";
        return layer;
    }

    private static void CopyChannels(PsdImage image, LayerRecord record)
    {
        var planes = image.File.Merged.Decode();
        for (short id = 0; id < image.File.Header.ColorChannels; id++)
        {
            var data = new ChannelData((byte[])planes[id].Clone(), CompressionMethod.Rle);
            record.Channels.Add(new ChannelInformation(id) { Data = data });
        }
    }

    // The colours of a transparent picture are blended with white, those of a layer are not.
    private static void CopyPixels(PsdImage image, Layer layer)
    {
        layer.Reset(image.Bounds);
        foreach (var band in image.Bands(image.Bounds))
        {
            var pixels = new int[PixelAreas.Count(band)];
            image.ReadPixels(band, pixels);
            layer.WritePixels(band, pixels);
        }
    }
}
