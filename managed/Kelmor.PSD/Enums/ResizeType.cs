// How pixels are computed when an image changes its size.
namespace Kelmor.PSD;

/// <summary>How pixels are computed when an image changes its size.</summary>
public enum ResizeType
{
    None = 0,
    LeftTopToLeftTop = 1,
    RightTopToRightTop = 2,
    RightBottomToRightBottom = 3,
    LeftBottomToLeftBottom = 4,
    CenterToCenter = 5,
    LanczosResample = 6,
    NearestNeighbourResample = 7,
    AdaptiveResample = 8,
    BilinearResample = 9,
    HighQualityResample = 10,
    CatmullRom = 11,
    CubicConvolution = 12,
    CubicBSpline = 13,
    Mitchell = 14,
    SinC = 15,
    Bell = 16,
}
