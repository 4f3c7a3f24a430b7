// Finds out what a layer record is by its tagged blocks.
using Kelmor.PSD.FileFormats.Psd.Layers.AdjustmentLayers;
using Kelmor.PSD.FileFormats.Psd.Layers.FillLayers;
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;
using Kelmor.PSD.FileFormats.Psd.Layers.SmartObjects;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class LayerKinds
{
    private delegate Layer Maker(LayerRecord record, PsdHeader header);

    // The first key that a record has decides.
    private static readonly (string Key, Maker Make)[] Adjustments =
    [
        ("blwh", (record, header) => new BlackWhiteAdjustmentLayer(record, header)),
        ("CgEd", (record, header) => new BrightnessContrastLayer(record, header)),
        ("brit", (record, header) => new BrightnessContrastLayer(record, header)),
        ("mixr", Mixer),
        ("blnc", (record, header) => new ColorBalanceAdjustmentLayer(record, header)),
        ("curv", (record, header) => new CurvesLayer(record, header)),
        ("expA", (record, header) => new ExposureLayer(record, header)),
        ("grdm", (record, header) => new GradientMapLayer(record, header)),
        ("hue2", (record, header) => new HueSaturationLayer(record, header)),
        ("hue ", (record, header) => new HueSaturationLayer(record, header)),
        ("nvrt", (record, header) => new InvertAdjustmentLayer(record, header)),
        ("levl", (record, header) => new LevelsLayer(record, header)),
        ("phfl", (record, header) => new PhotoFilterLayer(record, header)),
        ("post", (record, header) => new PosterizeLayer(record, header)),
        ("selc", (record, header) => new SelectiveColorLayer(record, header)),
        ("thrs", (record, header) => new ThresholdLayer(record, header)),
        ("vibA", (record, header) => new VibranceLayer(record, header)),
        ("clrL", (record, header) => new AdjustmentLayer(record, header)),
    ];

    /// <summary>The layer object that stands for a record.</summary>
    public static Layer Create(LayerRecord record, PsdHeader header)
    {
        switch (SectionOf(record))
        {
            case LayerSectionType.BoundingSection:
                return new SectionDividerLayer(record, header);
            case LayerSectionType.OpenFolder or LayerSectionType.ClosedFolder:
                return record.Has("artb", "artd", "abdd")
                    ? new ArtboardLayer(record, header)
                    : new LayerGroup(record, header);
        }
        if (record.Has("TySh", "tySh"))
        {
            return new TextLayer(record, header);
        }
        if (record.Has("PlLd", "plLd", "SoLd", "SoLE"))
        {
            return new SmartObjectLayer(record, header);
        }
        foreach (var (key, make) in Adjustments)
        {
            if (record.Has(key))
            {
                return make(record, header);
            }
        }
        if (IsShape(record))
        {
            return new ShapeLayer(record, header);
        }
        return record.Has("SoCo", "GdFl", "PtFl")
            ? new FillLayer(record, header)
            : new Layer(record, header);
    }

    /// <summary>The part that a record plays in a group.</summary>
    public static LayerSectionType SectionOf(LayerRecord record)
    {
        var block =
            record.Find(TaggedBlocks.Code("lsct")) ?? record.Find(TaggedBlocks.Code("lsdk"));
        return (block as LayerSectionResource)?.SectionType ?? LayerSectionType.Other;
    }

    // A vector mask alone may belong to a pixel layer: in a shape the pixels are only its
    // rendering.
    private static bool IsShape(LayerRecord record)
    {
        const byte PixelsIrrelevant = (byte)LayerFlags.PixelDataIrrelevantToAppearenceInDocument;
        return (record.Flags & PixelsIrrelevant) != 0
            && record.Has("vogk", "vmsk", "vsms", "vstk", "vscg");
    }

    private static Layer Mixer(LayerRecord record, PsdHeader header) =>
        header.Mode == ColorModes.Cmyk
            ? new CmykChannelMixerLayer(record, header)
            : new RgbChannelMixerLayer(record, header);
}
