// Lays the layers of a document over each other, bottom to top.
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.Rendering;

internal static class Compositor
{
    /// <summary>
    /// The picture of layers for one band of the document, 0xAARRGGBB, not premultiplied.
    /// </summary>
    public static int[] Render(List<Layer> layers, Rectangle band)
    {
        var strip = new PixelStrip(band);
        Draw(layers, strip);
        return strip.ToArgb();
    }

    private static void Draw(List<Layer> layers, PixelStrip strip)
    {
        for (var i = 0; i < layers.Count;)
        {
            // A layer and those clipped to it come out as one.
            var end = i + 1;
            while (end < layers.Count && layers[end].Clipping != 0)
            {
                end++;
            }
            if (layers[i].IsVisible)
            {
                DrawStack(layers.GetRange(i, end - i), strip);
            }
            i = end;
        }
    }

    private static void DrawStack(List<Layer> stack, PixelStrip strip)
    {
        var lowest = stack[0];
        var coverage = LayerCoverage.Of(lowest, strip.Area);
        if (lowest is LayerGroup { BlendModeKey: BlendMode.PassThrough } group && stack.Count == 1)
        {
            PassThrough(group, strip, coverage);
            return;
        }
        var own = Content(lowest, strip.Area);
        foreach (var clipped in stack.Skip(1).Where(layer => layer.IsVisible))
        {
            own.Blend(
                Content(clipped, strip.Area),
                Mode(clipped),
                LayerCoverage.Of(clipped, strip.Area),
                clip: true
            );
        }
        strip.Blend(own, Mode(lowest), coverage, clip: false);
    }

    // The group's layers blend with what lies below it; its opacity and mask fade the result in.
    private static void PassThrough(LayerGroup group, PixelStrip strip, float[] coverage)
    {
        if (Array.TrueForAll(coverage, share => share >= 1))
        {
            Draw(group.Children, strip);
            return;
        }
        var drawn = strip.Copy();
        Draw(group.Children, drawn);
        strip.Fade(drawn, coverage);
    }

    private static PixelStrip Content(Layer layer, Rectangle area)
    {
        var strip = new PixelStrip(area);
        if (layer is LayerGroup group)
        {
            Draw(group.Children, strip);
            return strip;
        }
        var part = Rectangle.Intersect(
            area,
            new Rectangle(layer.Left, layer.Top, layer.Width, layer.Height)
        );
        if (part.Width > 0 && part.Height > 0)
        {
            var pixels = new int[PixelAreas.Count(part)];
            layer.ReadPixels(
                new Rectangle(part.X - layer.Left, part.Y - layer.Top, part.Width, part.Height),
                pixels
            );
            strip.Load(part, pixels);
        }
        return strip;
    }

    private static BlendMode Mode(Layer layer) =>
        layer.BlendModeKey == BlendMode.PassThrough ? BlendMode.Normal : layer.BlendModeKey;
}
