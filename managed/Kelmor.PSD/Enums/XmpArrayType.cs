// Kinds of arrays of XMP.
namespace Kelmor.PSD.Xmp;

/// <summary>Kinds of arrays of XMP (XMP Specification Part 1, 7.7).</summary>
public enum XmpArrayType
{
    Unordered = 0,
    Ordered = 1,
    Alternative = 2,
}
