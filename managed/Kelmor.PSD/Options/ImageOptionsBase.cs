// What may be said about saving in any format.
using Kelmor.PSD.ImageOptions;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD;

/// <summary>How an image is saved; the class of the options chooses the format.</summary>
public abstract class ImageOptionsBase : DisposableObject
{
    /// <summary>Options with the defaults.</summary>
    protected ImageOptionsBase() { }

    /// <summary>A copy of other options.</summary>
    protected ImageOptionsBase(ImageOptionsBase imageOptions)
    {
        ArgumentNullException.ThrowIfNull(imageOptions);
        DefaultReplacementFont = imageOptions.DefaultReplacementFont;
        XmpDataCore = imageOptions.XmpDataCore;
        Source = imageOptions.Source;
        Palette = imageOptions.Palette;
        ResolutionSettings = imageOptions.ResolutionSettings;
        VectorRasterizationOptions = imageOptions.VectorRasterizationOptions;
        BufferSizeHint = imageOptions.BufferSizeHint;
        MultiPageOptions = imageOptions.MultiPageOptions;
        FullFrame = imageOptions.FullFrame;
    }

    /// <summary>A copy of these options; palettes and sources are shared.</summary>
    public virtual ImageOptionsBase Clone() => (ImageOptionsBase)MemberwiseClone();

    /// <summary>Font for text whose own font is not there.</summary>
    public string? DefaultReplacementFont { get; set; }

    /// <summary>Metadata to be written; null keeps those of the image.</summary>
    public virtual XmpPacketWrapper? XmpData
    {
        get => XmpDataCore;
        set => XmpDataCore = value;
    }

    /// <summary>Place of a new image.</summary>
    public Source? Source { get; set; }

    /// <summary>
    /// Palette of the saved image; null keeps that of the image. Only indexed images have one.
    /// </summary>
    public IColorPalette? Palette { get; set; }

    /// <summary>Resolution of the saved image; null keeps that of the image.</summary>
    public ResolutionSetting? ResolutionSettings { get; set; }

    /// <summary>How drawings become pixels.</summary>
    public VectorRasterizationOptions? VectorRasterizationOptions { get; set; }

    /// <summary>Largest size of internal buffers in megabytes; 0 for no limit.</summary>
    public int BufferSizeHint { get; set; }

    /// <summary>Which pages are saved; must be null for formats without pages.</summary>
    public MultiPageOptions? MultiPageOptions { get; set; }

    /// <summary>True: each page fills the whole of the saved image.</summary>
    public bool FullFrame { get; set; }

    private protected XmpPacketWrapper? XmpDataCore { get; set; }

    /// <summary>The format that these options stand for.</summary>
    internal abstract FileFormat Format { get; }
}
