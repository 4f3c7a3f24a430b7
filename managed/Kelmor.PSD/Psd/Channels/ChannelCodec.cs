// Packs and unpacks channels (Photoshop File Formats Specification, Channel Image Data).
using System.Buffers.Binary;
using System.IO.Compression;
using Kelmor.PSD.CoreExceptions.Compressors;
using Kelmor.PSD.CoreExceptions.ImageFormats;

namespace Kelmor.PSD.FileFormats.Psd.Channels;

internal static class ChannelCodec
{
    // No more than this can come out of one packed byte: two bytes of PackBits give 128, deflate
    // has 1032 to 1.
    private const int MostFromPackBits = 64;
    private const int MostFromDeflate = 1032;

    // Damaged data may be filled up with zeros to this size, whatever they hold.
    private const long AlwaysAllowed = 1 << 20;

    /// <summary>Unpacks channels of equal size that are packed together.</summary>
    /// <param name="method">How they are packed.</param>
    /// <param name="packed">The packed data without the compression field.</param>
    /// <param name="layout">Size of one channel.</param>
    /// <param name="channels">Number of channels.</param>
    /// <param name="isBig">True: the row lengths of packed rows have 4 bytes.</param>
    /// <param name="recovery">What to do when the data are too short or damaged.</param>
    public static byte[][] Unpack(
        CompressionMethod method,
        ReadOnlyMemory<byte> packed,
        PlaneLayout layout,
        int channels,
        bool isBig,
        DataRecoveryMode recovery
    )
    {
        VerifyHoldable(method, packed.Length, layout, channels, isBig, recovery);
        var planes = new byte[channels][];
        for (var i = 0; i < channels; i++)
        {
            planes[i] = new byte[layout.ArrayLength];
        }
        switch (method)
        {
            case CompressionMethod.Raw:
                UnpackRaw(packed.Span, planes);
                break;
            case CompressionMethod.Rle:
                UnpackRows(packed.Span, planes, layout, isBig, recovery);
                break;
            default:
                Inflate(packed, planes, recovery);
                if (method == CompressionMethod.ZipWithPrediction)
                {
                    Array.ForEach(planes, plane => Prediction.Undo(plane, layout));
                }
                break;
        }
        return planes;
    }

    /// <summary>Packs channels of equal size together.</summary>
    public static byte[] Pack(
        CompressionMethod method,
        byte[][] planes,
        PlaneLayout layout,
        bool isBig
    ) =>
        method switch
        {
            CompressionMethod.Raw => Joined(planes),
            CompressionMethod.Rle => PackRows(planes, layout, isBig),
            CompressionMethod.ZipWithPrediction => Deflate(
                planes.Select(plane => Prediction.Apply(plane, layout))
            ),
            _ => Deflate(planes),
        };

    /// <summary>
    /// Gives packed rows other row lengths: 2 bytes in PSD, 4 in PSB. The rows stay as they are.
    /// </summary>
    public static byte[]? ChangeRowLengths(ReadOnlySpan<byte> packed, int rows, bool fromBig)
    {
        var (oldSize, newSize) = fromBig ? (4, 2) : (2, 4);
        if (packed.Length < (long)rows * oldSize)
        {
            return null;
        }
        var changed = new byte[checked(packed.Length + rows * (newSize - oldSize))];
        for (var row = 0; row < rows; row++)
        {
            var length = RowLength(packed, row, fromBig);
            if (fromBig && length > ushort.MaxValue)
            {
                return null;
            }
            WriteRowLength(changed, row, (int)length, !fromBig);
        }
        packed[(rows * oldSize)..].CopyTo(changed.AsSpan(rows * newSize));
        return changed;
    }

    private static void VerifyHoldable(
        CompressionMethod method,
        long packed,
        PlaneLayout layout,
        int channels,
        bool isBig,
        DataRecoveryMode recovery
    )
    {
        var needed = layout.Bytes * channels;
        long table =
            method == CompressionMethod.Rle ? (long)layout.Height * channels * (isBig ? 4 : 2) : 0;
        var most = method switch
        {
            CompressionMethod.Raw => packed,
            CompressionMethod.Rle => Math.Max(0, packed - table) * MostFromPackBits,
            CompressionMethod.ZipWithoutPrediction or CompressionMethod.ZipWithPrediction => packed
                * MostFromDeflate,
            _ => throw new PsdImageException(
                $"The channel data are damaged: the compression method {(int)method} is not known."
            ),
        };
        if (recovery == DataRecoveryMode.MaximalRecover)
        {
            most = Math.Max(AlwaysAllowed, packed * MostFromDeflate);
        }
        if (needed > most)
        {
            throw new PsdImageException(
                $"The channel data are damaged: {packed} bytes cannot hold {channels} "
                    + $"channels of {layout.Width} x {layout.Height} samples of {layout.Depth} bits."
            );
        }
    }

