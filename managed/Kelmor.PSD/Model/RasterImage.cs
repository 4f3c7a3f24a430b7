// Images that consist of pixels: reading and writing of pixels, and the properties of the whole.
using Kelmor.PSD.ImageFilters.FilterOptions;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD;

/// <summary>An image that consists of pixels.</summary>
public abstract partial class RasterImage : Image
{
    private Color transparentColor;

    /// <summary>Writes a part of the image to a stream in the format of the options.</summary>
    /// <param name="stream">Written from its present position on; it need not be seekable.</param>
    /// <param name="optionsBase">Options; null keeps the image's own format.</param>
    /// <param name="boundsRectangle">The part, in pixels; Empty for the whole image.</param>
    public override void Save(
        Stream stream,
        ImageOptionsBase? optionsBase,
        Rectangle boundsRectangle
    )
    {
        VerifyNotInterrupted();
        base.Save(stream, optionsBase, boundsRectangle);
    }

    /// <summary>Reduces the number of colours.</summary>
    /// <param name="ditheringMethod">How missing colours are imitated.</param>
    /// <param name="bitsCount">Bits of a pixel afterwards, 1 to 8.</param>
    public void Dither(DitheringMethod ditheringMethod, int bitsCount) =>
        Dither(ditheringMethod, bitsCount, null);

    /// <summary>Reduces the number of colours to those of a palette.</summary>
    public virtual void Dither(
        DitheringMethod ditheringMethod,
        int bitsCount,
        IColorPalette? customPalette
    ) => throw NotYet.Member();

    /// <summary>Pixels in the layout of the settings, handed over block by block.</summary>
    public void GetDefaultRawData(
        Rectangle rectangle,
        IPartialRawDataLoader partialRawDataLoader,
        RawDataSettings rawDataSettings
    ) => throw NotYet.Member();

    /// <summary>Pixels in the layout of the settings.</summary>
    public byte[] GetDefaultRawData(Rectangle rectangle, RawDataSettings rawDataSettings) =>
        throw NotYet.Member();

    /// <summary>Stored data of a rectangle, handed over block by block.</summary>
    public void LoadRawData(
        Rectangle rectangle,
        RawDataSettings rawDataSettings,
        IPartialRawDataLoader rawDataLoader
    ) => throw NotYet.Member();

    /// <summary>Changes the size.</summary>
    public override void Resize(int newWidth, int newHeight, ImageResizeSettings settings)
    {
        ArgumentNullException.ThrowIfNull(settings);
        Resize(newWidth, newHeight, settings.Mode);
    }

    /// <summary>Cuts the image down to a rectangle.</summary>
    public virtual void Crop(Rectangle rectangle) => throw NotYet.Member();

    /// <summary>Cuts the image down by a number of pixels on each side.</summary>
    public virtual void Crop(int leftShift, int rightShift, int topShift, int bottomShift) =>
        Crop(
            Rectangle.FromLeftTopRightBottom(
                leftShift,
                topShift,
                Width - rightShift,
                Height - bottomShift
            )
        );

    /// <summary>
    /// Makes pixels black or white by the mean of their neighbourhood (Bradley and Roth, 2007).
    /// </summary>
    public virtual void BinarizeBradley(double brightnessDifference, int windowSize) =>
        throw NotYet.Member();

    /// <summary>Makes pixels black or white by the mean of their neighbourhood.</summary>
    public virtual void BinarizeBradley(double brightnessDifference) => throw NotYet.Member();

    /// <summary>Corrects the three channels with one exponent.</summary>
    public virtual void AdjustGamma(float gamma) => AdjustGamma(gamma, gamma, gamma);

    /// <summary>Corrects each channel with its own exponent.</summary>
    public virtual void AdjustGamma(float gammaRed, float gammaGreen, float gammaBlue) =>
        throw NotYet.Member();

    /// <summary>Rotates about the centre, clockwise in degrees.</summary>
    public virtual void Rotate(float angle) => Rotate(angle, true, BackgroundColor);

    /// <summary>Rotates about the centre, clockwise in degrees.</summary>
    /// <param name="angle">Degrees.</param>
    /// <param name="resizeProportionally">True: the image grows so that no corner is lost.</param>
    /// <param name="backgroundColor">Colour of what becomes free.</param>
    public virtual void Rotate(float angle, bool resizeProportionally, Color backgroundColor) =>
        throw NotYet.Member();

