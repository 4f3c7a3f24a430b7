// The palette of an indexed document (Photoshop File Formats, Color Mode Data Section).
namespace Kelmor.PSD.FileFormats.Psd;

internal static class IndexedPalette
{
    private const int Entries = 256;

    /// <summary>
    /// 0xAARRGGBB for each index: the data hold all reds, then all greens, then all blues.
    /// </summary>
    public static int[] Read(ReadOnlySpan<byte> data, int transparentIndex)
    {
        var count = Math.Min(data.Length / 3, Entries);
        var colors = new int[count];
        for (var i = 0; i < count; i++)
        {
            var alpha = i == transparentIndex ? 0 : 255;
            colors[i] = alpha << 24 | data[i] << 16 | data[i + count] << 8 | data[i + 2 * count];
        }
        return colors;
    }

    /// <summary>The data of a palette; entries that it lacks are black.</summary>
    public static byte[] Pack(IColorPalette palette)
    {
        var data = new byte[3 * Entries];
        for (var i = 0; i < palette.EntriesCount; i++)
        {
            var color = palette.GetColor(i);
            (data[i], data[i + Entries], data[i + 2 * Entries]) = (color.R, color.G, color.B);
        }
        return data;
    }
}
