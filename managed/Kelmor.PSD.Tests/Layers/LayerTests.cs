// Layers are changed, added, moved and removed, and documents keep what was not touched.
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.Tests.Layers;

public class LayerTests
{
    [Theory]
    [InlineData("plain")]
    [InlineData("")]
    [InlineData("原神 ü 🎨")]
    public void A_name_is_read_again(string name)
    {
        using var image = Made();
        image.Layers[0].Name = name;
        using var again = Again(image);
        Assert.Equal(name, again.Layers[0].Name);
        Assert.Equal(name, again.Layers[0].DisplayName);
    }

    [Fact]
    public void A_long_name_keeps_its_characters_beyond_the_old_form()
    {
        using var image = Made();
        image.Layers[0].Name = new string('x', 1000);
        using var again = Again(image);
        Assert.Equal(1000, again.Layers[0].Name.Length);
        Assert.Equal(256, again.Layers[0].Record.PascalName.Length);
    }

    [Fact]
    public void Every_field_is_read_again()
    {
        using var image = Made();
        var layer = image.Layers[0];
        (layer.Opacity, layer.FillOpacity, layer.BlendModeKey) = (100, 50, BlendMode.Multiply);
        (layer.IsVisible, layer.Clipping, layer.Left, layer.Top) = (false, 1, -3, 7);
        layer.SheetColorHighlight = FileFormats
            .Psd
            .Layers
            .LayerResources
            .SheetColorHighlightEnum
            .Violet;
        layer.LayerLock = FileFormats.Psd.Layers.LayerResources.LayerLockType.LockPosition;
        layer.BlendClippedElements = false;
        using var again = Again(image);
        Documents.AssertSame(layer, again.Layers[0]);
        Assert.False(again.Layers[0].IsVisible);
        Assert.False(again.Layers[0].BlendClippedElements);
        Assert.Equal(layer.SheetColorHighlight, again.Layers[0].SheetColorHighlight);
        Assert.Equal(layer.LayerLock, again.Layers[0].LayerLock);
        Assert.Equal(
            (-3, 7, 1, 10),
            (
                again.Layers[0].Left,
                again.Layers[0].Top,
                again.Layers[0].Right,
                again.Layers[0].Bottom
            )
        );
    }

    [Theory]
    [InlineData(-1)]
    [InlineData(256)]
    public void A_fill_opacity_beyond_a_byte_is_refused(int value)
    {
        Assert.Throws<ArgumentOutOfRangeException>(() => new Layer().FillOpacity = value);
    }

    [Fact]
    public void A_blend_mode_that_is_not_known_is_kept()
    {
        using var image = Made();
        image.Layers[0].Record.BlendMode = 0x41424344;
        using var again = Again(image);
        Assert.Equal(BlendMode.Absent, again.Layers[0].BlendModeKey);
        Assert.Equal(0x41424344, again.Layers[0].Record.BlendMode);
    }

    [Fact]
    public void Pixels_are_read_again()
    {
        using var image = Made();
        var pixels = Enumerable.Range(0, 12).Select(i => (255 - i) << 24 | i * 0x0A1403).ToArray();
        image.Layers[0].SaveArgb32Pixels(new Rectangle(0, 0, 4, 3), pixels);
        using var again = Again(image);
        Assert.Equal(pixels, again.Layers[0].LoadArgb32Pixels(again.Layers[0].Bounds));
        Assert.Equal(pixels[5], again.Layers[0].GetArgb32Pixel(1, 1));
    }

    [Theory]
    [InlineData(ColorModes.Rgb, 8)]
    [InlineData(ColorModes.Rgb, 16)]
    [InlineData(ColorModes.Rgb, 32)]
    [InlineData(ColorModes.Grayscale, 8)]
    [InlineData(ColorModes.Grayscale, 16)]
    [InlineData(ColorModes.Cmyk, 8)]
    public void Documents_of_each_kind_are_made_and_read_again(ColorModes mode, short depth)
    {
        using var image = new PsdImage(5, 4, mode, depth, CompressionMethod.Rle);
        var gray = unchecked((int)0xFF808080);
        image
            .AddRegularLayer()
            .SaveArgb32Pixels(new Rectangle(1, 1, 2, 2), [gray, gray, gray, gray]);
        using var again = Again(image);
        Assert.Equal((mode, depth), (again.ColorMode, (short)again.BitsPerChannel));
        Assert.Equal(gray, again.Layers[0].GetArgb32Pixel(2, 2));
        Assert.Equal(0, again.Layers[0].GetPixel(0, 0).A);
        Assert.Equal(gray, again.GetArgb32Pixel(1, 1));
        Assert.Equal(0, again.GetPixel(4, 3).A);
    }

