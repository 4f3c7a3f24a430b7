// How a document keeps its sections, and what its changes mean for the merged image.
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd.Channels;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Resources;
using Kelmor.PSD.ImageLoadOptions;
using Kelmor.PSD.Sources;

namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>Where a document came from.</summary>
/// <param name="FilePath">Path of the file, or null.</param>
/// <param name="Stream">The stream, or null.</param>
/// <param name="Start">Position of the document in the stream.</param>
internal sealed record SaveOrigin(string? FilePath, Stream? Stream, long Start);

public partial class PsdImage
{
    private int[]? palette;
    private bool ignoreAlpha;
    private bool showsStored;
    private MergedImage? rendered; // of the layers as they are; null until somebody looks

    internal PsdFile File { get; }

    internal LayerTree Tree { get; }

    internal SaveOrigin? Origin { get; set; }

    /// <summary>Place that the options of a new image named, or null.</summary>
    internal Source? CreationSource { get; set; }

    /// <summary>True for a document that was made here.</summary>
    internal bool IsNew { get; private init; }

    /// <summary>True when the stored merged image does not show the layers.</summary>
    internal bool IsMergedStale { get; private set; }

    /// <summary>
    /// What the document looks like: the stored merged image, or one that is rendered when that
    /// does not show the layers.
    /// </summary>
    /// <remarks>
    /// A document with layers that cannot be rendered shows the stored image: a picture of its
    /// earlier state is worth more than none. Looking never changes what is saved.
    /// </remarks>
    internal MergedImage Picture =>
        IsMergedStale && !showsStored && (IsNew || Rendering.Renderable.Is(this))
            ? rendered ??= Rendering.MergedPicture.Render(this)
            : File.Merged;

    /// <summary>Layers and groups of the lowest level, bottom to top.</summary>
    internal List<Layer> Roots =>
        File.Layers.Layers.FindAll(layer => layer is { Parent: null } and not SectionDividerLayer);

    /// <summary>Layers were added, removed or moved, or one of them changed.</summary>
    internal void OnLayerChanged()
    {
        File.Layers.IsChanged = true;
        IsMergedStale = true;
        rendered = null;
    }

    internal T? FindResource<T>()
        where T : ResourceBlock => File.Resources.OfType<T>().FirstOrDefault();

    internal T FindOrAddResource<T>(Func<T> make)
        where T : ResourceBlock
    {
        VerifyNotDisposed();
        if (FindResource<T>() is { } found)
        {
            return found;
        }
        var added = make();
        File.Resources.Add(added);
        return added;
    }

    /// <summary>The ICC profile whatever its colour space, or null.</summary>
    internal byte[]? IccProfile => FindResource<IccProfileResource>()?.IccProfile;

    /// <summary>0xAARRGGBB of each index; null for documents that are not indexed.</summary>
    internal int[]? IndexedColors =>
        palette ??=
            ColorMode == ColorModes.Indexed
                ? IndexedPalette.Read(
                    File.ColorModeData.Span,
                    FindResource<TransparencyIndexResource>()?.TransparencyIndex ?? -1
                )
                : null;

    private protected override bool PixelsDecoded => File.Merged.IsDecoded;

    /// <summary>The channel of the merged image that is its transparency, or -1.</summary>
    internal int MergedAlphaIndex
    {
        get
        {
            var first = File.Header.ColorChannels;
            var hasAlpha =
                !ignoreAlpha && File.Header.Channels > first && MergedAlpha.IsTransparency(File);
            return hasAlpha && ColorMode is not (ColorModes.Multichannel or ColorModes.Indexed)
                ? first
                : -1;
        }
    }

    protected override void SaveData(Stream stream) =>
        ImageSaving.Save(this, stream, GetOriginalOptions(), Rectangle.Empty);

    private protected override void PreparePixels() => Picture.Decode();

    internal override void ReadPixels(Rectangle area, Span<int> pixels)
    {
        var planes = Picture.Decode();
        var alpha = MergedAlphaIndex;
        var colors = planes[..File.Header.ColorChannels];
        PixelReader.Read(
            new PixelPlanes(
                ColorMode,
                File.Merged.Layout,
                colors,
                alpha < 0 ? null : planes[alpha],
                IndexedColors
            ),
            area,
            pixels
        );
        if (alpha >= 0)
        {
            MergedAlpha.TakeMatteOff(pixels);
        }
    }

