// Channels come back from every packing; sizes that data cannot hold are refused at once.
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.Tests.Psd;

public class ChannelCodecTests
{
    public static TheoryData<CompressionMethod, int, bool> Packings()
    {
        var data = new TheoryData<CompressionMethod, int, bool>();
        foreach (var method in Enum.GetValues<CompressionMethod>())
        {
            foreach (var depth in (int[])[1, 8, 16, 32])
            {
                data.Add(method, depth, false);
                data.Add(method, depth, true);
            }
        }
        return data;
    }

    [Theory]
    [MemberData(nameof(Packings))]
    public void Channels_come_back(CompressionMethod method, int depth, bool isBig)
    {
        var layout = new PlaneLayout(37, 11, depth);
        var planes = Enumerable
            .Range(1, 3)
            .Select(seed => Noise(layout.ArrayLength, seed))
            .ToArray();
        var packed = ChannelCodec.Pack(method, planes, layout, isBig);
        Assert.Equal(
            planes,
            ChannelCodec.Unpack(method, packed, layout, 3, isBig, DataRecoveryMode.None)
        );
    }

    [Theory]
    [InlineData(CompressionMethod.Raw)]
    [InlineData(CompressionMethod.Rle)]
    [InlineData(CompressionMethod.ZipWithoutPrediction)]
    [InlineData(CompressionMethod.ZipWithPrediction)]
    public void A_size_that_the_data_cannot_hold_is_refused_before_memory_is_taken(
        CompressionMethod method
    )
    {
        var layout = new PlaneLayout(300_000, 300_000, 32);
        var before = GC.GetAllocatedBytesForCurrentThread();
        foreach (var recovery in Enum.GetValues<DataRecoveryMode>())
        {
            Assert.Throws<PsdImageException>(() =>
                ChannelCodec.Unpack(method, new byte[2000], layout, 4, true, recovery)
            );
        }
        Assert.InRange(GC.GetAllocatedBytesForCurrentThread() - before, 0, 1 << 20);
    }

    [Theory]
    [InlineData(CompressionMethod.Rle)]
    [InlineData(CompressionMethod.ZipWithoutPrediction)]
    [InlineData(CompressionMethod.ZipWithPrediction)]
    public void Data_that_end_too_early_fail_or_are_filled_up(CompressionMethod method)
    {
        var layout = new PlaneLayout(50, 50, 8);
        byte[][] planes = [Noise(layout.ArrayLength, 5)];
        var packed = ChannelCodec.Pack(method, planes, layout, false);
        var half = packed.AsMemory(0, packed.Length / 2);
        Assert.ThrowsAny<FrameworkException>(() =>
            ChannelCodec.Unpack(method, half, layout, 1, false, DataRecoveryMode.None)
        );
        var recovered = ChannelCodec.Unpack(
            method,
            half,
            layout,
            1,
            false,
            DataRecoveryMode.MaximalRecover
        )[0];
        Assert.Equal(planes[0][..200], recovered[..200]);
        Assert.Equal(0, recovered[^1]);
    }

    [Fact]
    public void Row_lengths_change_between_the_variants()
    {
        var layout = new PlaneLayout(20, 4, 8);
        byte[][] planes = [Noise(layout.ArrayLength, 7)];
        var small = ChannelCodec.Pack(CompressionMethod.Rle, planes, layout, false);
        var big = ChannelCodec.Pack(CompressionMethod.Rle, planes, layout, true);
        Assert.Equal(big, ChannelCodec.ChangeRowLengths(small, 4, fromBig: false));
        Assert.Equal(small, ChannelCodec.ChangeRowLengths(big, 4, fromBig: true));
    }

    private static byte[] Noise(int length, int seed)
    {
        var random = new Random(seed);
        var bytes = new byte[length];
        for (var i = 0; i < length; i++)
        {
            bytes[i] =
                random.Next(3) == 0 ? (byte)random.Next(256)
                : i == 0 ? (byte)1
                : bytes[i - 1];
        }
        bytes[^1] = 77;
        return bytes;
    }
}
