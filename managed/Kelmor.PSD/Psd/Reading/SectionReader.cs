// Reads big-endian numbers out of a part of a document and never past its end.
using System.Buffers.Binary;
using Kelmor.PSD.CoreExceptions.ImageFormats;

namespace Kelmor.PSD.FileFormats.Psd.Reading;

/// <summary>A part of a document with a reading position.</summary>
/// <param name="data">The bytes of the part.</param>
/// <param name="title">What the part is called in messages.</param>
/// <param name="isBig">True in a PSB document, where some lengths have 8 bytes.</param>
internal sealed class SectionReader(ReadOnlyMemory<byte> data, string title, bool isBig)
{
    public int Position { get; private set; }

    public int Remaining => data.Length - Position;

    public bool IsBig => isBig;

    public byte Byte(string field) => Span(1, field)[0];

    public short Int16(string field) => BinaryPrimitives.ReadInt16BigEndian(Span(2, field));

    public ushort UInt16(string field) => BinaryPrimitives.ReadUInt16BigEndian(Span(2, field));

    public int Int32(string field) => BinaryPrimitives.ReadInt32BigEndian(Span(4, field));

    public uint UInt32(string field) => BinaryPrimitives.ReadUInt32BigEndian(Span(4, field));

    public ulong UInt64(string field) => BinaryPrimitives.ReadUInt64BigEndian(Span(8, field));

    public double Double(string field) => BinaryPrimitives.ReadDoubleBigEndian(Span(8, field));

    /// <summary>A length of 4 bytes; of 8 in a PSB document.</summary>
    public ulong Length(string field) => isBig ? UInt64(field) : UInt32(field);

    /// <summary>The next bytes, which must all be there.</summary>
    /// <exception cref="PsdImageException">The part ends before.</exception>
    public ReadOnlyMemory<byte> Take(ulong count, string field)
    {
        if (count > (ulong)Remaining)
        {
            throw new PsdImageException(
                $"The {title} is damaged: {field} needs {count} bytes at offset "
                    + $"{Position}, but {Remaining} are left."
            );
        }
        var taken = data.Slice(Position, (int)count);
        Position += (int)count;
        return taken;
    }

    /// <summary>The next bytes as a part of their own.</summary>
    public SectionReader Part(ulong count, string partTitle) =>
        new(Take(count, partTitle), partTitle, isBig);

    /// <summary>At most so many of the next bytes.</summary>
    public ReadOnlyMemory<byte> TakeUpTo(ulong count, string field) =>
        Take(Math.Min(count, (ulong)Remaining), field);

    public ReadOnlyMemory<byte> TakeRest() => Take((ulong)Remaining, "the rest");

    /// <summary>The bytes from a position up to the present one.</summary>
    public ReadOnlyMemory<byte> Since(int position) => data[position..Position];

    /// <summary>A four-letter code at a distance ahead, or 0 when the part ends before.</summary>
    public uint PeekCode(int ahead = 0) =>
        Remaining - ahead >= 4
            ? BinaryPrimitives.ReadUInt32BigEndian(data.Span[(Position + ahead)..])
            : 0;

    public void GoTo(int position) => Position = Math.Clamp(position, 0, data.Length);

    private ReadOnlySpan<byte> Span(int count, string field) => Take((ulong)count, field).Span;
}
