// Compares documents, and makes small ones.
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.Tests;

internal static class Documents
{
    /// <summary>
    /// Same layers with the same fields and samples, same resources, same merged samples.
    /// </summary>
    public static void AssertSame(PsdImage expected, PsdImage found)
    {
        Assert.Equal(expected.Size, found.Size);
        Assert.Equal(
            expected.ImageResources.Select(resource => resource.ID),
            found.ImageResources.Select(resource => resource.ID)
        );
        Assert.Equal(expected.HasTransparencyData, found.HasTransparencyData);
        Assert.Equal(expected.Layers.Length, found.Layers.Length);
        foreach (var (left, right) in expected.Layers.Zip(found.Layers))
        {
            AssertSame(left, right);
        }
        if (expected.File.Merged.IsPresent && Record.Exception(expected.File.Merged.Decode) is null)
        {
            foreach (
                var (left, right) in expected.File.Merged.Decode().Zip(found.File.Merged.Decode())
            )
            {
                Assert.True(left.AsSpan().SequenceEqual(right), "the merged image");
            }
        }
    }

    /// <summary>What the document is saved as.</summary>
    public static byte[] Bytes(PsdImage image)
    {
        var stream = new MemoryStream();
        image.Save(stream);
        return stream.ToArray();
    }

    public static PsdImage Loaded(byte[] content) =>
        (PsdImage)Image.Load(new MemoryStream(content));

    /// <summary>The document after saving and loading.</summary>
    public static PsdImage Again(PsdImage image) => Loaded(Bytes(image));

    /// <summary>A document of zeros in one channel, 8 x 1, with a palette of zeros if it is
    /// indexed.</summary>
    public static PsdImage Flat(ColorModes mode, int depth)
    {
        byte[] head = [.. "8BPS"u8, 0, 1, .. new byte[6], 0, 1, 0, 0, 0, 1, 0, 0, 0, 8];
        byte[] kind = [0, (byte)depth, 0, (byte)mode];
        byte[] palette = mode == ColorModes.Indexed ? [0, 0, 3, 0, .. new byte[768]] : new byte[4];
        byte[] sections = [.. new byte[8], 0, 0, .. new byte[8 * depth / 8]];
        return Loaded([.. head, .. kind, .. palette, .. sections]);
    }

    public static void AssertSame(Layer expected, Layer found)
    {
        Assert.Equal(expected.GetType(), found.GetType());
        Assert.Equal(expected.Name, found.Name);
        Assert.Equal(
            (expected.Left, expected.Top, expected.Right, expected.Bottom),
            (found.Left, found.Top, found.Right, found.Bottom)
        );
        Assert.Equal(
            (expected.Opacity, expected.FillOpacity, expected.BlendModeKey),
            (found.Opacity, found.FillOpacity, found.BlendModeKey)
        );
        Assert.Equal(
            (expected.Clipping, expected.Flags, expected.Filler),
            (found.Clipping, found.Flags, found.Filler)
        );
        Assert.Equal(expected.Record.Mask.ToArray(), found.Record.Mask.ToArray());
        Assert.Equal(
            expected.Resources.Select(block => block.ToString()),
            found.Resources.Select(block => block.ToString())
        );
        Assert.Equal(
            expected.ChannelInformation.Select(channel => channel.ChannelID),
            found.ChannelInformation.Select(channel => channel.ChannelID)
        );
        foreach (
            var channel in expected.ChannelInformation.Where(channel => channel.Data.Method is >= 0)
        )
        {
            var same = expected
                .DecodeChannel(channel.ChannelID)
                .AsSpan()
                .SequenceEqual(found.DecodeChannel(channel.ChannelID));
            Assert.True(same, $"{expected.Name}: channel {channel.ChannelID}");
        }
    }
}
