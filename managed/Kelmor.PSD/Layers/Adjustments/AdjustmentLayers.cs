// The adjustment layers: layers without pixels of their own that change what lies below.
namespace Kelmor.PSD.FileFormats.Psd.Layers.AdjustmentLayers;

/// <summary>A layer that changes what lies below it.</summary>
public class AdjustmentLayer : Layer
{
    internal AdjustmentLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }

    /// <summary>Changes the pixels of the layers below for good and removes this layer.</summary>
    public void MergeAdjustment() => throw NotYet.Member();
}

/// <summary>Adjustment by a channel mixer: "mixr".</summary>
public abstract class ChannelMixerLayer : AdjustmentLayer
{
    private protected ChannelMixerLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>A channel mixer of an RGB or grayscale document.</summary>
public class RgbChannelMixerLayer : ChannelMixerLayer
{
    internal RgbChannelMixerLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>A channel mixer of a CMYK document.</summary>
public class CmykChannelMixerLayer : ChannelMixerLayer
{
    internal CmykChannelMixerLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by black and white: "blwh".</summary>
public class BlackWhiteAdjustmentLayer : AdjustmentLayer
{
    internal BlackWhiteAdjustmentLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by brightness and contrast: "brit".</summary>
public class BrightnessContrastLayer : AdjustmentLayer
{
    internal BrightnessContrastLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by colour balance: "blnc".</summary>
public class ColorBalanceAdjustmentLayer : AdjustmentLayer
{
    internal ColorBalanceAdjustmentLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by curves: "curv".</summary>
public class CurvesLayer : AdjustmentLayer
{
    internal CurvesLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by exposure: "expA".</summary>
public class ExposureLayer : AdjustmentLayer
{
    internal ExposureLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by a gradient map: "grdm".</summary>
public class GradientMapLayer : AdjustmentLayer
{
    internal GradientMapLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by hue and saturation: "hue2".</summary>
public class HueSaturationLayer : AdjustmentLayer
{
    internal HueSaturationLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by inversion: "nvrt".</summary>
public class InvertAdjustmentLayer : AdjustmentLayer
{
    internal InvertAdjustmentLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by levels: "levl".</summary>
public class LevelsLayer : AdjustmentLayer
{
    internal LevelsLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by a photo filter: "phfl".</summary>
public class PhotoFilterLayer : AdjustmentLayer
{
    internal PhotoFilterLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by posterising: "post".</summary>
public class PosterizeLayer : AdjustmentLayer
{
    internal PosterizeLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by selective colour: "selc".</summary>
public class SelectiveColorLayer : AdjustmentLayer
{
    internal SelectiveColorLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by a threshold: "thrs".</summary>
public class ThresholdLayer : AdjustmentLayer
{
    internal ThresholdLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}

/// <summary>Adjustment by vibrance: "vibA".</summary>
public class VibranceLayer : AdjustmentLayer
{
    internal VibranceLayer(LayerRecord record, PsdHeader header)
        : base(record, header) { }
}
