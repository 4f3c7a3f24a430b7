// Tells documents whose layers can be rendered from those that need more than pixels and masks.
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Layers.SmartObjects;

namespace Kelmor.PSD.Rendering;

internal static class Renderable
{
    /// <summary>
    /// True when every layer is understood: pixels, raster masks, groups, known blend modes.
    /// </summary>
    public static bool Is(PsdImage image) =>
        image.ColorMode is ColorModes.Rgb or ColorModes.Grayscale
        && image.BitsPerChannel >= 8
        && image.File.Layers.Layers.TrueForAll(Is);

    private static bool Is(Layer layer)
    {
        if (layer is SectionDividerLayer)
        {
            return true;
        }
        // These kinds hold their rendering as pixels; the exact type matters, others render
        // themselves.
        var isKnown =
            layer.GetType() == typeof(Layer)
            || layer is TextLayer or SmartObjectLayer
            || layer.GetType() == typeof(LayerGroup);
        return isKnown
            && !layer.Record.Has("lfx2", "lfxs", "lmfx", "lrFX", "vmsk", "vsms", "brst", "knko")
            && (
                layer.BlendModeKey == BlendMode.PassThrough
                || BlendFunctions.Has(layer.BlendModeKey)
            )
            && layer.FindChannel(ChannelIds.RealUserMask) is null;
    }
}
