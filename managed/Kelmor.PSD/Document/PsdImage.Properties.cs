// The properties of a layered document.
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Layers.Animation;
using Kelmor.PSD.FileFormats.Psd.Resources;
using Kelmor.PSD.ImageOptions;
using Kelmor.PSD.Sources;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.FileFormats.Psd;

public partial class PsdImage
{
    /// <summary>Metadata of the document, or null.</summary>
    public override XmpPacketWrapper? XmpData
    {
        get => FindResource<XmpResource>()?.XmpData;
        set => ReplaceResource<XmpResource>(value is null ? null : new XmpResource(value));
    }

    /// <inheritdoc/>
    public override FileFormat FileFormat => FileFormat.Psd;

    /// <summary>
    /// True when the merged image has transparency, or its palette a transparent entry.
    /// </summary>
    public override bool HasAlpha =>
        MergedAlphaIndex >= 0 || Palette is IPsdColorPalette { HasTransparentColor: true };

    /// <summary>Pixels per inch downwards.</summary>
    public override double VerticalResolution
    {
        get => FindResource<ResolutionInfoResource>()?.VDpi ?? 72;
        set => FindOrAddResource(() => new ResolutionInfoResource()).VDpi = value;
    }

    /// <summary>Pixels per inch across.</summary>
    public override double HorizontalResolution
    {
        get => FindResource<ResolutionInfoResource>()?.HDpi ?? 72;
        set => FindOrAddResource(() => new ResolutionInfoResource()).HDpi = value;
    }

    /// <summary>The ICC profile of an RGB document, or null.</summary>
    public StreamSource? RgbColorProfile
    {
        get => Profile("RGB "u8);
        set => SetProfile(value);
    }

    /// <summary>The ICC profile of a CMYK document, or null.</summary>
    public StreamSource? CmykColorProfile
    {
        get => Profile("CMYK"u8);
        set => SetProfile(value);
    }

    /// <summary>The ICC profile of a grayscale document, or null.</summary>
    public StreamSource? GrayColorProfile
    {
        get => Profile("GRAY"u8);
        set => SetProfile(value);
    }

    /// <summary>Colour mode.</summary>
    public ColorModes ColorMode => File.Header.Mode;

    /// <summary>How the merged image is packed.</summary>
    public CompressionMethod Compression => File.Merged.Method;

    /// <summary>Number of channels of the merged image, alpha included.</summary>
    public int ChannelsCount => File.Header.Channels;

    /// <summary>Bits of a sample: 1, 8, 16 or 32.</summary>
    public int BitsPerChannel => File.Header.Depth;

    /// <summary>
    /// The image resources, in file order; assigning takes the resources of the array.
    /// </summary>
    public ResourceBlock[] ImageResources
    {
        get => [.. File.Resources];
        set
        {
            VerifyNotDisposed();
            ArgumentNullException.ThrowIfNull(value);
            File.Resources.Clear();
            File.Resources.AddRange(value);
        }
    }

    /// <summary>Version number of the file header: 1 for PSD, 2 for PSB.</summary>
    public int Version => (int)File.Header.Version;

    /// <summary>Width in pixels.</summary>
    public override int Width => File.Header.Width;

    /// <summary>Height in pixels.</summary>
    public override int Height => File.Header.Height;

    /// <summary>Bits of a pixel of the merged image, all channels together.</summary>
    public override int BitsPerPixel => File.Header.Depth * File.Header.Channels;

    /// <summary>
    /// All layer records, bottom to top, end marks of groups included; assigning reorders, adds and
    /// removes.
    /// </summary>
    /// <exception cref="CoreExceptions.ImageFormats.PsdImageArgumentException">Groups and their end
    /// marks do not match.</exception>
    public Layer[] Layers
    {
        get => [.. File.Layers.Layers];
        set
        {
            Tree.ReplaceAll(value);
        }
    }

    /// <summary>The tagged blocks of the document as a whole, in file order.</summary>
    public LayerResource[] GlobalLayerResources
    {
        get => [.. File.Layers.Blocks];
        set
        {
            VerifyNotDisposed();
            ArgumentNullException.ThrowIfNull(value);
            File.Layers.Blocks.Clear();
            File.Layers.Blocks.AddRange(value);
            if (File.Layers.PlaceBlock is { } place && !value.Contains(place))
            {
                File.Layers.Blocks.Insert(0, place); // the layers themselves
            }
            WatchGlobalBlocks();
            File.Layers.IsChanged = true;
        }
    }

    /// <summary>Colour in which masks are shown, or null.</summary>
    public GlobalLayerMaskInfo? GlobalLayerMaskInfo =>
        File.Layers.GlobalMask is { Length: > 0 } data ? new GlobalLayerMaskInfo(data) : null;

    /// <summary>
    /// True when the first alpha channel of the merged image is its transparency.
    /// </summary>
    public bool HasTransparencyData
    {
        get => File.Layers.HasMergedTransparency;
        set
        {
            VerifyNotDisposed();
            if (value != File.Layers.HasMergedTransparency)
            {
                File.Layers.HasMergedTransparency = value;
                File.Layers.IsChanged = true;
            }
        }
    }

    /// <summary>The layer that is selected in the list of layers, or null.</summary>
    public Layer? ActiveLayer
    {
        get => LayerState.Selected(File);
        set
        {
            VerifyNotDisposed();
            LayerState.Select(File, value);
        }
    }

    /// <summary>True when the document has no layers.</summary>
    public bool IsFlatten => File.Layers.Layers.Count == 0;

    /// <summary>Order and width of the stored samples.</summary>
    public override PixelDataFormat RawDataFormat =>
        PixelDataFormat.Of(
            ColorMode switch
            {
                ColorModes.Rgb => PixelFormat.Rgb,
                ColorModes.Cmyk => PixelFormat.Cmyk,
                ColorModes.Lab => PixelFormat.Lab,
                ColorModes.Indexed => PixelFormat.Indexed,
                ColorModes.Multichannel => PixelFormat.Unknown,
                _ => PixelFormat.Grayscale,
            },
            ChannelsCount,
            BitsPerChannel
        );

    /// <summary>Angle of the light of all effects, in degrees.</summary>
    public int GlobalAngle
    {
        get => FindResource<GlobalAngleResource>()?.GlobalAngle ?? 30;
        set => FindOrAddResource(() => new GlobalAngleResource()).GlobalAngle = value;
    }

    /// <summary>Links between layers.</summary>
    public LinkedLayersManager LinkedLayersManager => throw NotYet.Member();

    /// <summary>Images that smart objects show.</summary>
    public SmartObjectProvider SmartObjectProvider => throw NotYet.Member();

    /// <summary>Frames of an animation.</summary>
    public Timeline Timeline => throw NotYet.Member();

    /// <summary>PSD or PSB.</summary>
    internal PsdVersion DocumentVersion => File.Header.Version;

    /// <inheritdoc/>
    public override ImageOptionsBase GetDefaultOptions(object[]? args) =>
        new PsdOptions(this) { RefreshImagePreviewData = true, UpdateMetadata = true };

    /// <inheritdoc/>
    public override ImageOptionsBase GetOriginalOptions() => new PsdOptions(this);
}
