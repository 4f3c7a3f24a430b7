// How much of a layer shows at each pixel: opacity, fill opacity and raster mask together.
using Kelmor.PSD.FileFormats.Psd.Channels;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.Rendering;

internal static class LayerCoverage
{
    /// <summary>0 to 1 for each pixel of a band of the document.</summary>
    public static float[] Of(Layer layer, Rectangle band)
    {
        var coverage = new float[PixelAreas.Count(band)];
        Array.Fill(coverage, layer.Opacity / 255f * (layer.FillOpacity / 255f));
        if (
            layer.LayerMaskData is { } mask
            && (mask.Flags & LayerMaskFlags.Disabled) == 0
            && layer.DecodeChannel(ChannelIds.UserMask) is { } plane
        )
        {
            Multiply(
                coverage,
                band,
                mask,
                new PlaneLayout(
                    mask.MaskRectangle.Width,
                    mask.MaskRectangle.Height,
                    layer.Header.Depth
                ),
                plane
            );
        }
        return coverage;
    }

    private static void Multiply(
        float[] coverage,
        Rectangle band,
        LayerMaskData mask,
        PlaneLayout layout,
        byte[] plane
    )
    {
        var area = mask.MaskRectangle;
        var part = Rectangle.Intersect(band, area);
        var row = new byte[band.Width];
        for (var y = 0; y < band.Height; y++)
        {
            Array.Fill(row, mask.DefaultColor);
            var line = band.Y + y;
            if (part.Width > 0 && line >= part.Y && line < part.Bottom)
            {
                Samples.ReadRow(
                    plane,
                    layout,
                    part.X - area.X,
                    line - area.Y,
                    row.AsSpan(part.X - band.X, part.Width),
                    isLight: false
                );
            }
            for (var x = 0; x < row.Length; x++)
            {
                coverage[y * band.Width + x] *= row[x] / 255f;
            }
        }
    }
}
