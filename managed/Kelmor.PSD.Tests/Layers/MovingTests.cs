// Layers that move between groups and documents take along what belongs to them.
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD.Tests.Layers;

public class MovingTests
{
    [Fact]
    public void A_group_that_was_removed_brings_its_layers_to_its_new_place()
    {
        using var image = new PsdImage(4, 3);
        var outer = image.AddLayerGroup("outer", 0, true);
        var inner = outer.AddLayerGroup("inner", 0);
        inner.AddLayer(new Layer { Name = "deep" });
        image.Layers = [];
        using var other = new PsdImage(4, 3, ColorModes.Grayscale);
        other.AddLayer(outer);
        using var again = Documents.Again(other);
        string[] expected = ["</Layer group>", "</Layer group>", "deep", "inner", "outer"];
        Assert.Equal(expected, other.Layers.Select(layer => layer.Name));
        Assert.Equal(expected, again.Layers.Select(layer => layer.Name));
        Assert.Same(inner, outer.Layers[0]);
    }

    [Fact]
    public void A_group_that_was_removed_alone_leaves_its_layers_where_they_are()
    {
        using var image = new PsdImage(4, 3);
        var group = image.AddLayerGroup("group", 0, true);
        var layer = new Layer { Name = "stays" };
        group.AddLayer(layer);
        image.Layers = [layer];
        Assert.Empty(group.Layers);
        image.AddLayer(group);
        Assert.Equal(
            ["stays", "</Layer group>", "group"],
            image.Layers.Select(each => each.Name)
        );
    }

    [Fact]
    public void An_end_mark_alone_is_refused()
    {
        using var image = new PsdImage(4, 3);
        image.AddLayerGroup("group", 0, true);
        var end = image.Layers[0].ShallowCopy();
        Assert.Throws<PsdImageArgumentException>(() => image.AddLayer(end));
        Assert.Equal(2, image.Layers.Length);
    }

    [Fact]
    public void Groups_beyond_every_program_are_refused()
    {
        using var image = new PsdImage(1, 1);
        var group = image.AddLayerGroup("lowest", 0, true);
        for (var depth = 1; depth < 100; depth++)
        {
            group = group.AddLayerGroup("deeper", 0);
        }
        Assert.Throws<PsdImageException>(() => group.AddLayerGroup("too deep", 0));
        Assert.Equal(200, image.Layers.Length);
        Assert.Equal(0, image.GetPixel(0, 0).A);
    }

    [Theory]
    [InlineData(PsdVersion.Psd, PsdVersion.Psb)]
    [InlineData(PsdVersion.Psb, PsdVersion.Psd)]
    public void A_layer_moves_between_the_variants_of_the_format(PsdVersion from, PsdVersion to)
    {
        using var source = DocumentOf(from);
        using var target = DocumentOf(to);
        target.AddLayer(source.Layers[0].ShallowCopy());
        using var again = Documents.Again(target);
        Assert.Equal(2, again.Layers.Length);
        Documents.AssertSame(source.Layers[0], again.Layers[1]);
    }

    [Fact]
    public void A_mask_stays_when_the_layer_grows_or_changes_its_depth()
    {
        using var image = Documents.Again(Masked());
        var layer = image.Layers[0];
        using var stamp = new PsdImage(2, 2);
        layer.DrawImage(new Point(3, 3), stamp);
        Assert.Equal([0, 255], layer.DecodeChannel(ChannelIds.UserMask));
        using var deep = new PsdImage(4, 3, ColorModes.Rgb, 16, CompressionMethod.Rle);
        deep.AddLayer(layer.ShallowCopy());
        using var again = Documents.Again(deep);
        Assert.Equal([0, 0, 255, 255], again.Layers[0].DecodeChannel(ChannelIds.UserMask));
        Assert.Equal(new Rectangle(0, 0, 2, 1), again.Layers[0].LayerMaskData!.MaskRectangle);
    }

    [Fact]
    public void The_selected_layer_stays_selected_wherever_it_goes()
    {
        using var image = new PsdImage(1, 1);
        var (first, second) = (image.AddRegularLayer(), image.AddRegularLayer());
        image.ActiveLayer = first;
        image.Layers = [second, first];
        Assert.Same(first, image.ActiveLayer);
        image.AddLayerGroup("below", 0, true);
        Assert.Same(first, image.ActiveLayer);
        image.Layers = [second];
        Assert.Same(second, image.ActiveLayer);
    }

    [Theory]
    [InlineData(ColorModes.Bitmap, 1)]
    [InlineData(ColorModes.Indexed, 8)]
    public void A_document_of_a_kind_without_layers_takes_none(ColorModes mode, int depth)
    {
        using var image = Documents.Flat(mode, depth);
        var before = Documents.Bytes(image);
        Assert.Throws<PsdImageArgumentException>(() => image.AddLayer(new Layer()));
        Assert.Throws<PsdImageArgumentException>(() => image.AddLayerGroup("group", 0, true));
        Assert.Throws<PsdImageArgumentException>(() => image.Layers = [new Layer()]);
        Assert.Equal(before, Documents.Bytes(image));
    }

    [Theory]
    [InlineData(16, "Lr16")]
    [InlineData(32, "Lr32")]
    public void The_first_layers_of_a_deep_document_stand_in_a_block(short depth, string key)
    {
        using var image = new PsdImage(2, 2, ColorModes.Rgb, depth, CompressionMethod.Rle);
        image.AddRegularLayer().SetPixel(1, 1, Color.Red);
        image.GlobalLayerResources = [];
        using var again = Documents.Again(image);
        Assert.Equal([key], again.GlobalLayerResources.Select(block => block.ToString()));
        Assert.Equal(Color.Red.ToArgb(), again.Layers[0].GetArgb32Pixel(1, 1));
        Assert.True(again.HasAlpha);
    }

    [Fact]
    public void A_disposed_document_takes_no_changes()
    {
        var image = new PsdImage(1, 1);
        var group = image.AddLayerGroup("group", 0, true);
        image.Dispose();
        Action[] changes =
        [
            () => image.AddLayer(new Layer()),
            () => image.AddLayerGroup("more", 0, true),
            () => image.Layers = [],
            () => image.ActiveLayer = group,
            () => image.ImageResources = [],
            () => image.GlobalLayerResources = [],
            () => image.HasTransparencyData = false,
            () => image.GlobalAngle = 1,
            () => image.XmpData = null,
            () => group.AddLayer(new Layer()),
            () => group.IsOpen = false,
            () => group.Name = "other",
            () => group.FillOpacity = 1,
            () => group.Resources = [],
        ];
        Assert.All(changes, change => Assert.Throws<ObjectDisposedException>(change));
    }

    private static PsdImage DocumentOf(PsdVersion version)
    {
        using var image = new PsdImage(4, 3);
        image.AddRegularLayer().SetPixel(1, 1, Color.Red);
        var stream = new MemoryStream();
        image.Save(stream, new PsdOptions { PsdVersion = version });
        return Documents.Loaded(stream.ToArray());
    }

    // Two pixels of mask: hidden, shown.
    private static PsdImage Masked()
    {
        var image = new PsdImage(4, 3);
        var layer = image.AddRegularLayer();
        byte[] rectangle = [0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 2];
        layer.Record.Mask = (byte[])[.. rectangle, 255, 0, 0, 0];
        layer.Record.Channels.Add(
            new ChannelInformation(ChannelIds.UserMask)
            {
                Data = new FileFormats.Psd.Channels.ChannelData([0, 255], CompressionMethod.Rle),
            }
        );
        return image;
    }
}
