// Compares a layer tree with the truth about it, node by node.
using System.Text.Json;
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.Tests.Corpus;

internal static class TreeComparison
{
    // What a kind of the truth is here.
    private static readonly Dictionary<string, string> Kinds = new()
    {
        ["group"] = "LayerGroup",
        ["artboard"] = "ArtboardLayer",
        ["pixel"] = "Layer",
        ["type"] = "TextLayer",
        ["shape"] = "ShapeLayer",
        ["smartobject"] = "SmartObjectLayer",
        ["solidcolorfill"] = "FillLayer",
        ["gradientfill"] = "FillLayer",
        ["patternfill"] = "FillLayer",
        ["posterize"] = "PosterizeLayer",
        ["brightnesscontrast"] = "BrightnessContrastLayer",
        ["threshold"] = "ThresholdLayer",
        ["invert"] = "InvertAdjustmentLayer",
        ["levels"] = "LevelsLayer",
        ["curves"] = "CurvesLayer",
        ["gradientmap"] = "GradientMapLayer",
        ["huesaturation"] = "HueSaturationLayer",
        ["exposure"] = "ExposureLayer",
        ["colorbalance"] = "ColorBalanceAdjustmentLayer",
        ["vibrance"] = "VibranceLayer",
        ["blackandwhite"] = "BlackWhiteAdjustmentLayer",
        ["photofilter"] = "PhotoFilterLayer",
        ["channelmixer"] = "RgbChannelMixerLayer",
        ["colorlookup"] = "AdjustmentLayer",
        ["selectivecolor"] = "SelectiveColorLayer",
    };

    /// <summary>Compares everything but the samples.</summary>
    public static void Equal(JsonElement truths, Layer[] layers, bool groupIsVisible)
    {
        Assert.Equal(truths.GetArrayLength(), layers.Length);
        foreach (var (truth, layer) in truths.EnumerateArray().Zip(layers))
        {
            Compare(truth, layer, groupIsVisible);
            if (truth.TryGetProperty("children", out var children))
            {
                var group = Assert.IsAssignableFrom<LayerGroup>(layer);
                Assert.All(group.Layers, child => Assert.Same(group, child.Parent));
                Equal(children, group.Layers, layer.IsVisibleInGroup);
            }
        }
    }

    /// <summary>Compares the samples of all channels that the truth knows.</summary>
    public static void SamplesEqual(JsonElement truths, Layer[] layers)
    {
        foreach (var (truth, layer) in truths.EnumerateArray().Zip(layers))
        {
            if (truth.TryGetProperty("channel_raw_sha256", out var hashes))
            {
                foreach (var hash in hashes.EnumerateObject())
                {
                    var samples = layer.DecodeChannel(short.Parse(hash.Name));
                    Assert.True(
                        hash.Value.GetString() == ReadingTests.Hash(samples!),
                        $"{layer.Name}: channel {hash.Name}"
                    );
                }
            }
            if (truth.TryGetProperty("children", out var children))
            {
                SamplesEqual(children, ((LayerGroup)layer).Layers);
            }
        }
    }

    private static void Compare(JsonElement truth, Layer layer, bool groupIsVisible)
    {
        Assert.Equal(truth.GetProperty("name").GetString(), layer.Name);
        Assert.Equal(layer.Name, layer.DisplayName);
        Assert.Equal(Kinds[truth.GetProperty("kind").GetString()!], layer.GetType().Name);
        Assert.Equal(truth.GetProperty("visible").GetBoolean(), layer.IsVisible);
        Assert.Equal(groupIsVisible && layer.IsVisible, layer.IsVisibleInGroup);
        Assert.Equal(truth.GetProperty("opacity").GetInt32(), layer.Opacity);
        if (truth.GetProperty("blend_key").GetString() is { } key)
        {
            Assert.Equal((BlendMode)FileFormats.Psd.TaggedBlocks.Code(key), layer.BlendModeKey);
        }
        Assert.Equal(truth.GetProperty("clipping").GetBoolean(), layer.Clipping != 0);
        var rectangle = truth
            .GetProperty("rec_rect")
            .EnumerateArray()
            .Select(edge => edge.GetInt32());
        Assert.Equal(rectangle, [layer.Left, layer.Top, layer.Right, layer.Bottom]);
        var channels = truth.GetProperty("channels").EnumerateArray().Select(id => id.GetInt32());
        Assert.Equal(channels, layer.ChannelInformation.Select(channel => (int)channel.ChannelID));
        var blocks = truth
            .GetProperty("blocks")
            .EnumerateArray()
            .Select(block => block.GetString());
        Assert.Equal(
            blocks.Order(),
            layer.Resources.Select(block => block.ToString()).Distinct().Order()
        );
        if (layer is TextLayer text && truth.TryGetProperty("text", out var words))
        {
            Assert.Equal(words.GetString(), text.Text);
        }
    }
}
