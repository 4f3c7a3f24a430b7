// How two lines meet.
namespace Kelmor.PSD;

/// <summary>How two lines meet.</summary>
public enum LineJoin
{
    Miter = 0,
    Bevel = 1,
    Round = 2,
    MiterClipped = 3,
}
