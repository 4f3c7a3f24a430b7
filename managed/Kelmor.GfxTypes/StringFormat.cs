// How text is laid into its box.
namespace Kelmor.GfxTypes;

/// <summary>Where text stands between two sides.</summary>
public enum StringAlignment
{
    /// <summary>At the first side.</summary>
    Near = 0,

    /// <summary>In the middle.</summary>
    Center = 1,

    /// <summary>At the last side.</summary>
    Far = 2,
}

/// <summary>What happens to text that does not fit.</summary>
public enum StringTrimming
{
    /// <summary>It is not cut.</summary>
    None = 0,

    /// <summary>It is cut after a character.</summary>
    Character = 1,

    /// <summary>It is cut after a word.</summary>
    Word = 2,

    /// <summary>An ellipsis follows the last character.</summary>
    EllipsisCharacter = 3,

    /// <summary>An ellipsis follows the last word.</summary>
    EllipsisWord = 4,

    /// <summary>An ellipsis replaces the middle, as for paths.</summary>
    EllipsisPath = 5,
}

/// <summary>Directions and wrapping, which may be combined.</summary>
[Flags]
public enum StringFormatFlags
{
    /// <summary>From left to right.</summary>
    None = 0,

    /// <summary>From right to left.</summary>
    DirectionRightToLeft = 1,

    /// <summary>From top to bottom.</summary>
    DirectionVertical = 2,

    /// <summary>Without line breaks.</summary>
    NoWrap = 0x1000,

    /// <summary>Whole lines only.</summary>
    LineLimit = 0x2000,

    /// <summary>Beyond the box if need be.</summary>
    NoClip = 0x4000,
}

/// <summary>Alignment, direction and trimming of text.</summary>
public sealed class StringFormat : IDisposable
{
    /// <summary>Makes the usual format.</summary>
    public StringFormat()
    {
    }

    /// <summary>Makes a format with flags.</summary>
    public StringFormat(StringFormatFlags formatFlags) => FormatFlags = formatFlags;

    /// <summary>Position along the line.</summary>
    public StringAlignment Alignment { get; set; }

    /// <summary>Position across the lines.</summary>
    public StringAlignment LineAlignment { get; set; }

    /// <summary>Direction and wrapping.</summary>
    public StringFormatFlags FormatFlags { get; set; }

    /// <summary>What happens to text that does not fit.</summary>
    public StringTrimming Trimming { get; set; } = StringTrimming.Character;

    /// <summary>Ends the use of the format, which holds nothing.</summary>
    public void Dispose()
    {
    }
}
