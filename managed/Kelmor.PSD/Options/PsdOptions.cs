// How a layered document is saved.
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.ImageOptions;

/// <summary>How a layered document is saved or made.</summary>
public class PsdOptions : ImageOptionsBase
{
    private const short UsualChannelsCount = 4;

    /// <summary>
    /// Options with the defaults: PSD, run-length packed, RGB of 8 bits in 4 channels.
    /// </summary>
    public PsdOptions() { }

    /// <summary>A copy of other options.</summary>
    public PsdOptions(PsdOptions options)
        : base(options)
    {
        Resources = options.Resources;
        Version = options.Version;
        CompressionMethod = options.CompressionMethod;
        PsdVersion = options.PsdVersion;
        ColorMode = options.ColorMode;
        ChannelBitsCount = options.ChannelBitsCount;
        WantedChannels = options.WantedChannels;
        RemoveGlobalTextEngineResource = options.RemoveGlobalTextEngineResource;
        RefreshImagePreviewData = options.RefreshImagePreviewData;
        UpdateMetadata = options.UpdateMetadata;
        BackgroundContents = options.BackgroundContents;
    }

    /// <summary>Options that write a document as it is.</summary>
    public PsdOptions(PsdImage image)
    {
        ArgumentNullException.ThrowIfNull(image);
        CompressionMethod = image.Compression;
        PsdVersion = image.DocumentVersion;
        Version = (int)image.DocumentVersion;
        ColorMode = image.ColorMode;
        ChannelBitsCount = (short)image.BitsPerChannel;
        ChannelsCount = (short)image.ChannelsCount;
        RefreshImagePreviewData = false;
        UpdateMetadata = false;
    }

    /// <summary>Metadata to be written; null keeps those of the image.</summary>
    public override XmpPacketWrapper? XmpData
    {
        get => XmpDataCore;
        set => XmpDataCore = value;
    }

    /// <summary>Resources to be written; null keeps those of the image.</summary>
    public ResourceBlock[]? Resources { get; set; }

    /// <summary>Version number of the file header: 1 for PSD, 2 for PSB.</summary>
    public int Version { get; set; } = 1;

    /// <summary>How pixels are packed.</summary>
    public CompressionMethod CompressionMethod { get; set; } = CompressionMethod.Rle;

    /// <summary>PSD or PSB.</summary>
    public PsdVersion PsdVersion { get; set; } = PsdVersion.Psd;

    /// <summary>Colour mode of the document.</summary>
    public ColorModes ColorMode { get; set; } = ColorModes.Rgb;

    /// <summary>Bits of one sample: 1, 8, 16 or 32.</summary>
    public short ChannelBitsCount { get; set; } = 8;

    /// <summary>
    /// Number of channels of the merged image: colours, then transparency if there are more. Until
    /// it is set, a new document has transparency, and saving asks for no other number.
    /// </summary>
    public short ChannelsCount
    {
        get => WantedChannels ?? UsualChannelsCount;
        set => WantedChannels = value;
    }

    /// <summary>True: the text resource shared by all layers is left out.</summary>
    public bool RemoveGlobalTextEngineResource { get; set; }

    /// <summary>
    /// True: a merged image that does not show the layers is made anew; false: the stored one is
    /// kept. It is also kept when a layer needs more than pixels, raster masks and blend modes to
    /// be rendered, and in documents that are neither RGB nor grayscale.
    /// </summary>
    public bool RefreshImagePreviewData { get; set; } = true;

    /// <summary>
    /// True: the dates of change in the XMP metadata become the present one; other metadata stay.
    /// </summary>
    public bool UpdateMetadata { get; set; } = true;

    /// <summary>Colour of a new document; Empty for transparent.</summary>
    public Color BackgroundContents { get; set; }

    /// <summary>The number of channels that was asked for, or null.</summary>
    internal short? WantedChannels { get; private set; }

    internal override FileFormat Format => FileFormat.Psd;
}
