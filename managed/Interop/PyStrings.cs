// Text between the two forms: Python's canonical buffers and UTF-16.
using System.Numerics;
using System.Runtime.InteropServices;
using System.Runtime.Intrinsics;
using System.Text;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Decodes Latin-1, UCS-2 and UCS-4 buffers. Code points above U+FFFF become surrogate pairs; a
/// lone surrogate, which a Python str may hold, is kept as the unit it is.
/// </summary>
internal static unsafe class PyStrings
{
    // Code points in a step. The narrowest vectors, since code with wider ones is not compiled
    // ahead and would cost its first caller a compilation.
    private const int Block = 8;

    /// <summary>The text of a record; null for None.</summary>
    public static string? Decode(PyStringArg* text)
    {
        int length = text->Length;
        if (length <= 0)
        {
            return length < 0 ? null : "";
        }
        return text->CharSize switch
        {
            1 => Encoding.Latin1.GetString((byte*)text->Data, length),
            2 => new string((char*)text->Data, 0, length),
            4 => FromCodePoints(new ReadOnlySpan<uint>(text->Data, length)),
            _ => throw new ArgumentException($"unknown size of a character: {text->CharSize}"),
        };
    }

    /// <summary>The text with U+FFFD in place of each surrogate that has no partner.</summary>
    public static string WithoutLoneSurrogates(string text)
    {
        ReadOnlySpan<char> rest = text;
        if (rest.IndexOfAnyInRange('\uD800', '\uDFFF') < 0)
        {
            return text;
        }
        var plain = new StringBuilder(text.Length);
        foreach (Rune rune in text.EnumerateRunes())
        {
            plain.Append(rune);
        }
        return plain.ToString();
    }

    private static string FromCodePoints(ReadOnlySpan<uint> codePoints)
    {
        int units = checked(codePoints.Length + CountAbove(codePoints));
        return string.Create(units, codePoints, static (target, source) => Narrow(source, target));
    }

    private static int CountAbove(ReadOnlySpan<uint> codePoints)
    {
        int count = 0;
        int i = 0;
        Vector128<uint> limit = Vector128.Create(0xFFFFu);
        for (; i <= codePoints.Length - Vector128<uint>.Count; i += Vector128<uint>.Count)
        {
            Vector128<uint> block = Vector128.Create(codePoints[i..]);
            uint above = Vector128.GreaterThan(block, limit).ExtractMostSignificantBits();
            count += BitOperations.PopCount(above);
        }
        for (; i < codePoints.Length; i++)
        {
            count += codePoints[i] > 0xFFFF ? 1 : 0;
        }
        return count;
    }

    private static void Narrow(ReadOnlySpan<uint> codePoints, Span<char> target)
    {
        int at = 0;
        int i = 0;
        Vector128<uint> limit = Vector128.Create(0xFFFFu);
        Span<ushort> units = MemoryMarshal.Cast<char, ushort>(target);
        for (; i <= codePoints.Length - Block; i += Block)
        {
            Vector128<uint> low = Vector128.Create(codePoints[i..]);
            Vector128<uint> high = Vector128.Create(codePoints[(i + (Block / 2))..]);
            if (Vector128.GreaterThanAny(low | high, limit))
            {
                at = NarrowEach(codePoints.Slice(i, Block), target, at);
                continue;
            }
            Vector128.Narrow(low, high).CopyTo(units[at..]);
            at += Block;
        }
        NarrowEach(codePoints[i..], target, at);
    }

    private static int NarrowEach(ReadOnlySpan<uint> codePoints, Span<char> target, int at)
    {
        foreach (uint codePoint in codePoints)
        {
            if (codePoint <= 0xFFFF)
            {
                target[at++] = (char)codePoint;
                continue;
            }
            uint offset = codePoint - 0x10000;
            target[at++] = (char)(0xD800 + (offset >> 10));
            target[at++] = (char)(0xDC00 + (offset & 0x3FF));
        }
        return at;
    }
}
