// What options say about saving is in the saved document, and the document itself stays as it was.
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.ImageOptions;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.Tests.Model;

public class SaveOptionsTests
{
    [Fact]
    public void Metadata_and_resolution_of_the_options_are_written()
    {
        using var image = new PsdImage(4, 4);
        var xmp = new XmpPacketWrapper("<x:xmpmeta/>");
        using var saved = SavedWith(
            image,
            new PsdOptions(image)
            {
                XmpData = xmp,
                ResolutionSettings = new ResolutionSetting(300, 150),
            }
        );
        Assert.Equal(xmp.GetXmlValue(), saved.XmpData?.GetXmlValue());
        Assert.Equal((300, 150), (saved.HorizontalResolution, saved.VerticalResolution));
        Assert.Null(image.XmpData);
        Assert.Equal(72, image.HorizontalResolution);
    }

    [Fact]
    public void Dates_of_change_are_renewed_when_metadata_are_to_be_updated()
    {
        const string Old = "2001-02-03T04:05:06Z";
        var packet =
            $"<x:xmpmeta><rdf:Description xmp:CreateDate=\"{Old}\" xmp:ModifyDate=\"{Old}\">"
            + $"<xap:MetadataDate>{Old}</xap:MetadataDate></rdf:Description></x:xmpmeta>";
        using var image = new PsdImage(4, 4) { XmpData = new XmpPacketWrapper(packet) };
        using var kept = SavedWith(image, new PsdOptions(image));
        Assert.Equal(image.XmpData.GetXmlValue(), kept.XmpData?.GetXmlValue());
        using var renewed = SavedWith(image, new PsdOptions { UpdateMetadata = true });
        var text = renewed.XmpData!.GetXmlValue();
        Assert.Contains($"xmp:CreateDate=\"{Old}\"", text);
        var now = DateTime.Now.Year.ToString();
        Assert.Contains($"xmp:ModifyDate=\"{now}-", text);
        Assert.Contains($"<xap:MetadataDate>{now}-", text);
        Assert.Contains("</xap:MetadataDate></rdf:Description>", text);
    }

    [Theory]
    [InlineData(3, false)]
    [InlineData(4, true)]
    [InlineData(6, true)]
    public void A_document_has_the_number_of_channels_that_was_asked_for(short count, bool hasAlpha)
    {
        var options = new PsdOptions { ChannelsCount = count };
        using var image = (PsdImage)Image.Create(options, 2, 1);
        image.AddRegularLayer().SetPixel(1, 0, Color.Red);
        using var again = SavedWith(image, options);
        Assert.Equal((count, hasAlpha), (again.ChannelsCount, again.HasAlpha));
        Assert.Equal(Color.Red.ToArgb(), again.GetArgb32Pixel(1, 0));
        Assert.Throws<NotSupportedException>(() =>
            image.Save(Stream.Null, new PsdOptions { ChannelsCount = 5 })
        );
    }

    [Fact]
    public void A_palette_is_for_indexed_documents()
    {
        using var image = Documents.Flat(ColorModes.Indexed, 8);
        var palette = new ColorPalette([Color.Red, Color.Blue]);
        using var saved = SavedWith(image, new PsdOptions(image) { Palette = palette });
        Assert.Equal(Color.Red.ToArgb(), saved.GetArgb32Pixel(0, 0));
        Assert.Equal(Color.Black.ToArgb(), image.GetArgb32Pixel(0, 0));
        image.Palette = palette;
        using var changed = Documents.Again(image);
        Assert.Equal(Color.Red.ToArgb(), image.GetArgb32Pixel(0, 0));
        Assert.Equal(Color.Blue.ToArgb(), changed.Palette!.GetArgb32Color(1));
        using var rgb = new PsdImage(1, 1);
        var failure = Assert.Throws<NotSupportedException>(() =>
            rgb.Save(Stream.Null, new PsdOptions { Palette = palette })
        );
        Assert.Contains("'Palette'", failure.Message);
    }

    [Fact]
    public void A_format_without_pages_takes_no_choice_of_pages()
    {
        using var image = new PsdImage(1, 1);
        var options = new PngOptions { MultiPageOptions = new MultiPageOptions([0]) };
        var failure = Assert.Throws<NotSupportedException>(() => image.Save(Stream.Null, options));
        Assert.Contains("'MultiPageOptions'", failure.Message);
    }

    [Fact]
    public void What_loading_does_not_do_yet_is_refused_by_its_name()
    {
        var failure = Assert.Throws<NotSupportedException>(() =>
            new LoadOptions { UseIccProfileConversion = true }
        );
        Assert.Contains("LoadOptions.UseIccProfileConversion", failure.Message);
        Assert.Throws<NotSupportedException>(() =>
            new ImageLoadOptions.PsdLoadOptions { AllowWarpRepaint = true }
        );
    }

    [Fact]
    public void A_file_is_named_as_it_was_asked_for_when_it_cannot_be_written()
    {
        using var image = new PsdImage(4, 4);
        var folder = Directory.CreateTempSubdirectory();
        var missing = Path.Combine(folder.FullName, "none", "a.psd");
        var failure = Assert.Throws<DirectoryNotFoundException>(() => image.Save(missing));
        Assert.Contains($"'{missing}'", failure.Message);
        Assert.ThrowsAny<Exception>(() => image.Save(folder.FullName));
        Assert.Empty(Directory.GetFileSystemEntries(folder.FullName));
        var longest = Path.Combine(folder.FullName, new string('n', 251) + ".psd");
        image.Save(longest);
        Assert.Equal([longest], Directory.GetFileSystemEntries(folder.FullName));
        folder.Delete(recursive: true);
    }

    [Fact]
    public void A_file_that_is_there_is_kept_when_it_is_not_to_be_replaced()
    {
        using var image = new PsdImage(4, 4);
        var path = Path.GetTempFileName();
        Assert.Throws<ImageSaveException>(() => image.Save(path, false));
        Assert.Equal(0, new FileInfo(path).Length);
        File.Delete(path);
    }

    private static PsdImage SavedWith(PsdImage image, PsdOptions options)
    {
        var stream = new MemoryStream();
        image.Save(stream, options);
        stream.Position = 0;
        return (PsdImage)Image.Load(stream);
    }
}
