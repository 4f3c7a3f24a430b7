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
