// A new document without layers.
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.FileFormats.Psd;

internal static class PsdCreation
{
    private const int LargestPsdSide = 30_000;

    /// <summary>
    /// The sections of a new document, with transparency unless another number of channels is
    /// wanted; a side beyond 30000 pixels makes it a PSB document.
    /// </summary>
    public static PsdFile Create(
        int width,
        int height,
        ColorModes mode,
        short depth,
        CompressionMethod compression,
        int? wantedChannels = null
    )
    {
        PixelWriter.VerifySupported(mode, depth);
        if (mode == ColorModes.Duotone)
        {
            throw new NotSupportedException("A duotone document cannot be made without its inks.");
        }
        if (!Enum.IsDefined(compression))
        {
            throw new ArgumentOutOfRangeException(
                nameof(compression),
                $"The compression method {(int)compression} is not known."
            );
        }
        var version = Math.Max(width, height) > LargestPsdSide ? PsdVersion.Psb : PsdVersion.Psd;
        var colors = PsdHeader.ColorChannelsOf(mode, 1);
        var channels = wantedChannels ?? colors + 1;
        var header = new PsdHeader(version, new byte[6], channels, height, width, depth, mode);
        header.Verify("No such document can be made");
        return new PsdFile
        {
            Header = header,
            Layers = new LayerSection
            {
                HasMergedTransparency = channels > colors,
                IsChanged = true,
                GlobalMask = ReadOnlyMemory<byte>.Empty,
            },
            Merged = new MergedImage(header, compression),
        };
    }
}
