// The seam between pixel access and the kinds of images.
namespace Kelmor.PSD;

public abstract partial class RasterImage
{
    private const int BandBytes = 1 << 20;

    private protected virtual float ImageOpacityCore => 1;

    /// <summary>
    /// Decodes what reading needs: damage is found before room for a large result is set aside.
    /// </summary>
    private protected virtual void PreparePixels() { }

    /// <summary>Fills `pixels`, row by row, from a rectangle that lies inside.</summary>
    internal abstract void ReadPixels(Rectangle area, Span<int> pixels);

    /// <summary>Puts `pixels`, row by row, into a rectangle that lies inside.</summary>
    internal abstract void WritePixels(Rectangle area, ReadOnlySpan<int> pixels);

    /// <summary>Bands of whole rows that cover a rectangle from top to bottom.</summary>
    internal IEnumerable<Rectangle> Bands(Rectangle area)
    {
        PixelAreas.VerifyInside(area, Width, Height);
        var rows = Math.Max(1, BandBytes / Math.Max(1, area.Width * 4));
        for (var done = 0; done < area.Height; done += rows)
        {
            VerifyNotInterrupted();
            yield return new Rectangle(
                area.X,
                area.Y + done,
                area.Width,
                Math.Min(rows, area.Height - done)
            );
        }
    }
}
