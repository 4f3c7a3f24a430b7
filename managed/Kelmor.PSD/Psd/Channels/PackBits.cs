// Run-length packing of rows (Apple Technical Note TN1023, Understanding PackBits).
using Kelmor.PSD.CoreExceptions.Compressors;

namespace Kelmor.PSD.FileFormats.Psd.Channels;

internal static class PackBits
{
    private const int LongestPiece = 128;

    /// <summary>Most bytes that a row can take when packed.</summary>
    public static int LargestSize(int length) =>
        length + (length + LongestPiece - 1) / LongestPiece;

    /// <summary>Unpacks one row.</summary>
    /// <returns>How many bytes of the row the packed data held; fewer than the row has when they
    /// end too early.</returns>
    public static int Unpack(ReadOnlySpan<byte> packed, Span<byte> row)
    {
        var done = 0;
        var at = 0;
        while (at < packed.Length && done < row.Length)
        {
            int head = (sbyte)packed[at++];
            if (head >= 0)
            {
                var count = Math.Min(Math.Min(head + 1, row.Length - done), packed.Length - at);
                packed.Slice(at, count).CopyTo(row[done..]);
                at += count;
                done += count;
            }
            else if (head != -128 && at < packed.Length)
            {
                var count = Math.Min(1 - head, row.Length - done);
                row.Slice(done, count).Fill(packed[at++]);
                done += count;
            }
        }
        return done;
    }

    /// <summary>Packs one row.</summary>
    /// <param name="row">The row.</param>
    /// <param name="packed">Room for <see cref="LargestSize"/> bytes.</param>
    /// <returns>Number of bytes written.</returns>
    public static int Pack(ReadOnlySpan<byte> row, Span<byte> packed)
    {
        var written = 0;
        var at = 0;
        while (at < row.Length)
        {
            var run = RunLength(row[at..]);
            // A run of two inside of single bytes costs more than it saves, so it stays among them.
            if (run >= 3 || run == 2 && at + 2 == row.Length)
            {
                packed[written++] = (byte)(1 - run);
                packed[written++] = row[at];
                at += run;
                continue;
            }
            var count = SinglesLength(row[at..]);
            packed[written++] = (byte)(count - 1);
            row.Slice(at, count).CopyTo(packed[written..]);
            written += count;
            at += count;
        }
        return written;
    }

    private static int RunLength(ReadOnlySpan<byte> row)
    {
        var end = row[..Math.Min(row.Length, LongestPiece)].IndexOfAnyExcept(row[0]);
        return end < 0 ? Math.Min(row.Length, LongestPiece) : end;
    }

    private static int SinglesLength(ReadOnlySpan<byte> row)
    {
        var most = Math.Min(row.Length, LongestPiece);
        for (var i = 1; i + 2 < most; i++)
        {
            if (row[i] == row[i + 1] && row[i] == row[i + 2])
            {
                return i;
            }
        }
        return most;
    }

    /// <summary>The failure of a row that ends too early.</summary>
    public static RleCompressorException TooShort(int row, int held, int needed) =>
        new($"The run-length packed row {row} holds {held} bytes instead of {needed}.");
}
