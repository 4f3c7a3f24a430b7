// Unit in which a resolution is shown.
namespace Kelmor.PSD.FileFormats.Psd.Resources.ResolutionEnums;

/// <summary>Unit in which a resolution is shown (ResolutionInfo structure).</summary>
public enum ResolutionUnit : short
{
    PxPerInch = 1,
    PxPerCm = 2,
}
