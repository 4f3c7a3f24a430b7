// Strings and byte blocks, null and empty included.
using System.Security.Cryptography;

namespace Kelmor.Harness;

/// <summary>Strings, as .NET sees them.</summary>
public static class Texts
{
    /// <summary>The string itself, also null.</summary>
    public static string? Echo(string? text) => text;

    /// <summary>Whether the string came as null.</summary>
    public static bool IsNull(string? text) => text is null;

    /// <summary>Number of UTF-16 units.</summary>
    public static int Length(string text) => text.Length;

    /// <summary>The UTF-16 units, one an element.</summary>
    public static ushort[] Units(string text) => Array.ConvertAll(text.ToCharArray(), c => (ushort)c);

    /// <summary>The string of these UTF-16 units, well-formed or not.</summary>
    public static string FromUnits(ushort[] units) => new(Array.ConvertAll(units, u => (char)u));

    /// <summary>The file name that arrived, for a parameter that takes a str.</summary>
    public static string Join(string first, string second) => first + "|" + second;
}

/// <summary>Byte arrays, as .NET sees them.</summary>
public static class Blocks
{
    /// <summary>A copy of the bytes, or null.</summary>
    public static byte[]? Echo(byte[]? bytes) => bytes;

    /// <summary>Whether the block came as null.</summary>
    public static bool IsNull(byte[]? bytes) => bytes is null;

    /// <summary>Number of bytes.</summary>
    public static int Length(byte[] bytes) => bytes.Length;

    /// <summary>SHA-256 of the bytes, lower-case hexadecimal.</summary>
    public static string Digest(byte[] bytes) => Convert.ToHexStringLower(SHA256.HashData(bytes));

    /// <summary>A new block of this length whose byte i is i modulo 251.</summary>
    public static byte[] Make(int length)
    {
        ArgumentOutOfRangeException.ThrowIfNegative(length);
        var bytes = new byte[length];
        for (int i = 0; i < length; i++) bytes[i] = (byte)(i % 251);
        return bytes;
    }
}
