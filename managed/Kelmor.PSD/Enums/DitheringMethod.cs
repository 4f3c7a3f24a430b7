// How colours that a palette lacks are imitated.
namespace Kelmor.PSD;

/// <summary>How colours that a palette lacks are imitated.</summary>
public enum DitheringMethod
{
    ThresholdDithering = 0,
    FloydSteinbergDithering = 1,
}
