// How a PNG image is saved.
using Kelmor.PSD.FileFormats.Png;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.ImageOptions;

/// <summary>
/// How a PNG image is saved (Portable Network Graphics Specification, Second Edition).
/// </summary>
public class PngOptions : ImageOptionsBase
{
    private int compressionLevel = 6;
    private byte bitDepth = 8;

    /// <summary>
    /// Options with the defaults: true colour with alpha, 8 bits, adaptive filter, level 6.
    /// </summary>
    public PngOptions() { }

    /// <summary>A copy of other options.</summary>
    public PngOptions(PngOptions pngOptions)
        : base(pngOptions)
    {
        ColorType = pngOptions.ColorType;
        Progressive = pngOptions.Progressive;
        FilterType = pngOptions.FilterType;
        CompressionLevel = pngOptions.CompressionLevel;
        BitDepth = pngOptions.BitDepth;
    }

    /// <summary>Metadata to be written; null keeps those of the image.</summary>
    public override XmpPacketWrapper? XmpData
    {
        get => XmpDataCore;
        set => XmpDataCore = value;
    }

    /// <summary>What the samples of a pixel are.</summary>
    public PngColorType ColorType { get; set; } = PngColorType.TruecolorWithAlpha;

    /// <summary>True: seven interlaced passes (Adam7).</summary>
    public bool Progressive { get; set; }

    /// <summary>Filter before packing; affects the size only.</summary>
    public PngFilterType FilterType { get; set; } = PngFilterType.Adaptive;

    /// <summary>0 not packed, 1 fastest to 9 smallest.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The level is outside of 0 to 9.</exception>
    public int CompressionLevel
    {
        get => compressionLevel;
        set =>
            compressionLevel = value is >= 0 and <= 9
                ? value
                : throw new ArgumentOutOfRangeException(
                    nameof(value),
                    $"The compression level must lie between 0 and 9, not {value}."
                );
    }

    /// <summary>Bits of one sample: 1, 2, 4, 8 or 16, as the colour type allows.</summary>
    /// <exception cref="ArgumentOutOfRangeException">No colour type has samples of this
    /// depth.</exception>
    public byte BitDepth
    {
        get => bitDepth;
        set =>
            bitDepth = value is 1 or 2 or 4 or 8 or 16
                ? value
                : throw new ArgumentOutOfRangeException(
                    nameof(value),
                    $"The bit depth must be 1, 2, 4, 8 or 16, not {value}."
                );
    }

    internal override FileFormat Format => FileFormat.Png;
}
