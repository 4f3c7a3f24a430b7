// A plain PNG reader, written for these tests from the standard alone.
using System.Buffers.Binary;
using System.IO.Compression;
using System.Text;

namespace Kelmor.PSD.Tests.Codecs;

/// <summary>A PNG image that is not interlaced, taken apart.</summary>
internal sealed class PngPicture
{
    public PngPicture(byte[] file)
    {
        Assert.Equal([0x89, 0x50, 0x4E, 0x47, 13, 10, 26, 10], file[..8]);
        using var packed = new MemoryStream();
        for (var at = 8; at < file.Length;)
        {
            var length = BinaryPrimitives.ReadInt32BigEndian(file.AsSpan(at));
            var type = Encoding.ASCII.GetString(file, at + 4, 4);
            var data = file.AsSpan(at + 8, length);
            Chunks.Add(type);
            switch (type)
            {
                case "IHDR":
                    (Width, Height) = (
                        BinaryPrimitives.ReadInt32BigEndian(data),
                        BinaryPrimitives.ReadInt32BigEndian(data[4..])
                    );
                    (BitDepth, ColorType, IsInterlaced) = (data[8], data[9], data[12] != 0);
                    break;
                case "PLTE":
                    Palette = data.ToArray();
                    break;
                case "pHYs":
                    PixelsPerMeter = BinaryPrimitives.ReadInt32BigEndian(data);
                    break;
                case "IDAT":
                    packed.Write(data);
                    break;
            }
            at += length + 12;
        }
        packed.Position = 0;
        using var inflater = new ZLibStream(packed, CompressionMode.Decompress);
        using var filtered = new MemoryStream();
        inflater.CopyTo(filtered);
        Rows = IsInterlaced ? [] : Unfilter(filtered.ToArray());
    }

    public List<string> Chunks { get; } = [];

    public int Width { get; }

    public int Height { get; }

    public int BitDepth { get; }

    public int ColorType { get; }

    public bool IsInterlaced { get; }

    public int PixelsPerMeter { get; }

    public byte[] Palette { get; } = [];

    /// <summary>Samples of all rows without the filter bytes.</summary>
    public byte[] Rows { get; }

    private int BitsPerPixel =>
        BitDepth
        * ColorType switch
        {
            2 => 3,
            4 => 2,
            6 => 4,
            _ => 1,
        };

    private byte[] Unfilter(byte[] filtered)
    {
        var rowBytes = (Width * BitsPerPixel + 7) / 8;
        var step = Math.Max(1, BitsPerPixel / 8);
        Assert.Equal((rowBytes + 1) * Height, filtered.Length);
        var rows = new byte[rowBytes * Height];
        for (var y = 0; y < Height; y++)
        {
            var filter = filtered[y * (rowBytes + 1)];
            for (var x = 0; x < rowBytes; x++)
            {
                int left = x < step ? 0 : rows[y * rowBytes + x - step];
                int up = y == 0 ? 0 : rows[(y - 1) * rowBytes + x];
                int corner = x < step || y == 0 ? 0 : rows[(y - 1) * rowBytes + x - step];
                var guess = filter switch
                {
                    0 => 0,
                    1 => left,
                    2 => up,
                    3 => (left + up) / 2,
                    _ => Paeth(left, up, corner),
                };
                rows[y * rowBytes + x] = (byte)(filtered[y * (rowBytes + 1) + 1 + x] + guess);
            }
        }
        return rows;
    }

    private static int Paeth(int left, int up, int corner)
    {
        var guess = left + up - corner;
        var (a, b, c) = (Math.Abs(guess - left), Math.Abs(guess - up), Math.Abs(guess - corner));
        return a <= b && a <= c ? left
            : b <= c ? up
            : corner;
    }
}
