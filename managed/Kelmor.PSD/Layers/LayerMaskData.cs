// The raster mask of a layer, in its short and its full form.

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// Place and flags of a layer mask (Adobe Photoshop File Formats Specification, Layer mask data).
/// </summary>
public abstract class LayerMaskData
{
    private readonly ReadOnlyMemory<byte> data;

    private protected LayerMaskData(ReadOnlyMemory<byte> data) => this.data = data;

    /// <summary>The mask's rectangle in the document, in pixels.</summary>
    public Rectangle MaskRectangle => MaskRectangles.Of(data, real: false);

    /// <summary>Left edge.</summary>
    public int Left => MaskRectangle.Left;

    /// <summary>Upper edge.</summary>
    public int Top => MaskRectangle.Top;

    /// <summary>Right edge.</summary>
    public int Right => MaskRectangle.Right;

    /// <summary>Lower edge.</summary>
    public int Bottom => MaskRectangle.Bottom;

    /// <summary>Value outside of the rectangle: 0 hides, 255 shows.</summary>
    public byte DefaultColor => data.Span[16];

    /// <summary>Flags.</summary>
    public LayerMaskFlags Flags => (LayerMaskFlags)data.Span[17];

    internal ReadOnlyMemory<byte> Data => data;

    internal static LayerMaskData? Create(ReadOnlyMemory<byte> data) =>
        data.Length switch
        {
            < 18 => null,
            < MaskRectangles.WithRealMask => new LayerMaskDataShort(data),
            _ => new LayerMaskDataFull(data),
        };
}

/// <summary>A mask alone.</summary>
public sealed class LayerMaskDataShort : LayerMaskData
{
    internal LayerMaskDataShort(ReadOnlyMemory<byte> data)
        : base(data) { }
}

/// <summary>
/// A mask that was rendered from a vector mask and a user mask, with the user mask beside it.
/// </summary>
public sealed class LayerMaskDataFull : LayerMaskData
{
    internal LayerMaskDataFull(ReadOnlyMemory<byte> data)
        : base(data) { }

    /// <summary>The user mask's own rectangle in the document, in pixels.</summary>
    public Rectangle UserMaskRectangle => MaskRectangles.Of(Data, real: true);

    /// <summary>Flags of the user mask.</summary>
    public LayerMaskFlags RealFlags => (LayerMaskFlags)Data.Span[MaskRectangles.RealMaskStart];

    /// <summary>Value outside of the user mask's rectangle: 0 hides, 255 shows.</summary>
    public byte BackgroundColor => Data.Span[MaskRectangles.RealMaskStart + 1];
}
