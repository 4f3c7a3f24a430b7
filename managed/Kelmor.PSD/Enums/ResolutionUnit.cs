// Unit of a resolution.
namespace Kelmor.PSD;

/// <summary>Unit of a resolution.</summary>
public enum ResolutionUnit
{
    /// <summary>No unit: only the ratio counts.</summary>
    None = 1,

    /// <summary>Pixels per inch.</summary>
    Inch = 2,

    /// <summary>Pixels per centimetre.</summary>
    Cm = 3,
}