    /// <summary>Rotates so that lines of text become level.</summary>
    public void NormalizeAngle() => NormalizeAngle(true, Color.LightGray);

    /// <summary>Rotates so that lines of text become level.</summary>
    public virtual void NormalizeAngle(bool resizeProportionally, Color backgroundColor) =>
        throw NotYet.Member();

    /// <summary>Replaces a colour and those near to it.</summary>
    /// <param name="oldColor">Colour to replace.</param>
    /// <param name="oldColorDiff">Largest difference in each channel.</param>
    /// <param name="newColor">Colour in its place.</param>
    public virtual void ReplaceColor(Color oldColor, byte oldColorDiff, Color newColor) =>
        ReplaceColor(oldColor.ToArgb(), oldColorDiff, newColor.ToArgb());

    /// <summary>Replaces a colour and those near to it; colours as 0xAARRGGBB.</summary>
    public virtual void ReplaceColor(int oldColorArgb, byte oldColorDiff, int newColorArgb) =>
        PixelEdits.ReplaceColor(this, oldColorArgb, oldColorDiff, newColorArgb);

    /// <summary>
    /// Gives all pixels that are not wholly transparent one colour; their alpha stays.
    /// </summary>
    public virtual void ReplaceNonTransparentColors(Color newColor) =>
        ReplaceNonTransparentColors(newColor.ToArgb());

    /// <summary>
    /// Gives all pixels that are not wholly transparent one colour, 0xAARRGGBB; their alpha stays.
    /// </summary>
    public virtual void ReplaceNonTransparentColors(int newColorArgb) =>
        PixelEdits.ReplaceNonTransparentColors(this, newColorArgb);

    /// <summary>Date of the last change.</summary>
    /// <param name="useDefault">True: the date that the file system gives.</param>
    public virtual DateTime GetModifyDate(bool useDefault) => throw NotYet.Member();

    /// <summary>Pixels without any conversion, handed over block by block.</summary>
    public void GetDefaultPixels(Rectangle rectangle, IPartialPixelLoader partialPixelLoader) =>
        LoadPartialPixels(rectangle, partialPixelLoader);

    /// <summary>Pixels without any conversion, row by row, 0xAARRGGBB each.</summary>
    public int[] GetDefaultArgb32Pixels(Rectangle rectangle) => LoadArgb32Pixels(rectangle);

    /// <summary>One pixel as 0xAARRGGBB.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The position lies outside of the
    /// image.</exception>
    public int GetArgb32Pixel(int x, int y) => LoadArgb32Pixels(new Rectangle(x, y, 1, 1))[0];

    /// <summary>One pixel.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The position lies outside of the
    /// image.</exception>
    public Color GetPixel(int x, int y) => Color.FromArgb(GetArgb32Pixel(x, y));

    /// <summary>Changes one pixel, 0xAARRGGBB.</summary>
    public void SetArgb32Pixel(int x, int y, int argb32Color) =>
        SaveArgb32Pixels(new Rectangle(x, y, 1, 1), [argb32Color]);

    /// <summary>Changes one pixel.</summary>
    public void SetPixel(int x, int y, Color color) => SetArgb32Pixel(x, y, color.ToArgb());

    /// <summary>One row of pixels, counted from the top.</summary>
    public Color[] ReadScanLine(int scanLineIndex) =>
        LoadPixels(new Rectangle(0, scanLineIndex, Width, 1));

    /// <summary>One row of pixels, 0xAARRGGBB each.</summary>
    public int[] ReadArgb32ScanLine(int scanLineIndex) =>
        LoadArgb32Pixels(new Rectangle(0, scanLineIndex, Width, 1));

    /// <summary>Changes one row of pixels.</summary>
    public void WriteScanLine(int scanLineIndex, Color[] pixels) =>
        SavePixels(new Rectangle(0, scanLineIndex, Width, 1), pixels);

    /// <summary>Changes one row of pixels, 0xAARRGGBB each.</summary>
    public void WriteArgb32ScanLine(int scanLineIndex, int[] argb32Pixels) =>
        SaveArgb32Pixels(new Rectangle(0, scanLineIndex, Width, 1), argb32Pixels);

    /// <summary>Pixels handed over block by block, 0xAARRGGBB each.</summary>
    public void LoadPartialArgb32Pixels(
        Rectangle rectangle,
        IPartialArgb32PixelLoader partialPixelLoader
    )
    {
        ArgumentNullException.ThrowIfNull(partialPixelLoader);
        foreach (var band in Bands(rectangle))
        {
            partialPixelLoader.Process(
                band,
                LoadArgb32Pixels(band),
                band.Location,
                new Point(band.Right, band.Bottom)
            );
        }
    }

