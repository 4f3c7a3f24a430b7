// What all images share: size, palette, loading and saving.
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.MultiThreading;

namespace Kelmor.PSD;

/// <summary>An image in any format.</summary>
public abstract class Image : DataStreamSupporter
{
    private IColorPalette? palette;
    private Color backgroundColor;

    /// <summary>True when a file holds an image that can be loaded with these options.</summary>
    public static bool CanLoad(string filePath, LoadOptions? loadOptions) =>
        ImageLoading.CanLoad(filePath);

    /// <summary>
    /// True when a file holds an image that can be loaded; a file that is not there gives false.
    /// </summary>
    public static bool CanLoad(string filePath) => ImageLoading.CanLoad(filePath);

    /// <summary>True when a stream holds an image that can be loaded with these options.</summary>
    public static bool CanLoad(Stream stream, LoadOptions? loadOptions) =>
        ImageLoading.CanLoad(stream);

    /// <summary>
    /// True when a stream holds an image that can be loaded; its position stays where it was.
    /// </summary>
    public static bool CanLoad(Stream stream) => ImageLoading.CanLoad(stream);

    /// <summary>
    /// Format of a file, by its first bytes; Undefined for one that is not known.
    /// </summary>
    public static FileFormat GetFileFormat(string filePath) => ImageLoading.FormatOf(filePath);

    /// <summary>Format of a stream, by its next bytes; its position stays where it was.</summary>
    public static FileFormat GetFileFormat(Stream stream) => ImageLoading.FormatOf(stream);

    /// <summary>The part of a rectangle that lies inside of an image of this size.</summary>
    /// <exception cref="ArgumentOutOfRangeException">Nothing of it lies inside.</exception>
    public static Rectangle GetFittingRectangle(Rectangle rectangle, int width, int height)
    {
        var inside = Rectangle.Intersect(rectangle, new Rectangle(0, 0, width, height));
        return inside.Width > 0 && inside.Height > 0
            ? inside
            : throw new ArgumentOutOfRangeException(
                nameof(rectangle),
                $"The rectangle {rectangle} lies outside of an image of {width} x {height} pixels."
            );
    }

    /// <summary>The same, where pixels are given for the whole of the rectangle.</summary>
    /// <param name="rectangle">The rectangle.</param>
    /// <param name="pixels">As many numbers as the rectangle has pixels.</param>
    /// <param name="width">Width of the image in pixels.</param>
    /// <param name="height">Height of the image in pixels.</param>
    /// <exception cref="ArgumentException">There are fewer pixels than the rectangle
    /// has.</exception>
    public static Rectangle GetFittingRectangle(
        Rectangle rectangle,
        int[] pixels,
        int width,
        int height
    )
    {
        ArgumentNullException.ThrowIfNull(pixels);
        PixelAreas.VerifyCount(rectangle, pixels.Length);
        return GetFittingRectangle(rectangle, width, height);
    }

    /// <summary>Loads an image from a file.</summary>
    /// <param name="filePath">Path of the file.</param>
    /// <param name="loadOptions">Options, or null for the defaults.</param>
    /// <exception cref="FileNotFoundException">There is no such file.</exception>
    /// <exception cref="ImageLoadException">The format is not known.</exception>
    /// <exception cref="CoreExceptions.ImageFormats.PsdImageException">The document is
    /// damaged.</exception>
    public static Image Load(string filePath, LoadOptions? loadOptions) =>
        ImageLoading.Load(filePath, loadOptions);

    /// <summary>Loads an image from a file.</summary>
    public static Image Load(string filePath) => ImageLoading.Load(filePath, null);

    /// <summary>Loads an image from a stream.</summary>
    /// <param name="stream">Read from its present position to its end; it may be closed
    /// afterwards.</param>
    /// <param name="loadOptions">Options, or null for the defaults.</param>
    /// <exception cref="ImageLoadException">The format is not known.</exception>
    /// <exception cref="CoreExceptions.ImageFormats.PsdImageException">The document is
    /// damaged.</exception>
    public static Image Load(Stream stream, LoadOptions? loadOptions) =>
        ImageLoading.Load(stream, loadOptions);

    /// <summary>Loads an image from a stream, from its present position on.</summary>
    public static Image Load(Stream stream) => ImageLoading.Load(stream, null);

