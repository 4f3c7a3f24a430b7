// How channel data are packed.
namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>
/// How channel data are packed (Adobe Photoshop File Formats Specification, Channel Image Data).
/// </summary>
public enum CompressionMethod : short
{
    Raw = 0,
    Rle = 1,
    ZipWithoutPrediction = 2,
    ZipWithPrediction = 3,
}