    internal override void WritePixels(Rectangle area, ReadOnlySpan<int> pixels)
    {
        if (!IsFlatten)
        {
            throw new NotSupportedException(
                "The merged image shows the layers: change the pixels of a layer instead."
            );
        }
        PixelWriter.VerifySupported(ColorMode, BitsPerChannel);
        var planes = Array.ConvertAll(Picture.Decode(), plane => (byte[])plane.Clone());
        var alpha = MergedAlphaIndex;
        var colors = planes[..File.Header.ColorChannels];
        var matted = pixels.ToArray();
        if (alpha >= 0)
        {
            MergedAlpha.PutMatteOn(matted);
        }
        PixelWriter.Write(
            new PixelPlanes(
                ColorMode,
                File.Merged.Layout,
                colors,
                alpha < 0 ? null : planes[alpha],
                null
            ),
            area,
            matted
        );
        File.Merged.Replace(planes);
        (IsMergedStale, rendered) = (false, null);
    }

    private protected override void DecodePixels()
    {
        if (File.Merged.IsPresent)
        {
            File.Merged.Decode();
        }
        File.Layers.Layers.ForEach(layer => layer.CacheData());
    }

    /// <inheritdoc/>
    protected override void ReleaseManagedResources()
    {
        File.Layers.Layers.ForEach(layer => layer.Dispose());
        base.ReleaseManagedResources();
    }

    // The indexes of the pixels stay, so the document changes its colours.
    private protected override void OnPaletteChanged()
    {
        if (IndexedColors is not { } present)
        {
            return;
        }
        VerifyNotDisposed();
        if (Palette is null)
        {
            throw new PsdImageArgumentException("An indexed document needs a palette.");
        }
        if (!Palette.Argb32Entries.SequenceEqual(present))
        {
            File.ColorModeData = IndexedPalette.Pack(Palette);
            palette = null;
        }
    }

    private void ApplyOptions(LoadOptions? options)
    {
        WatchGlobalBlocks();
        var isReal = FindResource<VersionInfoResource>() is not { HasRealMergedData: false };
        IsMergedStale = !IsFlatten && !(isReal && File.Merged.IsPresent);
        if (IndexedColors is { } colors)
        {
            Palette = new PsdColorPalette(
                colors,
                FindResource<TransparencyIndexResource>()?.TransparencyIndex ?? -1
            );
        }
        if (options is null)
        {
            return;
        }
        BufferSizeHint = options.BufferSizeHint;
        ignoreAlpha = options is PsdLoadOptions { IgnoreAlphaChannel: true };
        showsStored = options is PsdLoadOptions { ReadOnlyMode: true };
        File.Layers.Layers.ForEach(layer => layer.LayerOptions = options);
    }

    private void WatchGlobalBlocks() =>
        File.Layers.Blocks.ForEach(block => block.Changed = () => File.Layers.IsChanged = true);

    private void ReplaceResource<T>(T? resource)
        where T : ResourceBlock
    {
        VerifyNotDisposed();
        var at = File.Resources.FindIndex(candidate => candidate is T);
        if (at >= 0)
        {
            File.Resources.RemoveAt(at);
        }
        if (resource is not null)
        {
            File.Resources.Insert(at < 0 ? File.Resources.Count : at, resource);
        }
    }

    // Bytes 16 to 19 of a profile name its colour space (ICC.1:2022, 7.2.6).
    private StreamSource? Profile(ReadOnlySpan<byte> space) =>
        IccProfile is { Length: >= 128 } profile && profile.AsSpan(16, 4).SequenceEqual(space)
            ? new StreamSource(new MemoryStream(profile, false))
            : null;

    private void SetProfile(StreamSource? source)
    {
        if (source is null)
        {
            ReplaceResource<IccProfileResource>(null);
            return;
        }
        if (source.Stream.CanSeek)
        {
            source.Stream.Position = 0;
        }
        ReplaceResource(new IccProfileResource(Reading.StreamBytes.ReadToEnd(source.Stream)));
    }
}
