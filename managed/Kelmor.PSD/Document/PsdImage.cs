// A layered document: construction, layers, and what is done to the whole of it.
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Layers.AdjustmentLayers;
using Kelmor.PSD.ImageFilters.FilterOptions;
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>
/// A layered document in PSD or PSB format (Adobe Photoshop File Formats Specification).
/// </summary>
/// <remarks>
/// Its own pixels are those of the stored merged image. When that does not show the layers, because
/// they were changed or the document says so itself, the layers are rendered; in a document that
/// cannot be rendered (neither RGB nor grayscale, or with adjustments, fills, effects or vector
/// masks) the stored image is shown as it is.
/// </remarks>
public partial class PsdImage : RasterCachedImage
{
    /// <summary>Loads a document from a file.</summary>
    public PsdImage(string filePath)
        : this(filePath, null) { }

    /// <summary>Loads a document from a stream, from its present position on.</summary>
    public PsdImage(Stream stream)
        : this(stream, null) { }

    /// <summary>Loads a document from a file.</summary>
    public PsdImage(string filePath, LoadOptions? loadOptions)
        : this(PsdLoading.Read(filePath, loadOptions), loadOptions) =>
        Origin = new SaveOrigin(filePath, null, 0);

    /// <summary>Loads a document from a stream, from its present position on.</summary>
    public PsdImage(Stream stream, LoadOptions? loadOptions)
        : this(PsdLoading.Read(stream, loadOptions, out var start), loadOptions)
    {
        Origin = new SaveOrigin(null, stream, start);
        DataStreamContainer = new StreamContainer(stream);
    }

    /// <summary>
    /// Makes an RGB document of 8 bits with the pixels of an image as its one layer.
    /// </summary>
    public PsdImage(RasterImage rasterImage)
        : this(
            (rasterImage ?? throw new ArgumentNullException(nameof(rasterImage))).Width,
            rasterImage.Height
        )
    {
        AddLayer(new Layer(rasterImage, false) { Name = "Layer 1" });
        SetResolution(rasterImage.HorizontalResolution, rasterImage.VerticalResolution);
    }

    /// <summary>Makes an empty RGB document of 8 bits with transparency.</summary>
    /// <param name="width">Width in pixels, 1 to 300000.</param>
    /// <param name="height">Height in pixels, 1 to 300000.</param>
    public PsdImage(int width, int height)
        : this(width, height, ColorModes.Rgb) { }

    /// <summary>Makes an empty document of 8 bits with transparency.</summary>
    /// <param name="width">Width in pixels, 1 to 300000.</param>
    /// <param name="height">Height in pixels, 1 to 300000.</param>
    /// <param name="colorMode">Rgb, Grayscale or Cmyk.</param>
    public PsdImage(int width, int height, ColorModes colorMode)
        : this(width, height, colorMode, 8, CompressionMethod.Rle) { }

    /// <summary>Makes an empty document with transparency.</summary>
    /// <param name="width">Width in pixels, 1 to 300000.</param>
    /// <param name="height">Height in pixels, 1 to 300000.</param>
    /// <param name="colorMode">Rgb, Grayscale or Cmyk.</param>
    /// <param name="channelBitsCount">Bits of a sample: 8, 16 or 32.</param>
    /// <param name="compression">How pixels are packed when the document is saved.</param>
    /// <exception cref="PsdImageException">The format has no such document.</exception>
    public PsdImage(
        int width,
        int height,
        ColorModes colorMode,
        short channelBitsCount,
        CompressionMethod compression
    )
        : this(PsdCreation.Create(width, height, colorMode, channelBitsCount, compression), null)
    {
        IsNew = true;
        IsMergedStale = true;
    }

    /// <summary>Makes an empty document of the kind that options name.</summary>
    internal static PsdImage Create(PsdOptions options, int width, int height) =>
        new(
            PsdCreation.Create(
                width,
                height,
                options.ColorMode,
                options.ChannelBitsCount,
                options.CompressionMethod,
                options.WantedChannels
            ),
            null
        )
        {
            IsNew = true,
            IsMergedStale = true,
        };

