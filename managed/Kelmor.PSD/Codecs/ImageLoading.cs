// Finds the format of a file by its first bytes and hands it to that format's reader.
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD;

internal static class ImageLoading
{
    private const int HeadLength = 32;

    public static bool CanLoad(string filePath)
    {
        ArgumentException.ThrowIfNullOrEmpty(filePath);
        return File.Exists(filePath) && FormatOf(filePath) == FileFormat.Psd;
    }

    public static bool CanLoad(Stream stream) => FormatOf(stream) == FileFormat.Psd;

    public static FileFormat FormatOf(string filePath)
    {
        ArgumentException.ThrowIfNullOrEmpty(filePath);
        using var file = new FileStream(
            filePath,
            FileMode.Open,
            FileAccess.Read,
            FileShare.Read,
            1
        );
        return FormatOf(file);
    }

    /// <summary>Looks at the next bytes and goes back to where the stream stood.</summary>
    /// <exception cref="NotSupportedException">The stream cannot go back.</exception>
    public static FileFormat FormatOf(Stream stream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        if (!stream.CanSeek)
        {
            throw new NotSupportedException(
                "The format of a stream that cannot be sought in is found by loading it only."
            );
        }
        var start = stream.Position;
        var head = new byte[HeadLength];
        var length = stream.ReadAtLeast(head, head.Length, throwOnEndOfStream: false);
        stream.Position = start;
        return Formats.Detect(head.AsSpan(0, length));
    }

    public static Image Load(string filePath, LoadOptions? options)
    {
        ArgumentException.ThrowIfNullOrEmpty(filePath);
        Refuse(FormatOf(filePath), $"The file '{filePath}'");
        return new PsdImage(filePath, options);
    }

    public static Image Load(Stream stream, LoadOptions? options)
    {
        ArgumentNullException.ThrowIfNull(stream);
        if (stream.CanSeek)
        {
            Refuse(FormatOf(stream), "The stream");
        }
        return new PsdImage(stream, options);
    }

    public static Image Create(ImageOptionsBase options, int width, int height)
    {
        ArgumentNullException.ThrowIfNull(options);
        if (options is not PsdOptions psd)
        {
            throw new ImageCreateException(
                $"Images of the format {options.Format} cannot be made."
            );
        }
        var image = PsdImage.Create(psd, width, height);
        if (options.ResolutionSettings is { } resolution)
        {
            image.SetResolution(resolution.HorizontalResolution, resolution.VerticalResolution);
        }
        if (!psd.BackgroundContents.IsEmpty)
        {
            ImageBackground.Add(image, psd.BackgroundContents);
        }
        image.CreationSource = options.Source;
        return image;
    }

    private static void Refuse(FileFormat format, string what)
    {
        if (format != FileFormat.Psd)
        {
            throw new ImageLoadException(
                format == FileFormat.Undefined
                    ? $"{what} cannot be loaded: its format is not known."
                    : $"{what} cannot be loaded: images of the format {format} are not read."
            );
        }
    }
}
