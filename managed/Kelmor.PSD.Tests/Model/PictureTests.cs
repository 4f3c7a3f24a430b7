// What a document looks like: its stored merged image, or its layers where that does not show them.
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Resources;
using Kelmor.PSD.ImageLoadOptions;
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD.Tests.Model;

public class PictureTests
{
    private static readonly int Red = Color.Red.ToArgb();
    private static readonly int White = Color.White.ToArgb();

    [Fact]
    public void Looking_at_a_changed_document_does_not_change_what_is_saved()
    {
        using var image = Documents.Again(RedDocument());
        image.Layers[0].IsVisible = false;
        var before = Documents.Bytes(image);
        Assert.Equal(0, image.GetPixel(0, 0).A);
        Assert.Equal(before, Documents.Bytes(image));
    }

    [Fact]
    public void A_merged_image_that_is_not_real_gives_way_to_the_layers()
    {
        var content = Documents.Bytes(NotReal());
        using var image = Documents.Loaded(content);
        Assert.Equal(Red, image.GetArgb32Pixel(0, 0));
        Assert.Equal(content, Documents.Bytes(image));
        var options = new PsdLoadOptions { ReadOnlyMode = true };
        using var stored = (PsdImage)Image.Load(new MemoryStream(content), options);
        Assert.Equal(White, stored.GetArgb32Pixel(0, 0));
    }

    [Fact]
    public void A_merged_image_that_is_made_anew_is_marked_as_real()
    {
        using var image = Documents.Again(NotReal());
        var stream = new MemoryStream();
        image.Save(stream, new PsdOptions(image) { RefreshImagePreviewData = true });
        using var saved = Documents.Loaded(stream.ToArray());
        Assert.True(saved.FindResource<VersionInfoResource>()!.HasRealMergedData);
        Assert.False(image.FindResource<VersionInfoResource>()!.HasRealMergedData);
        var asStored = new PsdLoadOptions { ReadOnlyMode = true };
        using var merged = (PsdImage)Image.Load(new MemoryStream(stream.ToArray()), asStored);
        Assert.Equal(Red, merged.GetArgb32Pixel(0, 0));
    }

    [Fact]
    public void Pixels_of_a_document_without_layers_are_kept()
    {
        using var image = new PsdImage(2, 1);
        image.SetPixel(1, 0, Color.Red);
        using var again = Documents.Again(image);
        foreach (var each in (PsdImage[])[image, again])
        {
            Assert.Equal((0, Red), (each.GetPixel(0, 0).A, each.GetArgb32Pixel(1, 0)));
            Assert.True(each.HasAlpha);
        }
    }

    [Fact]
    public void The_picture_of_a_document_without_layers_lies_below_the_first_layer()
    {
        using var image = new PsdImage(2, 1);
        image.SetPixel(1, 0, Color.Red);
        image.AddRegularLayer().SetPixel(0, 0, Color.Blue);
        Assert.Equal(["Background", "Layer 1"], image.Layers.Select(layer => layer.Name));
        Assert.Equal(
            [Color.Blue.ToArgb(), Red],
            image.LoadArgb32Pixels(image.Bounds)
        );
        image.Layers = [];
        image.AddRegularLayer();
        Assert.Single(image.Layers);
    }

    [Theory]
    [InlineData(ColorModes.Rgb, 16)]
    [InlineData(ColorModes.Cmyk, 8)]
    [InlineData(ColorModes.Grayscale, 32)]
    public void A_background_has_the_samples_of_the_picture(ColorModes mode, short depth)
    {
        var options = new PsdOptions { ColorMode = mode, ChannelBitsCount = depth };
        options.ChannelsCount = (short)PsdHeader.ColorChannelsOf(mode, 1);
        using var made = (PsdImage)Image.Create(options, 3, 1);
        made.SavePixels(made.Bounds, [Color.Gray, Color.White, Color.Black]);
        using var image = Documents.Again(made);
        image.AddLayerGroup("group", 0, true);
        var background = image.Layers[0];
        Assert.Equal("Background", background.Name);
        Assert.False(background.HasAlpha);
        var planes = image.File.Merged.Decode();
        for (short id = 0; id < planes.Length; id++)
        {
            Assert.Equal(planes[id], background.DecodeChannel(id));
        }
    }

