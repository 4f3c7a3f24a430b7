// Lays pixels out as the samples of a PNG row.
using System.Buffers.Binary;
using System.Numerics;
using System.Runtime.InteropServices;
using Kelmor.PSD.FileFormats.Png;

namespace Kelmor.PSD.Codecs.Png;

/// <summary>
/// Rows of one colour type and depth; 16-bit samples in the machine's own byte order.
/// </summary>
internal sealed class PngRows(PngColorType type, int depth, int width, IColorPalette? palette)
{
    private readonly Dictionary<int, byte> nearest = [];
    private byte[] packed = [];

    private int Channels =>
        type switch
        {
            PngColorType.Truecolor => 3,
            PngColorType.TruecolorWithAlpha => 4,
            PngColorType.GrayscaleWithAlpha => 2,
            _ => 1,
        };

    /// <summary>Bytes of a row.</summary>
    public int Stride => checked((int)(((long)width * Channels * depth + 7) / 8));

    /// <summary>The samples of whole rows; the block is used again by the next call.</summary>
    public ReadOnlySpan<byte> Pack(ReadOnlySpan<int> pixels, int rows)
    {
        if (packed.Length < Stride * rows)
        {
            packed = new byte[Stride * rows];
        }
        for (var row = 0; row < rows; row++)
        {
            PackRow(pixels.Slice(row * width, width), packed.AsSpan(row * Stride, Stride));
        }
        return packed.AsSpan(0, Stride * rows);
    }

    private void PackRow(ReadOnlySpan<int> pixels, Span<byte> row)
    {
        if (depth == 16)
        {
            PackWords(pixels, MemoryMarshal.Cast<byte, ushort>(row));
        }
        else if (depth < 8)
        {
            PackBits(pixels, row);
        }
        else if (type == PngColorType.TruecolorWithAlpha)
        {
            PackColors(pixels, MemoryMarshal.Cast<byte, uint>(row));
        }
        else
        {
            PackBytes(pixels, row);
        }
    }

    // The usual kind: 0xAARRGGBB turned by a byte is the four samples with the first one highest.
    private static void PackColors(ReadOnlySpan<int> pixels, Span<uint> row)
    {
        for (var i = 0; i < row.Length; i++)
        {
            row[i] = BinaryPrimitives.ReverseEndianness(BitOperations.RotateLeft((uint)pixels[i], 8));
        }
    }

    private void PackBytes(ReadOnlySpan<int> pixels, Span<byte> row)
    {
        var at = 0;
        Span<byte> samples = stackalloc byte[4];
        var channels = Channels;
        foreach (var pixel in pixels)
        {
            SamplesOf(pixel, samples);
            samples[..channels].CopyTo(row[at..]);
            at += channels;
        }
    }

    private void PackWords(ReadOnlySpan<int> pixels, Span<ushort> row)
    {
        var at = 0;
        Span<byte> samples = stackalloc byte[4];
        foreach (var pixel in pixels)
        {
            SamplesOf(pixel, samples);
            for (var channel = 0; channel < Channels; channel++)
            {
                row[at++] = (ushort)(samples[channel] * 257);
            }
        }
    }

    // The leftmost pixel stands in the highest bits (7.2).
    private void PackBits(ReadOnlySpan<int> pixels, Span<byte> row)
    {
        row.Clear();
        var most = (1 << depth) - 1;
        Span<byte> samples = stackalloc byte[4];
        for (var i = 0; i < pixels.Length; i++)
        {
            SamplesOf(pixels[i], samples);
            var value =
                type == PngColorType.IndexedColor ? samples[0] : (samples[0] * most + 127) / 255;
            var bit = i * depth;
            row[bit >> 3] |= (byte)(value << (8 - depth - (bit & 7)));
        }
    }

    private void SamplesOf(int pixel, Span<byte> samples)
    {
        switch (type)
        {
            case PngColorType.TruecolorWithAlpha:
                (samples[0], samples[1], samples[2], samples[3]) = (
                    (byte)(pixel >> 16),
                    (byte)(pixel >> 8),
                    (byte)pixel,
                    (byte)(pixel >> 24)
                );
                break;
            case PngColorType.Truecolor:
                pixel = ColorMath.OnWhite(pixel);
                (samples[0], samples[1], samples[2]) = (
                    (byte)(pixel >> 16),
                    (byte)(pixel >> 8),
                    (byte)pixel
                );
                break;
            case PngColorType.GrayscaleWithAlpha:
                (samples[0], samples[1]) = (ColorMath.Luma(pixel), (byte)(pixel >> 24));
                break;
            case PngColorType.Grayscale:
                samples[0] = ColorMath.Luma(ColorMath.OnWhite(pixel));
                break;
            default:
                samples[0] = IndexOf(pixel);
                break;
        }
    }

    private byte IndexOf(int pixel)
    {
        if (!nearest.TryGetValue(pixel, out var index))
        {
            index = (byte)palette!.GetNearestColorIndex(pixel);
            nearest[pixel] = index;
        }
        return index;
    }
}
