// What holds for images of any kind: areas, options, proportions, members whose work is to come.
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.ImageOptions;
using Kelmor.PSD.MultiThreading;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.Tests.Model;

public class ImageTests
{
    [Fact]
    public void A_member_whose_work_is_to_come_names_itself()
    {
        using var image = new PsdImage(1, 1);
        Assert.Equal(
            "'Kelmor.PSD.FileFormats.Psd.PsdImage.FlattenImage' is not supported yet.",
            Assert.Throws<NotSupportedException>(image.FlattenImage).Message
        );
        Assert.Equal(
            "'Kelmor.PSD.FileFormats.Psd.PsdImage.Timeline' is not supported yet.",
            Assert.Throws<NotSupportedException>(() => image.Timeline).Message
        );
    }

    [Fact]
    public void An_area_outside_of_the_image_is_refused()
    {
        using var image = new PsdImage(4, 3);
        Assert.Throws<ArgumentOutOfRangeException>(() => image.GetPixel(4, 0));
        Assert.Throws<ArgumentOutOfRangeException>(() =>
            image.LoadArgb32Pixels(new Rectangle(1, 1, int.MaxValue, 1))
        );
        Assert.Throws<ArgumentOutOfRangeException>(() =>
            image.LoadArgb32Pixels(new Rectangle(-1, 0, 1, 1))
        );
        var layer = image.AddRegularLayer();
        Assert.Throws<ArgumentException>(() => layer.SaveArgb32Pixels(layer.Bounds, new int[11]));
    }

    [Theory]
    [InlineData(0, 1)]
    [InlineData(1, 0)]
    [InlineData(-5, 5)]
    [InlineData(300_001, 1)]
    public void A_document_without_area_or_beyond_the_format_is_not_made(int width, int height)
    {
        Assert.Throws<CoreExceptions.ImageFormats.PsdImageException>(() =>
            new PsdImage(width, height)
        );
    }

    [Fact]
    public void A_wide_document_is_made_as_psb()
    {
        using var image = new PsdImage(30_001, 1);
        Assert.Equal(2, image.Version);
        var options = new PsdOptions(image) { PsdVersion = PsdVersion.Psd, Version = 1 };
        Assert.Throws<CoreExceptions.ImageSaveException>(() => image.Save(Stream.Null, options));
    }

    [Fact]
    public void Layers_show_in_the_merged_image()
    {
        using var image = new PsdImage(2, 1);
        var lower = image.AddRegularLayer();
        lower.SaveArgb32Pixels(
            lower.Bounds,
            [unchecked((int)0xFF0000FF), unchecked((int)0xFF0000FF)]
        );
        var upper = image.AddRegularLayer();
        upper.SetPixel(0, 0, Color.Red);
        Assert.Equal(unchecked((int)0xFFFF0000), image.GetArgb32Pixel(0, 0));
        upper.Opacity = 128;
        Assert.Equal(unchecked((int)0xFF80007F), image.GetArgb32Pixel(0, 0));
        upper.IsVisible = false;
        Assert.Equal(unchecked((int)0xFF0000FF), image.GetArgb32Pixel(0, 0));
        (upper.IsVisible, upper.Opacity, upper.BlendModeKey) = (
            true,
            255,
            FileFormats.Core.Blending.BlendMode.LinearDodge
        );
        Assert.Equal(unchecked((int)0xFFFF00FF), image.GetArgb32Pixel(0, 0));
    }

    [Fact]
    public void A_clipped_layer_shows_inside_of_the_one_below_only()
    {
        using var image = new PsdImage(2, 1);
        image.AddRegularLayer().SetPixel(0, 0, Color.Blue);
        var clipped = image.AddRegularLayer();
        clipped.SavePixels(clipped.Bounds, [Color.Red, Color.Red]);
        clipped.Clipping = 1;
        Assert.Equal(Color.Red.ToArgb(), image.GetArgb32Pixel(0, 0));
        Assert.Equal(0, image.GetPixel(1, 0).A);
    }

