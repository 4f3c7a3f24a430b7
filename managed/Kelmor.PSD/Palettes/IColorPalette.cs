// A list of colours that pixels choose from.
namespace Kelmor.PSD;

/// <summary>A palette of colours, at most 256.</summary>
public interface IColorPalette
{
    /// <summary>Index of the entry nearest to a colour.</summary>
    /// <param name="argb32Color">0xAARRGGBB.</param>
    int GetNearestColorIndex(int argb32Color);

    /// <summary>Index of the entry nearest to a colour.</summary>
    int GetNearestColorIndex(Color color);

    /// <summary>An entry as 0xAARRGGBB.</summary>
    int GetArgb32Color(int index);

    /// <summary>An entry as a colour.</summary>
    Color GetColor(int index);

    /// <summary>Number of entries.</summary>
    int EntriesCount { get; }

    /// <summary>All entries as 0xAARRGGBB.</summary>
    int[] Argb32Entries { get; }

    /// <summary>All entries as colours.</summary>
    Color[] Entries { get; }

    /// <summary>True when an image may store fewer entries than its pixel depth allows.</summary>
    bool IsCompactPalette { get; }
}
