// How the bits of a sample are to be read.
namespace Kelmor.PSD.FileFormats.Tiff.Enums;

/// <summary>How the bits of a sample are to be read (TIFF 6.0, SampleFormat).</summary>
public enum TiffSampleFormats : ushort
{
    /// <summary>Unsigned integer.</summary>
    Uint = 1,

    /// <summary>Signed integer in two's complement.</summary>
    Int = 2,

    /// <summary>Floating-point number (IEEE 754).</summary>
    IeeeFloat = 3,

    /// <summary>Not said.</summary>
    Undefined = 4,
}