    [Fact]
    public void A_group_fades_as_one()
    {
        using var image = new PsdImage(1, 1);
        var group = image.AddLayerGroup("group", 0, true);
        foreach (var color in (Color[])[Color.Red, Color.Lime])
        {
            var layer = new Layer(
                new Rectangle(0, 0, 1, 1),
                [color.R],
                [color.G],
                [color.B],
                "one"
            );
            group.AddLayer(layer);
        }
        group.Opacity = 51;
        Assert.Equal(0x3300FF00, image.GetArgb32Pixel(0, 0));
        group.BlendModeKey = FileFormats.Core.Blending.BlendMode.Normal;
        Assert.Equal(0x3300FF00, image.GetArgb32Pixel(0, 0));
    }

    [Fact]
    public void Interruption_ends_pixel_work()
    {
        using var image = new PsdImage(2, 2);
        image.InterruptMonitor = new InterruptMonitor();
        image.InterruptMonitor.Interrupt();
        Assert.Throws<CoreExceptions.OperationInterruptedException>(() =>
            image.Save(Stream.Null, new PngOptions())
        );
    }

    [Fact]
    public void An_image_drawn_onto_a_layer_blends_and_makes_room()
    {
        using var image = new PsdImage(4, 4);
        var layer = new Layer(new Rectangle(1, 1, 1, 1), [255], [0], [0], "red");
        image.AddLayer(layer);
        using var stamp = new PsdImage(2, 1);
        stamp
            .AddRegularLayer()
            .SavePixels(stamp.Bounds, [Color.FromArgb(128, 0, 0, 255), Color.Blue]);
        layer.DrawImage(new Point(0, 0), stamp);
        Assert.Equal(
            new Rectangle(1, 1, 2, 1),
            new Rectangle(layer.Left, layer.Top, layer.Width, layer.Height)
        );
        Assert.Equal(
            [unchecked((int)0xFF7F0080), Color.Blue.ToArgb()],
            layer.LoadArgb32Pixels(layer.Bounds)
        );
    }

    [Fact]
    public void Documents_are_created_by_options()
    {
        var options = new PsdOptions
        {
            BackgroundContents = Color.Lime,
            ResolutionSettings = new ResolutionSetting(300, 150),
        };
        using var image = Image.Create(options, 3, 2);
        var document = Assert.IsType<PsdImage>(image);
        Assert.Equal("Background", Assert.Single(document.Layers).Name);
        Assert.Equal((300, 150), (document.HorizontalResolution, document.VerticalResolution));
        Assert.Equal(Color.Lime.ToArgb(), document.GetArgb32Pixel(2, 1));
        Assert.Throws<CoreExceptions.ImageCreateException>(() =>
            Image.Create(new PngOptions(), 3, 2)
        );
    }

    [Fact]
    public void Xmp_instructions_are_as_the_specification_has_them()
    {
        Assert.Equal(
            "<?xpacket begin=\"\uFEFF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>",
            new XmpHeaderPi().GetXmlValue()
        );
        Assert.True(new XmpHeaderPi("a").Equals(new XmpHeaderPi("a")));
        Assert.False(new XmpHeaderPi("a").Equals(new XmpHeaderPi("b")));
        Assert.False(new XmpHeaderPi().Equals(null));
        Assert.Equal("<?xpacket end=\"w\"?>", new XmpTrailerPi().GetXmlValue());
    }

    [Fact]
    public void Resources_of_a_document_are_changed_and_read_again()
    {
        using var image = new PsdImage(1, 1);
        image.SetResolution(299.5, 600);
        image.GlobalAngle = -45;
        image.XmpData = new XmpPacketWrapper();
        image.RgbColorProfile = new Sources.StreamSource(new MemoryStream(Profile()));
        var stream = new MemoryStream();
        image.Save(stream);
        stream.Position = 0;
        using var again = (PsdImage)Image.Load(stream);
        Assert.Equal(
            (299.5, 600, -45),
            (again.HorizontalResolution, again.VerticalResolution, again.GlobalAngle)
        );
        Assert.Equal(image.XmpData!.GetXmlValue(), again.XmpData!.GetXmlValue());
        Assert.Equal(Profile(), ((MemoryStream)again.RgbColorProfile!.Stream).ToArray());
        Assert.Null(again.CmykColorProfile);
        again.RgbColorProfile = null;
        Assert.Null(again.RgbColorProfile);
    }

    private static byte[] Profile()
    {
        var profile = new byte[132];
        "RGB "u8.CopyTo(profile.AsSpan(16));
        return profile;
    }
}
