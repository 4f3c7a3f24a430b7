// Takes a layered document apart (Photoshop File Formats Specification, Photoshop File Structure).
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.FileFormats.Psd.Reading;

internal static class PsdReader
{
    /// <summary>Reads everything but the pixels, which are decoded at first use.</summary>
    /// <param name="data">The whole document.</param>
    /// <param name="recovery">What to do with damaged sections.</param>
    /// <exception cref="PsdImageException">The document is damaged.</exception>
    public static PsdFile Read(ReadOnlyMemory<byte> data, DataRecoveryMode recovery)
    {
        var header = PsdHeader.Read(new SectionReader(data, "file header", false));
        var reader = new SectionReader(data, "document", header.IsBig);
        reader.GoTo(PsdHeader.Size);
        var colors = reader.Take(
            reader.UInt32("the length of the colour mode data"),
            "the colour mode data"
        );
        var resources = reader.Take(
            reader.UInt32("the length of the image resources"),
            "the image resources"
        );
        var layers = ReadLayerSection(reader, header, recovery);
        var file = new PsdFile
        {
            Header = header,
            ColorModeData = colors,
            Layers = layers,
            Merged = new MergedImage(reader.TakeRest(), header, recovery),
        };
        file.ResourceRest = ResourceReader.Read(resources, file.Resources, header.IsBig);
        return file;
    }

    private static LayerSection ReadLayerSection(
        SectionReader reader,
        PsdHeader header,
        DataRecoveryMode recovery
    )
    {
        // Very old documents end behind their resources.
        if (reader.Remaining == 0)
        {
            return new LayerSection();
        }
        var length = reader.Length("the length of the layer section");
        var raw =
            recovery == DataRecoveryMode.None
                ? reader.Take(length, "the layer section")
                : reader.TakeUpTo(length, "the layer section");
        var section = new LayerSection { Raw = raw };
        try
        {
            LayerSectionReader.Read(section, header, recovery);
        }
        catch (PsdImageException) when (recovery != DataRecoveryMode.None)
        {
            // The bytes stay, so that saving loses nothing.
            section = new LayerSection { Raw = raw };
        }
        return section;
    }
}
