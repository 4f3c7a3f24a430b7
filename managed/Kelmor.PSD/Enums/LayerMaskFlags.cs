// Flags of a layer mask.
namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// Flags of a layer mask (Adobe Photoshop File Formats Specification, Layer mask / adjustment layer
/// data).
/// </summary>
[Flags]
public enum LayerMaskFlags : byte
{
    PositionRelativeToLayer = 1,
    Disabled = 2,

    /// <summary>Obsolete.</summary>
    InvertOnBlend = 4,
    UserMaskFromRenderingOtherData = 8,
    HasParameters = 16,
}
