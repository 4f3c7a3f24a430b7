// Differences between neighbours, which deflate packs better (Photoshop TIFF Technical Notes).
using System.Buffers.Binary;

namespace Kelmor.PSD.FileFormats.Psd.Channels;

internal static class Prediction
{
    /// <summary>Sums the differences of each row up, in place.</summary>
    public static void Undo(byte[] plane, PlaneLayout layout)
    {
        var rowBytes = layout.RowBytes;
        var order = new byte[layout.Depth == 32 ? rowBytes : 0];
        for (var start = 0; rowBytes > 0 && start < plane.Length; start += rowBytes)
        {
            var row = plane.AsSpan(start, rowBytes);
            if (layout.Depth == 16)
            {
                SumWords(row);
                continue;
            }
            SumBytes(row);
            if (layout.Depth == 32)
            {
                JoinBytes(row, order, layout.Width);
            }
        }
    }

    /// <summary>
    /// A copy of the channel with the differences of each row in place of the samples.
    /// </summary>
    public static byte[] Apply(byte[] plane, PlaneLayout layout)
    {
        var changed = (byte[])plane.Clone();
        var rowBytes = layout.RowBytes;
        for (var start = 0; rowBytes > 0 && start < plane.Length; start += rowBytes)
        {
            var row = changed.AsSpan(start, rowBytes);
            if (layout.Depth == 16)
            {
                SubtractWords(row);
                continue;
            }
            if (layout.Depth == 32)
            {
                SplitBytes(plane.AsSpan(start, rowBytes), row, layout.Width);
            }
            SubtractBytes(row);
        }
        return changed;
    }

    private static void SumBytes(Span<byte> row)
    {
        for (var i = 1; i < row.Length; i++)
        {
            row[i] += row[i - 1];
        }
    }

    private static void SubtractBytes(Span<byte> row)
    {
        for (var i = row.Length - 1; i > 0; i--)
        {
            row[i] -= row[i - 1];
        }
    }

    private static void SumWords(Span<byte> row)
    {
        ushort sum = 0;
        for (var i = 0; i + 1 < row.Length; i += 2)
        {
            sum += BinaryPrimitives.ReadUInt16BigEndian(row[i..]);
            BinaryPrimitives.WriteUInt16BigEndian(row[i..], sum);
        }
    }

    private static void SubtractWords(Span<byte> row)
    {
        for (var i = row.Length - 2; i >= 2; i -= 2)
        {
            var difference =
                BinaryPrimitives.ReadUInt16BigEndian(row[i..])
                - BinaryPrimitives.ReadUInt16BigEndian(row[(i - 2)..]);
            BinaryPrimitives.WriteUInt16BigEndian(row[i..], unchecked((ushort)difference));
        }
    }

    // Rows of 32 bits hold the first bytes of all samples, then all second ones, and so on.
    private static void JoinBytes(Span<byte> row, Span<byte> order, int width)
    {
        row.CopyTo(order);
        for (var i = 0; i < row.Length; i++)
        {
            row[i] = order[(i & 3) * width + (i >> 2)];
        }
    }

    private static void SplitBytes(ReadOnlySpan<byte> row, Span<byte> split, int width)
    {
        for (var i = 0; i < row.Length; i++)
        {
            split[(i & 3) * width + (i >> 2)] = row[i];
        }
    }
}
