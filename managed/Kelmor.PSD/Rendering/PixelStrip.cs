// A band of pixels while layers are laid over each other.
using Kelmor.PSD.FileFormats.Core.Blending;

namespace Kelmor.PSD.Rendering;

/// <summary>
/// Straight red, green, blue and alpha from 0 to 1, for the pixels of one band of the document.
/// </summary>
internal sealed class PixelStrip(Rectangle area)
{
    private readonly float[] red = new float[PixelAreas.Count(area)];
    private readonly float[] green = new float[PixelAreas.Count(area)];
    private readonly float[] blue = new float[PixelAreas.Count(area)];

    /// <summary>The band, in pixels of the document.</summary>
    public Rectangle Area => area;

    /// <summary>Transparency of each pixel.</summary>
    public float[] Alpha { get; } = new float[PixelAreas.Count(area)];

    /// <summary>Takes pixels over for a part of the band; the rest is transparent.</summary>
    public void Load(Rectangle part, ReadOnlySpan<int> pixels)
    {
        for (var i = 0; i < pixels.Length; i++)
        {
            var at =
                (part.Y - area.Y + i / part.Width) * area.Width + part.X - area.X + i % part.Width;
            red[at] = (pixels[i] >> 16 & 255) / 255f;
            green[at] = (pixels[i] >> 8 & 255) / 255f;
            blue[at] = (pixels[i] & 255) / 255f;
            Alpha[at] = (uint)pixels[i] / 0x1000000 / 255f;
        }
    }

    /// <summary>0xAARRGGBB of each pixel.</summary>
    public int[] ToArgb()
    {
        var pixels = new int[Alpha.Length];
        for (var i = 0; i < pixels.Length; i++)
        {
            pixels[i] =
                Byte(Alpha[i]) << 24 | Byte(red[i]) << 16 | Byte(green[i]) << 8 | Byte(blue[i]);
        }
        return pixels;
    }

    public PixelStrip Copy()
    {
        var copy = new PixelStrip(area);
        red.CopyTo(copy.red, 0);
        green.CopyTo(copy.green, 0);
        blue.CopyTo(copy.blue, 0);
        Alpha.CopyTo(copy.Alpha, 0);
        return copy;
    }

    /// <summary>Lays another strip over this one.</summary>
    /// <param name="layer">The strip above.</param>
    /// <param name="mode">Blend mode.</param>
    /// <param name="coverage">How much of each pixel shows, 0 to 1.</param>
    /// <param name="clip">True: this strip keeps its own transparency, as under a clipped
    /// layer.</param>
    public void Blend(PixelStrip layer, BlendMode mode, float[] coverage, bool clip)
    {
        if (mode == BlendMode.Normal)
        {
            Cover(layer, coverage, clip);
            return;
        }
        var blend = BlendFunctions.Of(mode);
        for (var i = 0; i < Alpha.Length; i++)
        {
            var above = layer.Alpha[i] * coverage[i];
            var below = clip ? 1 : Alpha[i];
            var result = above + below - above * below;
            if (above <= 0 || result <= 0)
            {
                continue;
            }
            red[i] = Mix(red[i], layer.red[i], above, below, result, blend);
            green[i] = Mix(green[i], layer.green[i], above, below, result, blend);
            blue[i] = Mix(blue[i], layer.blue[i], above, below, result, blend);
            Alpha[i] = clip ? Alpha[i] : result;
        }
    }

    // As in Blend with the function of Normal, which needs no call and no look at what it hides.
    private void Cover(PixelStrip layer, float[] coverage, bool clip)
    {
        for (var i = 0; i < Alpha.Length; i++)
        {
            var above = layer.Alpha[i] * coverage[i];
            var below = (1 - above) * (clip ? 1 : Alpha[i]);
            var result = above + below;
            if (above <= 0)
            {
                continue;
            }
            var (share, rest) = (above / result, below / result);
            red[i] = red[i] * rest + layer.red[i] * share;
            green[i] = green[i] * rest + layer.green[i] * share;
            blue[i] = blue[i] * rest + layer.blue[i] * share;
            Alpha[i] = clip ? Alpha[i] : result;
        }
    }

    /// <summary>Goes over to another state of the same band by so much of each pixel.</summary>
    public void Fade(PixelStrip target, float[] coverage)
    {
        for (var i = 0; i < Alpha.Length; i++)
        {
            var (mine, other) = (Alpha[i] * (1 - coverage[i]), target.Alpha[i] * coverage[i]);
            var sum = mine + other;
            if (sum > 0)
            {
                red[i] = (red[i] * mine + target.red[i] * other) / sum;
                green[i] = (green[i] * mine + target.green[i] * other) / sum;
                blue[i] = (blue[i] * mine + target.blue[i] * other) / sum;
            }
            Alpha[i] = sum;
        }
    }

    private static float Mix(
        float below,
        float layer,
        float above,
        float present,
        float result,
        BlendFunctions.Function blend
    ) =>
        (
            (1 - above) * present * below
            + above * (1 - present) * layer
            + above * present * blend(below, layer)
        ) / result;

    private static int Byte(float value) => (int)(Math.Clamp(value, 0, 1) * 255 + 0.5f);
}
