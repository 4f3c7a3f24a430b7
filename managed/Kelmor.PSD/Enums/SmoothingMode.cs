// How the edges of drawings are smoothed.
namespace Kelmor.PSD;

/// <summary>How the edges of drawings are smoothed.</summary>
public enum SmoothingMode
{
    Default = 0,
    HighSpeed = 1,
    HighQuality = 2,
    None = 3,
    AntiAlias = 4,
    Invalid = -1,
}
