// How pixels between pixels are computed.
namespace Kelmor.PSD;

/// <summary>How pixels between pixels are computed.</summary>
public enum InterpolationMode
{
    Default = 0,
    Low = 1,
    High = 2,
    Bilinear = 3,
    Bicubic = 4,
    NearestNeighbor = 5,
    HighQualityBilinear = 6,
    HighQualityBicubic = 7,
    Invalid = -1,
}