    /// <summary>Makes a new image in the format of the options.</summary>
    /// <param name="imageOptions">Options that choose the format.</param>
    /// <param name="width">Width in pixels.</param>
    /// <param name="height">Height in pixels.</param>
    /// <exception cref="ImageCreateException">Images cannot be made in that format.</exception>
    public static Image Create(ImageOptionsBase imageOptions, int width, int height) =>
        ImageLoading.Create(imageOptions, width, height);

    /// <summary>Changes the size, by the nearest pixel.</summary>
    public void Resize(int newWidth, int newHeight) =>
        Resize(newWidth, newHeight, ResizeType.NearestNeighbourResample);

    /// <summary>Changes the size.</summary>
    public virtual void Resize(int newWidth, int newHeight, ResizeType resizeType) =>
        throw NotYet.Member();

    /// <summary>Changes the size.</summary>
    public virtual void Resize(int newWidth, int newHeight, ImageResizeSettings settings) =>
        throw NotYet.Member();

    /// <summary>Changes the width, and the height in proportion.</summary>
    public void ResizeWidthProportionally(int newWidth) =>
        ResizeWidthProportionally(newWidth, ResizeType.NearestNeighbourResample);

    /// <summary>Changes the width, and the height in proportion.</summary>
    public virtual void ResizeWidthProportionally(int newWidth, ResizeType resizeType) =>
        Resize(newWidth, GetProportionalHeight(Width, Height, newWidth), resizeType);

    /// <summary>Changes the width, and the height in proportion.</summary>
    public virtual void ResizeWidthProportionally(int newWidth, ImageResizeSettings settings) =>
        Resize(newWidth, GetProportionalHeight(Width, Height, newWidth), settings);

    /// <summary>Changes the height, and the width in proportion.</summary>
    public void ResizeHeightProportionally(int newHeight) =>
        ResizeHeightProportionally(newHeight, ResizeType.NearestNeighbourResample);

    /// <summary>Changes the height, and the width in proportion.</summary>
    public virtual void ResizeHeightProportionally(int newHeight, ResizeType resizeType) =>
        Resize(GetProportionalWidth(Width, Height, newHeight), newHeight, resizeType);

    /// <summary>Changes the height, and the width in proportion.</summary>
    public virtual void ResizeHeightProportionally(int newHeight, ImageResizeSettings settings) =>
        Resize(GetProportionalWidth(Width, Height, newHeight), newHeight, settings);

    /// <summary>Writes the image back to the file or stream that it was loaded from.</summary>
    /// <exception cref="ImageSaveException">The image was made in memory, or its stream cannot be
    /// written.</exception>
    public void Save() => ImageSaving.SaveToOrigin(this);

    /// <summary>Writes the image to a file in the format of the options.</summary>
    /// <param name="filePath">Path of the file, which is replaced.</param>
    /// <param name="options">Options; null keeps the image's own format.</param>
    public void Save(string filePath, ImageOptionsBase? options) =>
        Save(filePath, options, Rectangle.Empty);

    /// <summary>Writes a part of the image to a file in the format of the options.</summary>
    /// <param name="filePath">Path of the file, which is replaced.</param>
    /// <param name="options">Options; null keeps the image's own format.</param>
    /// <param name="boundsRectangle">The part, in pixels; Empty for the whole image.</param>
    public virtual void Save(string filePath, ImageOptionsBase? options, Rectangle boundsRectangle)
    {
        ArgumentException.ThrowIfNullOrEmpty(filePath);
        VerifyNotDisposed();
        FileWriting.Write(
            filePath,
            true,
            stream => ImageSaving.Save(this, stream, options, boundsRectangle)
        );
    }

    /// <summary>Writes the image to a stream in the format of the options.</summary>
    /// <param name="stream">Written from its present position on; it need not be seekable.</param>
    /// <param name="optionsBase">Options; null keeps the image's own format.</param>
    public void Save(Stream stream, ImageOptionsBase? optionsBase) =>
        Save(stream, optionsBase, Rectangle.Empty);

