// Converts samples of any depth to 8 bits and back.
using System.Buffers.Binary;

namespace Kelmor.PSD.FileFormats.Psd.Channels;

internal static class Samples
{
    // Samples of 32 bits are linear light; 8 bits follow the curve of sRGB (IEC 61966-2-1).
    private const float LinearEnd = 0.0031308f;

    private static readonly float[] FromSrgb = Enumerable
        .Range(0, 256)
        .Select(value => Decode(value / 255f))
        .ToArray();

    /// <summary>A part of one row as bytes.</summary>
    /// <param name="plane">The channel.</param>
    /// <param name="layout">Its size.</param>
    /// <param name="x">First sample.</param>
    /// <param name="y">Row.</param>
    /// <param name="bytes">As many samples as are wanted.</param>
    /// <param name="isLight">False for transparency and other samples that are no amount of
    /// light.</param>
    public static void ReadRow(
        ReadOnlySpan<byte> plane,
        PlaneLayout layout,
        int x,
        int y,
        Span<byte> bytes,
        bool isLight
    )
    {
        var row = plane.Slice((int)((long)y * layout.RowBytes), layout.RowBytes);
        switch (layout.Depth)
        {
            case 8:
                row.Slice(x, bytes.Length).CopyTo(bytes);
                break;
            case 16:
                for (var i = 0; i < bytes.Length; i++)
                {
                    bytes[i] = (byte)(
                        (BinaryPrimitives.ReadUInt16BigEndian(row[((x + i) * 2)..]) * 255 + 32767)
                        / 65535
                    );
                }
                break;
            case 32:
                for (var i = 0; i < bytes.Length; i++)
                {
                    var value = BinaryPrimitives.ReadSingleBigEndian(row[((x + i) * 4)..]);
                    bytes[i] = ToByte(isLight ? Encode(value) : value);
                }
                break;
            default:
                for (var i = 0; i < bytes.Length; i++)
                {
                    // A set bit is black.
                    bytes[i] =
                        (row[(x + i) >> 3] >> (7 - ((x + i) & 7)) & 1) != 0 ? (byte)0 : (byte)255;
                }
                break;
        }
    }

    /// <summary>Puts bytes into a part of one row.</summary>
    public static void WriteRow(
        Span<byte> plane,
        PlaneLayout layout,
        int x,
        int y,
        ReadOnlySpan<byte> bytes,
        bool isLight
    )
    {
        var row = plane.Slice((int)((long)y * layout.RowBytes), layout.RowBytes);
        switch (layout.Depth)
        {
            case 8:
                bytes.CopyTo(row[x..]);
                break;
            case 16:
                for (var i = 0; i < bytes.Length; i++)
                {
                    BinaryPrimitives.WriteUInt16BigEndian(
                        row[((x + i) * 2)..],
                        (ushort)(bytes[i] * 257)
                    );
                }
                break;
            case 32:
                for (var i = 0; i < bytes.Length; i++)
                {
                    var value = isLight ? FromSrgb[bytes[i]] : bytes[i] / 255f;
                    BinaryPrimitives.WriteSingleBigEndian(row[((x + i) * 4)..], value);
                }
                break;
            default:
                throw new NotSupportedException("Pixels of one bit cannot be changed.");
        }
    }

    /// <summary>The largest value in every sample.</summary>
    public static void FillOpaque(Span<byte> plane, int depth)
    {
        plane.Fill(255);
        for (var i = 0; depth == 32 && i < plane.Length; i += 4)
        {
            BinaryPrimitives.WriteSingleBigEndian(plane[i..], 1);
        }
    }

    public static byte ToByte(float value) =>
        value >= 1 ? (byte)255
        : value > 0 ? (byte)(value * 255 + 0.5f)
        : (byte)0;

    public static float Encode(float light) =>
        light <= LinearEnd
            ? light * 12.92f
            : 1.055f * MathF.Pow(Math.Min(light, 1), 1 / 2.4f) - 0.055f;

    private static float Decode(float value) =>
        value <= 0.04045f ? value / 12.92f : MathF.Pow((value + 0.055f) / 1.055f, 2.4f);
}
