// The replacement of one colour.
namespace Kelmor.GfxTypes.Imaging;

/// <summary>One colour and what it becomes.</summary>
public sealed class ColorMap
{
    /// <summary>The colour that is replaced.</summary>
    public Color OldColor { get; set; }

    /// <summary>The colour in its place.</summary>
    public Color NewColor { get; set; }
}