    private PsdImage(PsdFile file, LoadOptions? loadOptions)
    {
        File = file;
        Tree = new LayerTree(this);
        Tree.Link();
        ApplyOptions(loadOptions);
    }

    /// <inheritdoc/>
    public override void Rotate(float angle, bool resizeProportionally, Color backgroundColor) =>
        throw NotYet.Member();

    /// <inheritdoc/>
    public override void Crop(Rectangle rectangle) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void ResizeHeightProportionally(int newHeight, ResizeType resizeType) =>
        throw NotYet.Member();

    /// <inheritdoc/>
    public override void ResizeWidthProportionally(int newWidth, ResizeType resizeType) =>
        throw NotYet.Member();

    /// <inheritdoc/>
    public override void Dither(
        DitheringMethod ditheringMethod,
        int bitsCount,
        IColorPalette? customPalette
    ) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void BinarizeBradley(double brightnessDifference, int windowSize) =>
        throw NotYet.Member();

    /// <inheritdoc/>
    public override void AdjustGamma(float gammaRed, float gammaGreen, float gammaBlue) =>
        throw NotYet.Member();

    /// <summary>
    /// Replaces a colour and those near to it in all layers; colours as 0xAARRGGBB.
    /// </summary>
    public override void ReplaceColor(int oldColorArgb, byte oldColorDiff, int newColorArgb) =>
        ForPixelLayers(layer => layer.ReplaceColor(oldColorArgb, oldColorDiff, newColorArgb));

    /// <summary>
    /// Gives the pixels of all layers that are not wholly transparent one colour, 0xAARRGGBB.
    /// </summary>
    public override void ReplaceNonTransparentColors(int newColorArgb) =>
        ForPixelLayers(layer => layer.ReplaceNonTransparentColors(newColorArgb));

    /// <summary>
    /// Puts a layer on top of all others; it must belong to no document yet. The picture of a
    /// document that has no layers becomes the layer "Background" below it.
    /// </summary>
    /// <exception cref="PsdImageArgumentException">The layer belongs to a document; add a copy of
    /// it.</exception>
    public void AddLayer(Layer layer) => Tree.Insert(null, layer, Roots.Count);

    /// <summary>Joins two layers into one.</summary>
    public Layer MergeLayers(Layer bottomLayer, Layer topLayer) => throw NotYet.Member();

    /// <summary>Joins all layers into one picture.</summary>
    public void FlattenImage() => throw NotYet.Member();

    /// <summary>Puts a new transparent layer of the document's size on top of all others.</summary>
    public Layer AddRegularLayer()
    {
        VerifyNotDisposed();
        var layer = new Layer { Name = FreeName("Layer") };
        layer.AdaptTo(File.Header);
        layer.Reset(Bounds);
        AddLayer(layer);
        return layer;
    }

    /// <summary>Puts a new text layer on top of all others.</summary>
    public TextLayer AddTextLayer(string text, Rectangle rect) => throw NotYet.Member();

    /// <summary>Puts a new shape layer on top of all others.</summary>
    public ShapeLayer AddShapeLayer() => throw NotYet.Member();

    /// <summary>Puts a new layer that adjusts curves on top of all others.</summary>
    public CurvesLayer AddCurvesAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new layer that adjusts the exposure on top of all others.</summary>
    public ExposureLayer AddExposureAdjustmentLayer(
        float exposure,
        float offset,
        float gammaCorrection
    ) => throw NotYet.Member();

    /// <summary>Puts a new layer that adjusts hue and saturation on top of all others.</summary>
    public HueSaturationLayer AddHueSaturationAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new layer that adjusts the vibrance on top of all others.</summary>
    public VibranceLayer AddVibranceAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new layer that adjusts the colour balance on top of all others.</summary>
    public ColorBalanceAdjustmentLayer AddColorBalanceAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new layer that adjusts levels on top of all others.</summary>
    public LevelsLayer AddLevelsAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new photo filter on top of all others.</summary>
    public PhotoFilterLayer AddPhotoFilterLayer(Color color) => throw NotYet.Member();

