// Decimals, GUIDs, versions, nullables and by-reference parameters.
using System.Globalization;

namespace Kelmor.Harness;

/// <summary>Decimals, as .NET sees them.</summary>
public static class Decimals
{
    /// <summary>The decimal itself.</summary>
    public static decimal Echo(decimal value) => value;

    /// <summary>The invariant text with all its digits, trailing zeros included.</summary>
    public static string Text(decimal value) => value.ToString(CultureInfo.InvariantCulture);

    /// <summary>The decimal that .NET parses, rounding half to even.</summary>
    public static decimal Parse(string text) =>
        decimal.Parse(text, NumberStyles.Float, CultureInfo.InvariantCulture);

    /// <summary>What .NET parses, as text; empty when it refuses.</summary>
    public static string ParseText(string text) =>
        decimal.TryParse(text, NumberStyles.Float, CultureInfo.InvariantCulture, out decimal value)
            ? value.ToString(CultureInfo.InvariantCulture)
            : "";

    /// <summary>The four words of the decimal: low, middle, high, flags.</summary>
    public static int[] Bits(decimal value) => decimal.GetBits(value);

    /// <summary>The decimal of these four words.</summary>
    public static decimal FromBits(int low, int middle, int high, bool negative, byte scale) =>
        new(low, middle, high, negative, scale);
}

/// <summary>GUIDs, versions and values that may be absent.</summary>
public static class Others
{
    /// <summary>The GUID itself.</summary>
    public static Guid EchoGuid(Guid value) => value;

    /// <summary>The text of the GUID, lower case with hyphens.</summary>
    public static string GuidText(Guid value) => value.ToString();

    /// <summary>The GUID of a text.</summary>
    public static Guid GuidFrom(string text) => Guid.Parse(text);

    /// <summary>The version itself, also null.</summary>
    public static Version? EchoVersion(Version? value) => value;

    /// <summary>The text of the version, or "null".</summary>
    public static string VersionText(Version? value) => value?.ToString() ?? "null";

    /// <summary>The number itself, or null.</summary>
    public static int? EchoNullableInt32(int? value) => value;

    /// <summary>The number itself, or null.</summary>
    public static double? EchoNullableDouble(double? value) => value;

    /// <summary>The truth value itself, or null.</summary>
    public static bool? EchoNullableBool(bool? value) => value;

    /// <summary>The date itself, or null.</summary>
    public static DateTime? EchoNullableDate(DateTime? value) => value;

    /// <summary>The member itself, or null.</summary>
    public static Shade? EchoNullableShade(Shade? value) => value;

    /// <summary>Whether anything came.</summary>
    public static bool HasValue(int? value) => value.HasValue;

    /// <summary>Doubles the number into <paramref name="result"/>; false for an odd one, which gives 0.</summary>
    public static bool TryDouble(int number, out int result)
    {
        result = number % 2 == 0 ? number * 2 : 0;
        return number % 2 == 0;
    }

    /// <summary>Exchanges the two numbers.</summary>
    public static void Swap(ref int first, ref int second) => (first, second) = (second, first);

    /// <summary>Splits a text at its first blank.</summary>
    public static void Split(string text, out string head, out string? tail)
    {
        int blank = text.IndexOf(' ');
        head = blank < 0 ? text : text[..blank];
        tail = blank < 0 ? null : text[(blank + 1)..];
    }
}
