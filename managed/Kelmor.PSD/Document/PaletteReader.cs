// The palette of an indexed document (Photoshop File Formats, Color Mode Data Section).
namespace Kelmor.PSD.FileFormats.Psd;

internal static class PaletteReader
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
}
