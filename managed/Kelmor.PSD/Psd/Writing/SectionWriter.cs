// Collects a part of a document in memory and fills its lengths in afterwards.
using System.Buffers.Binary;
using Kelmor.PSD.CoreExceptions;

namespace Kelmor.PSD.FileFormats.Psd.Writing;

/// <summary>Big-endian numbers and blocks, one after the other.</summary>
/// <param name="isBig">True for a PSB document, where some lengths have 8 bytes.</param>
internal sealed class SectionWriter(bool isBig)
{
    // Large blocks are kept as they are instead of being copied.
    private const int Small = 4096;

    private readonly List<ReadOnlyMemory<byte>> pieces = [];
    private byte[] open = new byte[Small];
    private int openLength;
    private int openStart;

    public bool IsBig => isBig;

    /// <summary>Bytes written so far.</summary>
    public long Length { get; private set; }

    public void Byte(byte value) => Room(1)[0] = value;

    public void Int16(short value) => BinaryPrimitives.WriteInt16BigEndian(Room(2), value);

    public void Int32(int value) => BinaryPrimitives.WriteInt32BigEndian(Room(4), value);

    public void UInt32(uint value) => BinaryPrimitives.WriteUInt32BigEndian(Room(4), value);

    public void UInt64(ulong value) => BinaryPrimitives.WriteUInt64BigEndian(Room(8), value);

    public void Zeros(int count) => Room(count).Clear();

    /// <summary>A block; it must not change until everything is written.</summary>
    public void Block(ReadOnlyMemory<byte> block)
    {
        if (block.Length <= Small / 4)
        {
            block.Span.CopyTo(Room(block.Length));
            return;
        }
        Close();
        pieces.Add(block);
        Length += block.Length;
    }

    /// <summary>A length of 4 bytes; of 8 in a PSB document.</summary>
    /// <exception cref="ImageSaveException">The length needs a PSB document.</exception>
    public void SectionLength(long length)
    {
        if (isBig)
        {
            UInt64((ulong)length);
        }
        else
        {
            ShortLength(length);
        }
    }

    /// <summary>A length of 4 bytes.</summary>
    /// <exception cref="ImageSaveException">The length does not fit.</exception>
    public void ShortLength(long length) =>
        UInt32(
            length <= uint.MaxValue
                ? (uint)length
                : throw new ImageSaveException(
                    $"A section of {length} bytes is too large for a PSD document; save it as PSB."
                )
        );

    /// <summary>Everything that another writer holds.</summary>
    public void Append(SectionWriter part)
    {
        Close();
        part.Close();
        pieces.AddRange(part.pieces);
        Length += part.Length;
    }

    public void CopyTo(Stream stream)
    {
        Close();
        foreach (var piece in pieces)
        {
            stream.Write(piece.Span);
        }
    }

    /// <summary>All bytes in one block.</summary>
    public byte[] ToArray()
    {
        Close();
        var whole = new byte[Length];
        var at = 0;
        foreach (var piece in pieces)
        {
            piece.CopyTo(whole.AsMemory(at));
            at += piece.Length;
        }
        return whole;
    }

    private Span<byte> Room(int count)
    {
        if (open.Length - openLength < count)
        {
            Close();
            open = new byte[Math.Max(Small, count)];
            openLength = openStart = 0;
        }
        var room = open.AsSpan(openLength, count);
        openLength += count;
        Length += count;
        return room;
    }

    private void Close()
    {
        if (openLength > openStart)
        {
            pieces.Add(open.AsMemory(openStart, openLength - openStart));
            openStart = openLength;
        }
    }
}
