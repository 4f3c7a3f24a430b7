// Writes a layered document (Photoshop File Formats Specification, Photoshop File Structure).
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD.FileFormats.Psd.Writing;

internal static class PsdWriter
{
    private const int LargestPsdSide = 30_000;

    /// <summary>
    /// Writes a document; sections that have not changed are written as they were read.
    /// </summary>
    /// <exception cref="ImageSaveException">The document does not fit into the wanted
    /// variant.</exception>
    public static void Write(PsdImage image, Stream stream, PsdOptions options)
    {
        var file = image.File;
        var version = WantedVersion(file, options);
        VerifyKind(file, options);
        var picture =
            options.RefreshImagePreviewData || image.IsNew ? image.Picture : file.Merged;
        CompressionMethod? method =
            options.CompressionMethod == file.Merged.Method ? null : options.CompressionMethod;
        var isBig = version == PsdVersion.Psb;
        var writer = new SectionWriter(isBig);
        WriteHeader(writer, file.Header with { Version = version });
        var colors =
            options.Palette is { } palette ? IndexedPalette.Pack(palette) : file.ColorModeData;
        writer.ShortLength(colors.Length);
        writer.Block(colors);
        WriteResources(writer, ResourcesToWrite.Of(image, options, picture), file.ResourceRest);
        LayerSectionWriter.Write(writer, file, method, options.RemoveGlobalTextEngineResource);
        writer.Block(picture.Store(isBig, method));
        writer.CopyTo(stream);
        stream.Flush();
    }

    private static PsdVersion WantedVersion(PsdFile file, PsdOptions options)
    {
        var version =
            options.PsdVersion == PsdVersion.Psd && options.Version == (int)PsdVersion.Psb
                ? PsdVersion.Psb
                : options.PsdVersion;
        if (version is not (PsdVersion.Psd or PsdVersion.Psb))
        {
            throw new ImageSaveException($"There is no variant {(int)version} of the format.");
        }
        if (
            version == PsdVersion.Psd
            && Math.Max(file.Header.Width, file.Header.Height) > LargestPsdSide
        )
        {
            throw new ImageSaveException(
                $"A document of {file.Header.Width} x {file.Header.Height} pixels is too "
                    + "large for PSD; save it as PSB."
            );
        }
        return version;
    }

    // Options made without an image ask for RGB of 8 bits; that is no wish to convert.
    private static void VerifyKind(PsdFile file, PsdOptions options)
    {
        var header = file.Header;
        var isDefault = options is { ColorMode: ColorModes.Rgb, ChannelBitsCount: 8 };
        if (
            !isDefault
            && (options.ColorMode != header.Mode || options.ChannelBitsCount != header.Depth)
        )
        {
            throw new NotSupportedException(
                $"A document of the mode {header.Mode} with {header.Depth} bits "
                    + $"is not converted to {options.ColorMode} with "
                    + $"{options.ChannelBitsCount} bits."
            );
        }
        if ((options.WantedChannels ?? header.Channels) != header.Channels)
        {
            throw new NotSupportedException(
                $"A document of {header.Channels} channels is not converted to "
                    + $"{options.ChannelsCount} channels."
            );
        }
        if (options.Palette is not null && header.Mode != ColorModes.Indexed)
        {
            throw new NotSupportedException(
                $"A document of the mode {header.Mode} has no palette: 'Palette' must be null."
            );
        }
        // What is damaged but not changed is written as it was read.
        if (
            options.CompressionMethod != file.Merged.Method
            && !Enum.IsDefined(options.CompressionMethod)
        )
        {
            throw new PsdImageArgumentException(
                $"The compression method {(int)options.CompressionMethod} is not known."
            );
        }
    }

    private static void WriteHeader(SectionWriter writer, PsdHeader header)
    {
        writer.UInt32(PsdHeader.Signature);
        writer.Int16((short)header.Version);
        writer.Block(header.Reserved);
        writer.Int16((short)header.Channels);
        writer.Int32(header.Height);
        writer.Int32(header.Width);
        writer.Int16((short)header.Depth);
        writer.Int16((short)header.Mode);
    }

    private static void WriteResources(
        SectionWriter writer,
        List<ResourceBlock> resources,
        ReadOnlyMemory<byte> rest
    )
    {
        var part = new SectionWriter(writer.IsBig);
        foreach (var resource in resources)
        {
            ResourceWriter.Write(part, resource);
        }
        part.Block(rest);
        writer.ShortLength(part.Length);
        writer.Append(part);
    }
}
