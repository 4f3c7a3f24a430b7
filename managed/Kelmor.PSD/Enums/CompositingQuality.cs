// Care taken when drawings are laid over pixels.
namespace Kelmor.PSD;

/// <summary>Care taken when drawings are laid over pixels.</summary>
public enum CompositingQuality
{
    Default = 0,
    HighSpeed = 1,
    HighQuality = 2,
    GammaCorrected = 3,
    AssumeLinear = 4,
    Invalid = -1,
}
