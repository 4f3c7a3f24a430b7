// How text is rendered.
namespace Kelmor.PSD;

/// <summary>How text is rendered.</summary>
public enum TextRenderingHint
{
    SystemDefault = 0,
    SingleBitPerPixelGridFit = 1,
    SingleBitPerPixel = 2,
    AntiAliasGridFit = 3,
    AntiAlias = 4,
    ClearTypeGridFit = 5,
}
