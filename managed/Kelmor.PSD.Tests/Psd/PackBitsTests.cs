// Rows are packed and unpacked without loss, and damaged ones never write past their end.
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.Tests.Psd;

public class PackBitsTests
{
    [Theory]
    [InlineData(new byte[] { }, new byte[] { })]
    [InlineData(new byte[] { 7 }, new byte[] { 0, 7 })]
    [InlineData(new byte[] { 7, 7 }, new byte[] { 255, 7 })]
    [InlineData(new byte[] { 7, 7, 7 }, new byte[] { 254, 7 })]
    [InlineData(new byte[] { 1, 2, 3 }, new byte[] { 2, 1, 2, 3 })]
    [InlineData(new byte[] { 1, 2, 2, 3 }, new byte[] { 3, 1, 2, 2, 3 })]
    [InlineData(new byte[] { 1, 2, 2, 2, 3 }, new byte[] { 0, 1, 254, 2, 0, 3 })]
    public void A_row_is_packed_as_the_method_has_it(byte[] row, byte[] packed)
    {
        var room = new byte[PackBits.LargestSize(row.Length)];
        Assert.Equal(packed, room[..PackBits.Pack(row, room)]);
    }

    [Theory]
    [InlineData(1)]
    [InlineData(127)]
    [InlineData(128)]
    [InlineData(129)]
    [InlineData(256)]
    [InlineData(1000)]
    public void Random_rows_come_back_and_fit_into_the_promised_room(int length)
    {
        var random = new Random(length);
        for (var round = 0; round < 200; round++)
        {
            var row = new byte[length];
            for (var i = 0; i < length; i++)
            {
                row[i] = (byte)random.Next(round % 4 + 1);
            }
            var room = new byte[PackBits.LargestSize(length)];
            var count = PackBits.Pack(row, room);
            var back = new byte[length];
            Assert.Equal(length, PackBits.Unpack(room.AsSpan(0, count), back));
            Assert.Equal(row, back);
        }
    }

    [Theory]
    [InlineData(new byte[] { 5, 1, 2 }, 2)] // says six bytes, has two
    [InlineData(new byte[] { 200 }, 0)] // a run without its byte
    [InlineData(new byte[] { 128, 128, 0, 9 }, 1)] // 128 does nothing
    [InlineData(new byte[] { 129, 9 }, 4)] // a run of 128 into a row of four
    public void Damaged_rows_end_where_the_row_or_the_data_end(byte[] packed, int held)
    {
        Assert.Equal(held, PackBits.Unpack(packed, new byte[4]));
    }
}
