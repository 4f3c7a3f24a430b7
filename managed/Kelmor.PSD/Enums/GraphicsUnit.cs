// Unit of lengths.
namespace Kelmor.PSD;

/// <summary>Unit of lengths.</summary>
public enum GraphicsUnit
{
    World = 0,
    Display = 1,
    Pixel = 2,
    Point = 3,
    Inch = 4,
    Document = 5,
    Millimeter = 6,
}