    /// <summary>Puts a new channel mixer on top of all others.</summary>
    public ChannelMixerLayer AddChannelMixerAdjustmentLayer() => throw NotYet.Member();

    /// <summary>
    /// Puts a new layer that adjusts brightness and contrast on top of all others.
    /// </summary>
    public BrightnessContrastLayer AddBrightnessContrastAdjustmentLayer(
        int brightness,
        int contrast
    ) => throw NotYet.Member();

    /// <summary>Puts a new layer that inverts on top of all others.</summary>
    public InvertAdjustmentLayer AddInvertAdjustmentLayer() =>
        (InvertAdjustmentLayer)AddAdjustment("nvrt", []);

    /// <summary>Puts a new layer that makes black and white on top of all others.</summary>
    public BlackWhiteAdjustmentLayer AddBlackWhiteAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new layer that adjusts selected colours on top of all others.</summary>
    public SelectiveColorLayer AddSelectiveColorAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new layer with a threshold of 128 on top of all others.</summary>
    public ThresholdLayer AddThresholdAdjustmentLayer() =>
        (ThresholdLayer)AddAdjustment("thrs", [0, 128, 0, 0]);

    /// <summary>
    /// Puts a new layer that reduces each channel to 4 levels on top of all others.
    /// </summary>
    public PosterizeLayer AddPosterizeAdjustmentLayer() =>
        (PosterizeLayer)AddAdjustment("post", [0, 4, 0, 0]);

    /// <summary>Puts a new gradient map on top of all others.</summary>
    public GradientMapLayer AddGradientMapAdjustmentLayer() => throw NotYet.Member();

    /// <summary>Puts a new empty group among the layers.</summary>
    /// <param name="groupName">Name.</param>
    /// <param name="index">Place among the layers and groups of the lowest level, 0 lowest.</param>
    /// <param name="startBehaviour">True: the group is shown unfolded.</param>
    public LayerGroup AddLayerGroup(string groupName, int index, bool startBehaviour) =>
        Tree.InsertGroup(null, groupName, index, startBehaviour);

    /// <summary>Converts the document to another kind.</summary>
    public void Convert(PsdOptions newOptions) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void BinarizeOtsu() => throw NotYet.Member();

    /// <inheritdoc/>
    public override void AdjustBrightness(int brightness) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void AdjustContrast(float contrast) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void BinarizeFixed(byte threshold) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void Grayscale() => throw NotYet.Member();

    /// <inheritdoc/>
    public override void Filter(Rectangle rectangle, FilterOptionsBase options) =>
        throw NotYet.Member();

    /// <summary>Sets the resolution in pixels per inch; the pixels stay.</summary>
    public override void SetResolution(double dpiX, double dpiY)
    {
        HorizontalResolution = dpiX;
        VerticalResolution = dpiY;
    }

    private Layer AddAdjustment(string key, byte[] data)
    {
        VerifyNotDisposed();
        var record = new LayerRecord { IsChanged = true };
        record.Flags |= (byte)LayerFlags.PixelDataIrrelevantToAppearenceInDocument;
        var code = TaggedBlocks.Code(key);
        record.Blocks.Add(LayerResourceKinds.Create(TaggedBlocks.Signature, code, data, default));
        LayerPixels.AddEmptyChannels(record, File.Header);
        var layer = LayerKinds.Create(record, File.Header);
        layer.Name = FreeName(
            layer
                .GetType()
                .Name.Replace("AdjustmentLayer", "", StringComparison.Ordinal)
                .Replace("Layer", "", StringComparison.Ordinal)
        );
        AddLayer(layer);
        return layer;
    }

    private string FreeName(string stem)
    {
        var taken = File.Layers.Layers.Select(layer => layer.Name).ToHashSet();
        var number = 1;
        while (taken.Contains($"{stem} {number}"))
        {
            number++;
        }
        return $"{stem} {number}";
    }

    private void ForPixelLayers(Action<Layer> change)
    {
        VerifyNotDisposed();
        foreach (
            var layer in File.Layers.Layers.Where(layer =>
                layer is not (LayerGroup or SectionDividerLayer)
            )
        )
        {
            change(layer);
        }
    }
}