    [Fact]
    public void Groups_stand_as_end_mark_layers_and_head()
    {
        using var image = Made();
        var outer = image.AddLayerGroup("outer", 1, true);
        var inner = outer.AddLayerGroup("inner", 0);
        inner.AddLayer(new Layer { Name = "deep" });
        outer.AddLayer(new Layer { Name = "above" });
        using var again = Again(image);
        Assert.Equal(
            ["Layer 1", "</Layer group>", "</Layer group>", "deep", "inner", "above", "outer"],
            again.Layers.Select(layer => layer.Name)
        );
        var group = Assert.IsType<LayerGroup>(again.Layers[^1]);
        Assert.Equal(["inner", "above"], group.Layers.Select(layer => layer.Name));
        Assert.Equal(
            ["deep"],
            Assert.IsType<LayerGroup>(group.Layers[0]).Layers.Select(layer => layer.Name)
        );
        Assert.Equal(BlendMode.PassThrough, group.BlendModeKey);
        Assert.True(group.IsOpen);
    }

    [Fact]
    public void A_hidden_group_hides_its_layers_but_not_their_own_switch()
    {
        using var image = Made();
        var group = image.AddLayerGroup("group", 0, false);
        var layer = new Layer();
        group.AddLayer(layer);
        group.IsVisible = false;
        Assert.True(layer.IsVisible);
        Assert.False(layer.IsVisibleInGroup);
    }

    [Fact]
    public void Layers_are_reordered_and_removed_by_assigning_them()
    {
        using var image = Made();
        image.AddLayer(new Layer { Name = "second" });
        image.AddLayer(new Layer { Name = "third" });
        var layers = image.Layers;
        image.Layers = [layers[2], layers[0]];
        using var again = Again(image);
        Assert.Equal(["third", "Layer 1"], again.Layers.Select(layer => layer.Name));
        Assert.Null(layers[1].Container);
    }

    [Fact]
    public void Children_of_a_group_are_replaced()
    {
        using var image = Made();
        var group = image.AddLayerGroup("group", 1, true);
        group.AddLayer(new Layer { Name = "a" });
        group.AddLayer(new Layer { Name = "b" });
        group.Layers = [group.Layers[1], new Layer { Name = "c" }];
        Assert.Equal(
            ["Layer 1", "</Layer group>", "b", "c", "group"],
            image.Layers.Select(layer => layer.Name)
        );
    }

    [Fact]
    public void Wrong_nesting_doubles_and_foreign_layers_are_refused()
    {
        using var image = Made();
        using var other = Made();
        image.AddLayerGroup("group", 1, true);
        var layers = image.Layers;
        Assert.Throws<PsdImageArgumentException>(() => image.Layers = [layers[0], layers[2]]);
        Assert.Throws<PsdImageArgumentException>(() => image.Layers = [layers[0], layers[1]]);
        Assert.Throws<PsdImageArgumentException>(() => image.Layers = [layers[0], layers[0]]);
        Assert.Throws<PsdImageArgumentException>(() => image.Layers = [other.Layers[0]]);
        Assert.Throws<PsdImageArgumentException>(() => image.AddLayer(other.Layers[0]));
        Assert.Equal(layers, image.Layers);
        image.AddLayer(other.Layers[0].ShallowCopy());
        Assert.Equal(4, image.Layers.Length);
    }

    [Fact]
    public void A_layer_is_made_from_its_channels()
    {
        using var layer = new Layer(
            new Rectangle(2, 3, 2, 1),
            [10, 20],
            [30, 40],
            [50, 60],
            "made"
        );
        Assert.Equal(
            [unchecked((int)0xFF0A1E32), unchecked((int)0xFF14283C)],
            layer.LoadArgb32Pixels(layer.Bounds)
        );
        Assert.False(layer.HasAlpha);
        Assert.Throws<ArgumentException>(() =>
            new Layer(new Rectangle(0, 0, 2, 2), [1], [1], [1], "short")
        );
    }

    [Fact]
    public void A_disposed_document_refuses_work()
    {
        var image = Made();
        image.Dispose();
        image.Dispose();
        Assert.True(image.Disposed);
        Assert.Throws<ObjectDisposedException>(() => image.Save(Stream.Null));
        Assert.Throws<ObjectDisposedException>(() =>
            image.LoadArgb32Pixels(new Rectangle(0, 0, 1, 1))
        );
    }

    private static PsdImage Made()
    {
        var image = new PsdImage(4, 3);
        image.AddRegularLayer();
        return image;
    }

    private static PsdImage Again(PsdImage image)
    {
        var stream = new MemoryStream();
        image.Save(stream);
        stream.Position = 0;
        return (PsdImage)Image.Load(stream);
    }
}
