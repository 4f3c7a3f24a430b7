// Flags of a layer record.
namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// Flags of a layer record (Adobe Photoshop File Formats Specification, Layer Records). Bit 1 set
/// means hidden in the file.
/// </summary>
[Flags]
public enum LayerFlags : byte
{
    TransparencyProtected = 1,
    Visible = 2,
    Obsolete = 4,
    HasUsefulInformation = 8,
    PixelDataIrrelevantToAppearenceInDocument = 16,
    Undocumented = 32,
}
