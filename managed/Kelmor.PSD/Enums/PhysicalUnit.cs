// Unit in which a length is shown.
namespace Kelmor.PSD.FileFormats.Psd.Resources.ResolutionEnums;

/// <summary>Unit in which a length is shown (ResolutionInfo structure).</summary>
public enum PhysicalUnit : short
{
    Inches = 1,
    Centimeters = 2,
    Points = 3,
    Picas = 4,
    Columns = 5,
}
