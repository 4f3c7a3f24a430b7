// What a layer is before it belongs to a document, and the sizes of records.
namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class LayerDefaults
{
    /// <summary>RGB of 8 bits: what a layer assumes until a document takes it in.</summary>
    public static PsdHeader Header { get; } =
        new(PsdVersion.Psd, new byte[6], 3, 1, 1, 8, ColorModes.Rgb);
}

internal static class LayerRecordSize
{
    // Rectangle, channel count, signature, mode, four bytes, length.
    private const int Fixed = 16 + 2 + 4 + 4 + 4 + 4;

    /// <summary>Bytes of a record up to its extra data.</summary>
    public static int Head(LayerRecord record, bool isBig) =>
        Fixed + record.Channels.Count * (isBig ? 10 : 6);
}
