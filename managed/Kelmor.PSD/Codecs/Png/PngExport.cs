// Saves pixels as PNG (Portable Network Graphics Specification, Second Edition).
using System.Text;
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Png;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Resources;
using Kelmor.PSD.ImageOptions;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.Codecs.Png;

internal static class PngExport
{
    private const double InchesPerMeter = 1 / 0.0254;

    /// <summary>Writes a part of an image row by row.</summary>
    public static void Save(RasterImage image, Stream stream, PngOptions options, Rectangle area)
    {
        if (area.Width <= 0 || area.Height <= 0)
        {
            throw new PngImageException("An image without pixels cannot be saved as PNG.");
        }
        VerifyDepth(options);
        var palette =
            options.ColorType == PngColorType.IndexedColor
                ? PngPalette.For(image, options, area)
                : null;
        var head = new PngHead(area.Width, area.Height, options.BitDepth, (int)options.ColorType)
        {
            IsInterlaced = options.Progressive,
            Level = options.CompressionLevel,
            Filter = (int)options.FilterType,
            Palette = palette?.Argb32Entries ?? [],
            Density = DensityOf(image, options),
            Icc = ProfileOf(image, options.ColorType),
            Xmp = MetadataOf(image, options),
        };
        // Nothing goes to the stream before the first pixels are known to be readable.
        var rows = new PngRows(options.ColorType, options.BitDepth, area.Width, palette);
        using var first = image.Bands(area).GetEnumerator();
        var more = first.MoveNext();
        var pixels = ReadBand(image, first.Current);
        using var file = new PngFile(stream, head);
        while (more)
        {
            file.Write(rows.Pack(pixels, first.Current.Height), rows.Stride, first.Current.Height);
            more = first.MoveNext();
            pixels = more ? ReadBand(image, first.Current) : [];
        }
        file.Finish();
        stream.Flush();
    }

    private static byte[]? MetadataOf(RasterImage image, PngOptions options)
    {
        if ((options.XmpData ?? image.XmpData) is not { } xmp)
        {
            return null;
        }
        var written = image.UpdateXmpData ? XmpDates.Renewed(xmp) : xmp;
        return Encoding.UTF8.GetBytes(written.GetXmlValue());
    }

    private static int[] ReadBand(RasterImage image, Rectangle band)
    {
        var pixels = new int[PixelAreas.Count(band)];
        image.ReadPixels(band, pixels);
        return pixels;
    }

    private static void VerifyDepth(PngOptions options)
    {
        var fits = options.ColorType switch
        {
            PngColorType.Grayscale => true,
            PngColorType.IndexedColor => options.BitDepth <= 8,
            PngColorType.Truecolor
            or PngColorType.GrayscaleWithAlpha
            or PngColorType.TruecolorWithAlpha => options.BitDepth >= 8,
            _ => false,
        };
        if (!fits)
        {
            throw new PngImageException(
                $"A PNG image of the colour type {options.ColorType} cannot have "
                    + $"{options.BitDepth} bits."
            );
        }
    }

    private static (int X, int Y) DensityOf(RasterImage image, PngOptions options)
    {
        if (options.ResolutionSettings is { } wanted)
        {
            return (PerMeter(wanted.HorizontalResolution), PerMeter(wanted.VerticalResolution));
        }
        var source = image as PsdImage ?? image.Container as PsdImage;
        return source?.FindResource<ResolutionInfoResource>() is { } resolution
            ? (PerMeter(resolution.HDpi), PerMeter(resolution.VDpi))
            : (0, 0);
    }

    private static int PerMeter(double perInch) =>
        (int)Math.Clamp(Math.Round(perInch * InchesPerMeter), 0, int.MaxValue);

    // A profile for another kind of colours would be wrong for the saved pixels (11.3.3.3).
    private static byte[]? ProfileOf(RasterImage image, PngColorType type)
    {
        var source = image as PsdImage ?? image.Container as PsdImage;
        if (
            source?.IccProfile is not { Length: >= 132 } profile
            || !profile.AsSpan(36, 4).SequenceEqual("acsp"u8)
        )
        {
            return null;
        }
        var isGray = type is PngColorType.Grayscale or PngColorType.GrayscaleWithAlpha;
        return profile.AsSpan(16, 4).SequenceEqual(isGray ? "GRAY"u8 : "RGB "u8) ? profile : null;
    }
}
