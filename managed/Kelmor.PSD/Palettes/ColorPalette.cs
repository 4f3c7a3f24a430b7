// The palette that everybody may make.
namespace Kelmor.PSD;

/// <summary>A palette of colours, at most 256, that does not change.</summary>
public class ColorPalette : IColorPalette
{
    private const int Most = 256;

    private readonly int[] entries;

    /// <summary>A palette from numbers.</summary>
    /// <param name="argb32Entries">0xAARRGGBB each; copied.</param>
    public ColorPalette(int[] argb32Entries)
        : this(argb32Entries, false) { }

    /// <summary>A palette from colours.</summary>
    public ColorPalette(Color[] entries)
        : this(entries, false) { }

    /// <summary>A palette from numbers.</summary>
    /// <param name="argb32Entries">0xAARRGGBB each; copied.</param>
    /// <param name="isCompactPalette">True when an image may store these entries alone.</param>
    /// <exception cref="ArgumentException">There are more than 256 entries.</exception>
    public ColorPalette(int[] argb32Entries, bool isCompactPalette)
    {
        ArgumentNullException.ThrowIfNull(argb32Entries);
        if (argb32Entries.Length > Most)
        {
            throw new ArgumentException(
                $"A palette holds at most {Most} colours, not {argb32Entries.Length}.",
                nameof(argb32Entries)
            );
        }
        entries = [.. argb32Entries];
        IsCompactPalette = isCompactPalette;
    }

    /// <summary>A palette from colours.</summary>
    public ColorPalette(Color[] entries, bool isCompactPalette)
        : this(Numbers(entries), isCompactPalette) { }

    /// <inheritdoc/>
    public int EntriesCount => entries.Length;

    /// <inheritdoc/>
    public int[] Argb32Entries => [.. entries];

    /// <inheritdoc/>
    public Color[] Entries => Array.ConvertAll(entries, Color.FromArgb);

    /// <inheritdoc/>
    public bool IsCompactPalette { get; }

    /// <summary>A copy of another palette; null stays null.</summary>
    public static ColorPalette? CopyPalette(IColorPalette? colorPalette) =>
        colorPalette is null
            ? null
            : new ColorPalette(colorPalette.Argb32Entries, colorPalette.IsCompactPalette);

    /// <inheritdoc/>
    public int GetNearestColorIndex(int argb32Color)
    {
        var best = -1;
        var distance = int.MaxValue;
        for (var i = 0; i < entries.Length && distance > 0; i++)
        {
            var now = Distance(entries[i], argb32Color);
            if (now < distance)
            {
                (best, distance) = (i, now);
            }
        }
        return best;
    }

    /// <inheritdoc/>
    public int GetNearestColorIndex(Color color) => GetNearestColorIndex(color.ToArgb());

    /// <inheritdoc/>
    /// <exception cref="ArgumentOutOfRangeException">There is no such entry.</exception>
    public int GetArgb32Color(int index) =>
        (uint)index < (uint)entries.Length
            ? entries[index]
            : throw new ArgumentOutOfRangeException(
                nameof(index),
                $"The palette has {entries.Length} entries, none with the index {index}."
            );

    /// <inheritdoc/>
    public Color GetColor(int index) => Color.FromArgb(GetArgb32Color(index));

    private static int[] Numbers(Color[] colors)
    {
        ArgumentNullException.ThrowIfNull(colors);
        return Array.ConvertAll(colors, color => color.ToArgb());
    }

    private static int Distance(int left, int right)
    {
        var sum = 0;
        for (var shift = 0; shift < 32; shift += 8)
        {
            var difference = (left >> shift & 255) - (right >> shift & 255);
            sum += difference * difference;
        }
        return sum;
    }
}
