// Lays an image over the pixels of a layer.
namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class LayerDrawing
{
    /// <summary>Source over target; the layer grows where the image reaches beyond it.</summary>
    public static void Draw(Layer layer, Point location, RasterImage image)
    {
        ArgumentNullException.ThrowIfNull(image);
        var area = new Rectangle(location, image.Size);
        var grown =
            layer.Width == 0 || layer.Height == 0 ? area : Rectangle.Union(layer.Bounds, area);
        if (grown != layer.Bounds)
        {
            Grow(layer, grown);
            area.Offset(-grown.X, -grown.Y);
        }
        foreach (var band in image.Bands(image.Bounds))
        {
            var source = image.LoadArgb32Pixels(band);
            var place = new Rectangle(area.X, area.Y + band.Y, band.Width, band.Height);
            var target = layer.LoadArgb32Pixels(place);
            for (var i = 0; i < target.Length; i++)
            {
                target[i] = Over(source[i], target[i]);
            }
            layer.SaveArgb32Pixels(place, target);
        }
    }

    private static void Grow(Layer layer, Rectangle grown)
    {
        var old = layer.Bounds;
        var pixels = layer.LoadArgb32Pixels(old);
        layer.Reset(
            new Rectangle(layer.Left + grown.X, layer.Top + grown.Y, grown.Width, grown.Height)
        );
        layer.SaveArgb32Pixels(
            new Rectangle(old.X - grown.X, old.Y - grown.Y, old.Width, old.Height),
            pixels
        );
    }

    // Straight alpha: colours are weighted by what each side contributes.
    private static int Over(int source, int target)
    {
        var above = (int)((uint)source >> 24);
        var below = (int)((uint)target >> 24) * (255 - above) / 255;
        var alpha = above + below;
        if (above == 255 || alpha == 0)
        {
            return above == 0 ? target : source;
        }
        var mixed = alpha << 24;
        for (var shift = 0; shift < 24; shift += 8)
        {
            mixed |=
                (
                    ((source >> shift & 255) * above + (target >> shift & 255) * below + alpha / 2)
                    / alpha
                ) << shift;
        }
        return mixed;
    }
}