    /// <summary>Colours handed over block by block.</summary>
    public void LoadPartialPixels(Rectangle desiredRectangle, IPartialPixelLoader pixelLoader)
    {
        ArgumentNullException.ThrowIfNull(pixelLoader);
        foreach (var band in Bands(desiredRectangle))
        {
            pixelLoader.Process(
                band,
                LoadPixels(band),
                band.Location,
                new Point(band.Right, band.Bottom)
            );
        }
    }

    /// <summary>Pixels of a rectangle, row by row, 0xAARRGGBB each, not premultiplied.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The rectangle does not lie inside of the
    /// image.</exception>
    public int[] LoadArgb32Pixels(Rectangle rectangle)
    {
        VerifyNotDisposed();
        PixelAreas.VerifyInside(rectangle, Width, Height);
        PreparePixels();
        var pixels = new int[PixelAreas.Count(rectangle)];
        ReadPixels(rectangle, pixels);
        if (PremultiplyComponents)
        {
            PixelEdits.Premultiply(pixels);
        }
        return pixels;
    }

    /// <summary>Pixels of a rectangle, row by row, 0xAAAARRRRGGGGBBBB each.</summary>
    public long[] LoadArgb64Pixels(Rectangle rectangle) =>
        Array.ConvertAll(LoadArgb32Pixels(rectangle), PixelEdits.Widen);

    /// <summary>Colours of a rectangle, row by row.</summary>
    public Color[] LoadPixels(Rectangle rectangle) =>
        Array.ConvertAll(LoadArgb32Pixels(rectangle), Color.FromArgb);

    /// <summary>Ink amounts of a rectangle, row by row, without a colour profile.</summary>
    public CmykColor[] LoadCmykPixels(Rectangle rectangle) =>
        Array.ConvertAll(LoadArgb32Pixels(rectangle), argb => Color.FromArgb(argb).ToCmyk());

    /// <summary>Ink amounts of a rectangle, row by row, 0xCCMMYYKK each.</summary>
    public int[] LoadCmyk32Pixels(Rectangle rectangle) =>
        Array.ConvertAll(
            LoadArgb32Pixels(rectangle),
            argb => Color.FromArgb(argb).ToCmyk().ToCmyk32()
        );

    /// <summary>Writes data in the layout of the settings into a rectangle.</summary>
    public void SaveRawData(
        byte[] data,
        int dataOffset,
        Rectangle rectangle,
        RawDataSettings rawDataSettings
    ) => throw NotYet.Member();

    /// <summary>Changes the pixels of a rectangle, row by row, 0xAARRGGBB each.</summary>
    /// <exception cref="ArgumentException">There are fewer pixels than the rectangle
    /// has.</exception>
    /// <exception cref="ArgumentOutOfRangeException">The rectangle does not lie inside of the
    /// image.</exception>
    public void SaveArgb32Pixels(Rectangle rectangle, int[] pixels)
    {
        ArgumentNullException.ThrowIfNull(pixels);
        VerifyNotDisposed();
        PixelAreas.VerifyInside(rectangle, Width, Height);
        PixelAreas.VerifyCount(rectangle, pixels.Length);
        WritePixels(rectangle, pixels);
    }

    /// <summary>Changes the colours of a rectangle, row by row.</summary>
    public void SavePixels(Rectangle rectangle, Color[] pixels)
    {
        ArgumentNullException.ThrowIfNull(pixels);
        SaveArgb32Pixels(rectangle, Array.ConvertAll(pixels, color => color.ToArgb()));
    }

    /// <summary>A copy of all pixels as a bitmap of the drawing types.</summary>
    public Kelmor.GfxTypes.Bitmap ToBitmap()
    {
        var bitmap = new Kelmor.GfxTypes.Bitmap(Width, Height);
        bitmap.SetArgb32Pixels(LoadArgb32Pixels(Bounds));
        bitmap.SetResolution((float)HorizontalResolution, (float)VerticalResolution);
        return bitmap;
    }

    /// <summary>Changes the colours of a rectangle, given as ink amounts.</summary>
    public void SaveCmykPixels(Rectangle rectangle, CmykColor[] pixels)
    {
        ArgumentNullException.ThrowIfNull(pixels);
        SaveArgb32Pixels(rectangle, Array.ConvertAll(pixels, color => color.ToColor().ToArgb()));
    }