    [Fact]
    public void Layers_are_shown_when_the_stored_image_is_damaged_and_they_have_changed()
    {
        var content = Documents.Bytes(RedDocument());
        using var image = Documents.Loaded(content[..^6]);
        Assert.ThrowsAny<Exception>(() => image.GetPixel(0, 0));
        image.Layers[0].BlendModeKey = BlendMode.Multiply;
        Assert.Equal(Red, image.GetArgb32Pixel(0, 0));
    }

    [Theory]
    [InlineData("knko", new byte[] { 0, 0, 0, 0 }, true)]
    [InlineData("knko", new byte[] { 1, 0, 0, 0 }, false)]
    [InlineData("vmsk", new byte[] { 0, 0, 0, 3 }, false)]
    [InlineData("lrFX", new byte[] { 0, 0, 0, 0 }, false)]
    [InlineData("brst", new byte[0], true)]
    [InlineData("brst", new byte[] { 0, 0, 0, 1 }, false)]
    public void A_layer_that_needs_more_than_pixels_keeps_the_stored_image(
        string key,
        byte[] data,
        bool isRendered
    )
    {
        using var image = Documents.Again(RedDocument());
        var layer = image.Layers[0];
        var code = TaggedBlocks.Code(key);
        layer.Record.Blocks.Add(
            LayerResourceKinds.Create(TaggedBlocks.Signature, code, data, default)
        );
        layer.IsVisible = false;
        Assert.Equal(isRendered ? 0 : 255, image.GetPixel(0, 0).A);
    }

    [Theory]
    [InlineData("masterFXSwitchbool\u0001", true)]
    [InlineData("masterFXSwitchbool\u0001 DrSh enabbool\0", true)]
    [InlineData("masterFXSwitchbool\u0001 DrSh enabbool\u0001", false)]
    [InlineData("masterFXSwitchbool\0 DrSh enabbool\u0001", true)]
    public void Effects_that_are_switched_off_are_none(string descriptor, bool isRendered)
    {
        using var image = Documents.Again(RedDocument());
        var layer = image.Layers[0];
        var data = System.Text.Encoding.ASCII.GetBytes(descriptor);
        foreach (var key in (string[])["lfx2", "lrFX"])
        {
            var code = TaggedBlocks.Code(key);
            var block = LayerResourceKinds.Create(TaggedBlocks.Signature, code, data, default);
            layer.Record.Blocks.Add(block);
        }
        layer.IsVisible = false;
        Assert.Equal(isRendered ? 0 : 255, image.GetPixel(0, 0).A);
    }

    [Theory]
    [InlineData(new byte[] { 0, 0, 255, 255, 0, 0, 255, 255 }, true)]
    [InlineData(new byte[] { 0, 9, 255, 255, 0, 0, 255, 255 }, false)]
    public void Blending_by_brightness_keeps_the_stored_image(byte[] ranges, bool isRendered)
    {
        using var image = Documents.Again(RedDocument());
        image.Layers[0].Record.BlendingRanges = ranges;
        image.Layers[0].IsVisible = false;
        Assert.Equal(isRendered ? 0 : 255, image.GetPixel(0, 0).A);
    }

    private static PsdImage RedDocument()
    {
        var image = new PsdImage(40, 2);
        var layer = image.AddRegularLayer();
        layer.SavePixels(layer.Bounds, [.. Enumerable.Repeat(Color.Red, 80)]);
        return image;
    }

    // As programs save it when they are told not to keep a merged image: it is white.
    private static PsdImage NotReal()
    {
        using var made = RedDocument();
        var image = Documents.Again(made);
        var planes = image.File.Merged.Decode();
        var white = planes.Select(plane => Enumerable.Repeat((byte)255, plane.Length).ToArray());
        image.File.Merged.Replace([.. white]);
        byte[] version = [0, 0, 0, 1, 0];
        image.File.Resources.Add(
            new VersionInfoResource(ResourceBlock.DefaultSignature, default, version)
        );
        return image;
    }
}
