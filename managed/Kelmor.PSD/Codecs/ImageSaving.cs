// Chooses the writer for an image by the class of the options.
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Writing;
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD;

internal static class ImageSaving
{
    /// <summary>Writes an image in the format of the options.</summary>
    /// <param name="image">The image.</param>
    /// <param name="stream">Target.</param>
    /// <param name="options">Options; null keeps the image's own format.</param>
    /// <param name="area">The part; Empty for the whole image.</param>
    /// <exception cref="ImageSaveException">The image cannot be written in that format.</exception>
    public static void Save(Image image, Stream stream, ImageOptionsBase? options, Rectangle area)
    {
        if (!stream.CanWrite)
        {
            throw new ImageSaveException("The stream cannot be written.");
        }
        if (options?.MultiPageOptions is not null)
        {
            throw new NotSupportedException(
                $"The format {options.Format} has no pages: 'MultiPageOptions' must be null."
            );
        }
        if (!area.IsEmpty)
        {
            area = Image.GetFittingRectangle(area, image.Width, image.Height);
        }
        switch (options)
        {
            case null or PsdOptions:
                SavePsd(image, stream, options as PsdOptions, area);
                break;
            case PngOptions png when image is RasterImage raster:
                Codecs.Png.PngExport.Save(raster, stream, png, area.IsEmpty ? image.Bounds : area);
                break;
            default:
                throw new ImageSaveException(
                    $"Images are not written in the format {options.Format}."
                );
        }
    }

    public static bool CanSave(Image image, ImageOptionsBase options)
    {
        ArgumentNullException.ThrowIfNull(options);
        return options is PsdOptions || options is PngOptions && image is RasterImage;
    }

    /// <summary>Writes an image back to where it was loaded from.</summary>
    public static void SaveToOrigin(Image image)
    {
        ObjectDisposedException.ThrowIf(image.Disposed, image);
        switch (image)
        {
            case PsdImage { Origin: { FilePath: { } path } }:
                image.Save(path);
                break;
            case PsdImage
            {
                Origin: { Stream: { CanSeek: true, CanWrite: true } stream, Start: var start }
            }:
                SaveInPlace(image, stream, start);
                break;
            case PsdImage { CreationSource: { } source }:
                using (var container = source.GetStreamContainer())
                {
                    image.Save(container.Stream);
                }
                break;
            default:
                throw new ImageSaveException(
                    "The image was not loaded from a file or a stream that can be "
                        + "written: name a place to save to."
                );
        }
    }

    // The whole document is in memory before the stream is touched.
    private static void SaveInPlace(Image image, Stream stream, long start)
    {
        using var copy = new MemoryStream();
        image.Save(copy);
        stream.Position = start;
        copy.WriteTo(stream);
        stream.SetLength(stream.Position);
        stream.Flush();
    }

    private static void SavePsd(Image image, Stream stream, PsdOptions? options, Rectangle area)
    {
        if (image is PsdImage document && area.IsEmpty)
        {
            PsdWriter.Write(document, stream, options ?? new PsdOptions(document));
            return;
        }
        if (image is not RasterImage raster)
        {
            throw new ImageSaveException(
                "Only images that consist of pixels can be saved as documents."
            );
        }
        using var single = SingleLayer(raster, options, area.IsEmpty ? image.Bounds : area);
        PsdWriter.Write(single, stream, options ?? new PsdOptions(single));
    }

    // A part of an image, or an image of another kind, becomes a document of one layer.
    private static PsdImage SingleLayer(RasterImage image, PsdOptions? options, Rectangle area)
    {
        if (area.Width <= 0 || area.Height <= 0)
        {
            throw new ImageSaveException("An image without pixels cannot be saved.");
        }
        var document = PsdImage.Create(options ?? new PsdOptions(), area.Width, area.Height);
        var layer = document.AddRegularLayer();
        foreach (var band in image.Bands(area))
        {
            var pixels = new int[PixelAreas.Count(band)];
            image.ReadPixels(band, pixels);
            layer.SaveArgb32Pixels(
                new Rectangle(0, band.Y - area.Y, band.Width, band.Height),
                pixels
            );
        }
        return document;
    }
}