    /// <summary>
    /// Changes the colours of a rectangle, given as ink amounts, 0xCCMMYYKK each.
    /// </summary>
    public void SaveCmyk32Pixels(Rectangle rectangle, int[] pixels)
    {
        ArgumentNullException.ThrowIfNull(pixels);
        SaveCmykPixels(rectangle, Array.ConvertAll(pixels, CmykColor.FromCmyk32));
    }

    /// <summary>Sets the resolution in pixels per inch; the pixels stay.</summary>
    public virtual void SetResolution(double dpiX, double dpiY)
    {
        HorizontalResolution = dpiX;
        VerticalResolution = dpiY;
    }

    /// <summary>Gives the image another palette.</summary>
    public override void SetPalette(IColorPalette? palette, bool updateColors) =>
        throw NotYet.Member();

    /// <summary>Makes pixels white when they are brighter than a threshold, else black.</summary>
    public virtual void BinarizeFixed(byte threshold) => throw NotYet.Member();

    /// <summary>
    /// Makes pixels black or white by the threshold that parts them best (Otsu, 1979).
    /// </summary>
    public virtual void BinarizeOtsu() => throw NotYet.Member();

    /// <summary>Takes the colour out of all pixels.</summary>
    public virtual void Grayscale() => throw NotYet.Member();

    /// <summary>Adds to all three channels, -255 to 255.</summary>
    public virtual void AdjustBrightness(int brightness) => throw NotYet.Member();

    /// <summary>Spreads or narrows the channels about their middle, -100 to 100.</summary>
    public virtual void AdjustContrast(float contrast) => throw NotYet.Member();

    /// <summary>Angle by which lines of text slope, in degrees.</summary>
    public float GetSkewAngle() => throw NotYet.Member();

    /// <summary>Runs a filter over a rectangle.</summary>
    public virtual void Filter(Rectangle rectangle, FilterOptionsBase options) =>
        throw NotYet.Member();

    /// <summary>True: loaded pixels are multiplied by their alpha.</summary>
    public bool PremultiplyComponents { get; set; }

    /// <summary>True: stored data are used where possible instead of converted pixels.</summary>
    public bool UseRawData { get; set; } = true;

    /// <summary>True: metadata are brought up to date when the image is saved.</summary>
    public bool UpdateXmpData { get; set; }

    /// <summary>Metadata of the image, or null.</summary>
    public virtual XmpPacketWrapper? XmpData { get; set; }

    /// <summary>Converter of stored indexes.</summary>
    public IIndexedColorConverter? RawIndexedColorConverter { get; set; }

    /// <summary>Converter of stored values.</summary>
    public IColorConverter? RawCustomColorConverter { get; set; }

    /// <summary>Palette entry for colours that the palette lacks.</summary>
    public int RawFallbackIndex { get; set; }

    /// <summary>Layout of the stored data.</summary>
    public RawDataSettings RawDataSettings =>
        new()
        {
            PixelDataFormat = RawDataFormat,
            LineSize = RawLineSize,
            ColorPalette = Palette,
        };

    /// <summary>Order and width of the stored samples.</summary>
    public virtual PixelDataFormat RawDataFormat => PixelDataFormat.Bgra32Bpp;

    /// <summary>Bytes of a stored row, all channels together.</summary>
    public int RawLineSize => checked((int)(((long)Width * BitsPerPixel + 7) / 8));

    /// <summary>True when stored data can be loaded as they are.</summary>
    public bool IsRawDataAvailable => false;

    /// <summary>Pixels per inch across.</summary>
    public virtual double HorizontalResolution { get; set; } = 72;

    /// <summary>Pixels per inch downwards.</summary>
    public virtual double VerticalResolution { get; set; } = 72;

    /// <summary>True when one colour stands for transparent.</summary>
    public bool HasTransparentColor { get; set; }

    /// <summary>True when pixels can be transparent.</summary>
    public virtual bool HasAlpha => false;

    /// <summary>The colour that stands for transparent.</summary>
    public Color TransparentColor
    {
        get => transparentColor;
        set
        {
            transparentColor = value;
            HasTransparentColor = true;
        }
    }

    /// <summary>Opacity of the image as a whole, 0 to 1.</summary>
    public float ImageOpacity => ImageOpacityCore;
}