    /// <summary>Writes a part of the image to a stream in the format of the options.</summary>
    /// <param name="stream">Written from its present position on; it need not be seekable.</param>
    /// <param name="optionsBase">Options; null keeps the image's own format.</param>
    /// <param name="boundsRectangle">The part, in pixels; Empty for the whole image.</param>
    public virtual void Save(
        Stream stream,
        ImageOptionsBase? optionsBase,
        Rectangle boundsRectangle
    )
    {
        ArgumentNullException.ThrowIfNull(stream);
        VerifyNotDisposed();
        ImageSaving.Save(this, stream, optionsBase, boundsRectangle);
    }

    /// <summary>True when the image can be saved with these options.</summary>
    public bool CanSave(ImageOptionsBase options) => ImageSaving.CanSave(this, options);

    /// <summary>Options of the image's own format with the defaults.</summary>
    /// <param name="args">Not used; may be null.</param>
    public virtual ImageOptionsBase GetDefaultOptions(object[]? args) => throw NotYet.Member();

    /// <summary>Options that write the image as it is.</summary>
    public virtual ImageOptionsBase GetOriginalOptions() => throw NotYet.Member();

    /// <summary>Rotates by a multiple of 90 degrees, then flips.</summary>
    public virtual void RotateFlip(RotateFlipType rotateFlipType) => throw NotYet.Member();

    /// <summary>Gives the image another palette.</summary>
    /// <param name="palette">The palette.</param>
    /// <param name="updateColors">True: pixels choose the nearest new entry; false: they keep their
    /// index.</param>
    public virtual void SetPalette(IColorPalette? palette, bool updateColors) =>
        throw NotYet.Member();

    /// <summary>
    /// Width that keeps the proportions at another height, in pixels, at least 1.
    /// </summary>
    public static int GetProportionalWidth(int width, int height, int newHeight) =>
        Proportional(width, height, newHeight);

    /// <summary>
    /// Height that keeps the proportions at another width, in pixels, at least 1.
    /// </summary>
    public static int GetProportionalHeight(int width, int height, int newWidth) =>
        Proportional(height, width, newWidth);

    /// <summary>Bits of a pixel, all channels together.</summary>
    public abstract int BitsPerPixel { get; }

    /// <summary>The area of the image's own pixels: its origin is 0, 0.</summary>
    public Rectangle Bounds => new(0, 0, Width, Height);

    /// <summary>The image that this one is a part of, or null.</summary>
    public Image? Container { get; internal set; }

    /// <summary>Height in pixels.</summary>
    public abstract int Height { get; }

    /// <summary>The palette, or null when pixels are colours themselves.</summary>
    public IColorPalette? Palette
    {
        get => palette;
        set
        {
            palette = value;
            UsePalette = value is not null;
            OnPaletteChanged();
        }
    }

    /// <summary>True when pixels choose from the palette.</summary>
    public bool UsePalette { get; private set; }

    /// <summary>Width and height in pixels.</summary>
    public Size Size => new(Width, Height);

    /// <summary>Width in pixels.</summary>
    public abstract int Width { get; }

    /// <summary>What stops long operations on this image.</summary>
    public InterruptMonitor? InterruptMonitor { get; set; }

    /// <summary>Largest size of internal buffers in megabytes; 0 for no limit.</summary>
    public int BufferSizeHint { get; set; }

    /// <summary>True: the palette follows changes of the pixels.</summary>
    public bool AutoAdjustPalette { get; set; }

    /// <summary>True when a background colour was set.</summary>
    public bool HasBackgroundColor { get; set; }

    /// <summary>The image's own format.</summary>
    public virtual FileFormat FileFormat => FileFormat.Undefined;

    /// <summary>Colour for what no pixel covers.</summary>
    public Color BackgroundColor
    {
        get => backgroundColor;
        set
        {
            backgroundColor = value;
            HasBackgroundColor = true;
        }
    }

    /// <summary>Takes the new palette over into what is saved.</summary>
    private protected virtual void OnPaletteChanged() { }

    /// <summary>Stops with an exception when somebody asked for it.</summary>
    internal void VerifyNotInterrupted()
    {
        if ((InterruptMonitor ?? InterruptMonitor.ThreadLocalInstance) is { IsInterrupted: true })
        {
            throw new OperationInterruptedException("The operation was interrupted.");
        }
    }

    private static int Proportional(int wanted, int given, int newGiven)
    {
        ArgumentOutOfRangeException.ThrowIfNegativeOrZero(given);
        return (int)Math.Clamp(Math.Round((double)wanted * newGiven / given), 1, int.MaxValue);
    }
}
