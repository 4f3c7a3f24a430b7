// The background of a new document.
using Kelmor.PSD.FileFormats.Psd;

namespace Kelmor.PSD;

internal static class ImageBackground
{
    /// <summary>A layer of one colour under everything.</summary>
    public static void Add(PsdImage image, Color color)
    {
        var layer = image.AddRegularLayer();
        layer.Name = "Background";
        foreach (var band in layer.Bands(layer.Bounds))
        {
            var pixels = new int[PixelAreas.Count(band)];
            Array.Fill(pixels, color.ToArgb());
            layer.SaveArgb32Pixels(band, pixels);
        }
    }
}
