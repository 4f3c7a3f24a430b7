// Keeps the merged image of a document in step with its layers.
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.Rendering;

internal static class MergedPicture
{
    /// <summary>Renders the layers when they changed since the merged image was made.</summary>
    /// <remarks>
    /// A document with layers that cannot be rendered keeps the merged image that it was loaded
    /// with: a picture of
    /// its earlier state is worth more than none.
    /// </remarks>
    public static void Refresh(PsdImage image)
    {
        if (!image.IsMergedStale || !image.IsNew && !Renderable.Is(image))
        {
            return;
        }
        var header = image.File.Header;
        var layout = image.File.Merged.Layout;
        var planes = image.IsNew
            ? Blank(header, layout)
            : Array.ConvertAll(image.File.Merged.Decode(), plane => (byte[])plane.Clone());
        var alpha = image.MergedAlphaIndex;
        var target = new PixelPlanes(
            header.Mode,
            layout,
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
        image.File.Merged.Replace(planes);
        image.OnMergedRefreshed();
    }

    private static byte[][] Blank(PsdHeader header, PlaneLayout layout)
    {
        var planes = new byte[header.Channels][];
        for (var i = 0; i < planes.Length; i++)
        {
            planes[i] = new byte[layout.ArrayLength];
        }
        return planes;
    }
}
