// Order and meaning of the samples of a pixel.
namespace Kelmor.PSD;

/// <summary>Order and meaning of the samples of a pixel.</summary>
public enum PixelFormat
{
    Unknown = 0,
    Rgb = 1,
    Bgr = 2,
    Cmyk = 3,
    Ycck = 4,
    YCbCr = 5,
    Grayscale = 6,
    Lab = 7,
    Indexed = 8,
}
