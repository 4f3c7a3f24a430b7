// Tells documents whose layers can be rendered from those that need more than pixels and masks.
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;
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
            && !layer.Record.Has("vmsk", "vsms")
            && !HasEffects(layer)
            && layer.Find<KnkoResource>("knko") is not { IsKnockout: true }
            && layer.Record.Find(TaggedBlocks.Code("brst")) is not { Length: > 0 }
            && Array.TrueForAll(layer.LayerBlendingRangesData.Ranges, IsWhole)
            && (
                layer.BlendModeKey == BlendMode.PassThrough
                || BlendFunctions.Has(layer.BlendModeKey)
            )
            && layer.FindChannel(ChannelIds.RealUserMask) is null;
    }

    // "lfx2" says all that the older "lrFX" says. Its descriptor has a switch for each effect and
    // one for all, by which effects stay with a layer that does not show them.
    private static bool HasEffects(Layer layer)
    {
        if (layer.Record.Find(TaggedBlocks.Code("lfx2")) is not { } block)
        {
            return layer.Record.Has("lfxs", "lmfx", "lrFX");
        }
        var switches = block.Data.Span;
        return switches.IndexOf("masterFXSwitchbool\0"u8) < 0
            && (switches.IndexOf("enabbool\x01"u8) >= 0 || layer.Record.Has("lfxs", "lmfx"));
    }

    // Every brightness of the layer and of what lies below takes part.
    private static bool IsWhole(BlendRange range) =>
        range is { Source: 0x0000FFFF, Destination: 0x0000FFFF };
}