    private static void UnpackRaw(ReadOnlySpan<byte> packed, byte[][] planes)
    {
        foreach (var plane in planes)
        {
            var count = Math.Min(plane.Length, packed.Length);
            packed[..count].CopyTo(plane);
            packed = packed[count..];
        }
    }

    private static void UnpackRows(
        ReadOnlySpan<byte> packed,
        byte[][] planes,
        PlaneLayout layout,
        bool isBig,
        DataRecoveryMode recovery
    )
    {
        var rows = layout.Height * planes.Length;
        var at = Math.Min(packed.Length, (long)rows * (isBig ? 4 : 2));
        var rowBytes = layout.RowBytes;
        for (var row = 0; row < rows; row++)
        {
            var length = Math.Min(RowLength(packed, row, isBig), packed.Length - at);
            var target = planes[row / layout.Height]
                .AsSpan(row % layout.Height * rowBytes, rowBytes);
            var held = PackBits.Unpack(packed.Slice((int)at, (int)length), target);
            if (held < rowBytes && recovery != DataRecoveryMode.MaximalRecover)
            {
                throw PackBits.TooShort(row, held, rowBytes);
            }
            at += length;
        }
    }

    private static long RowLength(ReadOnlySpan<byte> packed, int row, bool isBig)
    {
        var size = isBig ? 4 : 2;
        if ((row + 1L) * size > packed.Length)
        {
            return 0;
        }
        var field = packed[(row * size)..];
        return isBig
            ? BinaryPrimitives.ReadUInt32BigEndian(field)
            : BinaryPrimitives.ReadUInt16BigEndian(field);
    }

    private static void WriteRowLength(Span<byte> packed, int row, int length, bool isBig)
    {
        if (isBig)
        {
            BinaryPrimitives.WriteInt32BigEndian(packed[(row * 4)..], length);
        }
        else
        {
            BinaryPrimitives.WriteUInt16BigEndian(packed[(row * 2)..], checked((ushort)length));
        }
    }

    private static byte[] PackRows(byte[][] planes, PlaneLayout layout, bool isBig)
    {
        var rows = layout.Height * planes.Length;
        var rowBytes = layout.RowBytes;
        var row = new byte[PackBits.LargestSize(rowBytes)];
        var lengths = new byte[rows * (isBig ? 4 : 2)];
        // Room for the worst case is not touched before it is needed.
        var most = lengths.LongLength + (long)rows * row.Length;
        using var packed = new MemoryStream((int)Math.Min(most, Array.MaxLength));
        packed.Write(lengths);
        for (var i = 0; i < rows; i++)
        {
            var source = planes[i / layout.Height].AsSpan(i % layout.Height * rowBytes, rowBytes);
            var length = PackBits.Pack(source, row);
            WriteRowLength(lengths, i, length, isBig);
            packed.Write(row, 0, length);
        }
        packed.Position = 0;
        packed.Write(lengths);
        return packed.ToArray();
    }

    private static void Inflate(
        ReadOnlyMemory<byte> packed,
        byte[][] planes,
        DataRecoveryMode recovery
    )
    {
        try
        {
            using var source = new MemoryStream(packed.ToArray(), false);
            using var inflater = new ZLibStream(source, CompressionMode.Decompress);
            foreach (var plane in planes)
            {
                var count = inflater.ReadAtLeast(plane, plane.Length, throwOnEndOfStream: false);
                if (count < plane.Length && recovery != DataRecoveryMode.MaximalRecover)
                {
                    throw new DeflateCompressorException(
                        $"The deflated channel holds {count} bytes instead of {plane.Length}."
                    );
                }
            }
        }
        catch (InvalidDataException) when (recovery == DataRecoveryMode.MaximalRecover)
        {
            // What was inflated before the damage stays.
        }
        catch (InvalidDataException damage)
        {
            throw new DeflateCompressorException("The deflated channel data are damaged.", damage);
        }
    }

    private static byte[] Deflate(IEnumerable<byte[]> planes)
    {
        using var packed = new MemoryStream();
        using (var deflater = new ZLibStream(packed, CompressionLevel.Optimal, leaveOpen: true))
        {
            foreach (var plane in planes)
            {
                deflater.Write(plane);
            }
        }
        return packed.ToArray();
    }

    private static byte[] Joined(byte[][] planes)
    {
        var joined = new byte[checked(planes.Sum(plane => plane.Length))];
        var at = 0;
        foreach (var plane in planes)
        {
            plane.CopyTo(joined, at);
            at += plane.Length;
        }
        return joined;
    }
}
