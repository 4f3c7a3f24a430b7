// Pixel images that keep their decoded pixels.
namespace Kelmor.PSD;

/// <summary>
/// A pixel image that keeps its decoded pixels, so that work on all of them is fast.
/// </summary>
public abstract class RasterCachedImage : RasterImage
{
    /// <inheritdoc/>
    public override void Resize(int newWidth, int newHeight, ResizeType resizeType) =>
        throw NotYet.Member();

    /// <inheritdoc/>
    public override void Rotate(float angle, bool resizeProportionally, Color backgroundColor) =>
        throw NotYet.Member();

    /// <inheritdoc/>
    public override void Crop(Rectangle rectangle) => throw NotYet.Member();

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
    public override void BinarizeBradley(double brightnessDifference) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void AdjustGamma(float gammaRed, float gammaGreen, float gammaBlue) =>
        throw NotYet.Member();

    /// <inheritdoc/>
    public override void AdjustGamma(float gamma) => AdjustGamma(gamma, gamma, gamma);

    /// <inheritdoc/>
    public override void CacheData()
    {
        VerifyNotDisposed();
        DecodePixels();
    }

    /// <inheritdoc/>
    public override void RotateFlip(RotateFlipType rotateFlipType) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void Grayscale() => throw NotYet.Member();

    /// <inheritdoc/>
    public override void BinarizeFixed(byte threshold) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void BinarizeOtsu() => throw NotYet.Member();

    /// <inheritdoc/>
    public override void AdjustBrightness(int brightness) => throw NotYet.Member();

    /// <inheritdoc/>
    public override void AdjustContrast(float contrast) => throw NotYet.Member();

    /// <inheritdoc/>
    public override bool IsCached => PixelsDecoded;

    private protected abstract bool PixelsDecoded { get; }

    private protected abstract void DecodePixels();
}
