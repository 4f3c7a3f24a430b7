// A font as a document names it; nothing here looks for a file.
using System.Globalization;

namespace Kelmor.GfxTypes;

/// <summary>Styles of a font, which may be combined.</summary>
[Flags]
public enum FontStyle
{
    /// <summary>Upright and of usual weight.</summary>
    Regular = 0,

    /// <summary>Bold.</summary>
    Bold = 1,

    /// <summary>Italic.</summary>
    Italic = 2,

    /// <summary>With a line below.</summary>
    Underline = 4,

    /// <summary>With a line through it.</summary>
    Strikeout = 8,
}

/// <summary>What one unit of a measure is.</summary>
public enum GraphicsUnit
{
    /// <summary>The unit of the world transformation.</summary>
    World = 0,

    /// <summary>The unit of the device.</summary>
    Display = 1,

    /// <summary>A pixel.</summary>
    Pixel = 2,

    /// <summary>A 72nd of an inch.</summary>
    Point = 3,

    /// <summary>An inch.</summary>
    Inch = 4,

    /// <summary>A 300th of an inch.</summary>
    Document = 5,

    /// <summary>A millimetre.</summary>
    Millimeter = 6,
}

/// <summary>A font by name, size and style.</summary>
public sealed class Font : IDisposable, IEquatable<Font>
{
    /// <summary>Makes a regular font, sized in points.</summary>
    public Font(string name, float size) : this(name, size, FontStyle.Regular)
    {
    }

    /// <summary>Makes a font, sized in points.</summary>
    public Font(string name, float size, FontStyle style)
        : this(name, size, style, GraphicsUnit.Point)
    {
    }

    /// <summary>Makes a font.</summary>
    public Font(string name, float size, FontStyle style, GraphicsUnit unit)
    {
        ArgumentException.ThrowIfNullOrEmpty(name);
        if (!float.IsFinite(size) || size <= 0f)
        {
            throw new ArgumentOutOfRangeException(nameof(size), size, "A font has a size above 0.");
        }
        Name = name;
        Size = size;
        Style = style;
        Unit = unit;
    }

    /// <summary>Name of the family.</summary>
    public string Name { get; }

    /// <summary>Size in <see cref="Unit"/>.</summary>
    public float Size { get; }

    /// <summary>Style.</summary>
    public FontStyle Style { get; }

    /// <summary>What the size counts.</summary>
    public GraphicsUnit Unit { get; }

    /// <summary>Whether it is bold.</summary>
    public bool Bold => Style.HasFlag(FontStyle.Bold);

    /// <summary>Whether it is italic.</summary>
    public bool Italic => Style.HasFlag(FontStyle.Italic);

    /// <summary>Whether it has a line below.</summary>
    public bool Underline => Style.HasFlag(FontStyle.Underline);

    /// <summary>Whether it has a line through it.</summary>
    public bool Strikeout => Style.HasFlag(FontStyle.Strikeout);

    /// <inheritdoc/>
    public bool Equals(Font? other) => other is not null && Name == other.Name
        && Size == other.Size && Style == other.Style && Unit == other.Unit;

    /// <inheritdoc/>
    public override bool Equals(object? obj) => Equals(obj as Font);

    /// <inheritdoc/>
    public override int GetHashCode() => HashCode.Combine(Name, Size, Style, Unit);

    /// <inheritdoc/>
    public override string ToString() => string.Create(
        CultureInfo.InvariantCulture, $"[Font: Name={Name}, Size={Size}, Units={Unit}]");

    /// <summary>Ends the use of the font; a name and a size hold nothing.</summary>
    public void Dispose()
    {
    }
}
