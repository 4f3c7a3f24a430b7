// Makes the merged image of a document from its layers.
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.Rendering;

internal static class MergedPicture
{
    /// <summary>
    /// The layers as one picture; channels that are neither colour nor transparency stay as stored.
    /// </summary>
    public static MergedImage Render(PsdImage image)
    {
        var (header, stored) = (image.File.Header, image.File.Merged);
        var alpha = image.MergedAlphaIndex;
        var planes = new byte[header.Channels][];
        for (var i = 0; i < planes.Length; i++)
        {
            var isRendered = i < header.ColorChannels || i == alpha || !stored.IsPresent;
            planes[i] = isRendered ? new byte[stored.Layout.ArrayLength] : stored.Decode()[i];
        }
        var target = new PixelPlanes(
            header.Mode,
            stored.Layout,
            planes[..header.ColorChannels],
            alpha < 0 ? null : planes[alpha],
            null
        );
        foreach (var band in image.Bands(image.Bounds))
        {
            var pixels = Compositor.Render(image.Roots, band);
            MergedAlpha.PutMatteOn(pixels);
            PixelWriter.Write(target, band, pixels);
        }
        var picture = new MergedImage(header, stored.Method);
        picture.Replace(planes);
        return picture;
    }
}
