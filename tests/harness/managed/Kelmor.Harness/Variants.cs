// Values of any type, in and out.
using System.Collections;
using System.Globalization;

namespace Kelmor.Harness;

/// <summary>Parameters and results of type object.</summary>
public static class Variants
{
    /// <summary>The value itself, whatever it is.</summary>
    public static object? Echo(object? value) => value;

    /// <summary>Full name of the value's type, or "null".</summary>
    public static string TypeName(object? value) => value?.GetType().FullName ?? "null";

    /// <summary>Invariant text of the value, or "null".</summary>
    public static string Text(object? value) =>
        value is null ? "null" : Convert.ToString(value, CultureInfo.InvariantCulture) ?? "";

    /// <summary>Number of elements of a collection, or -1.</summary>
    public static int Count(object? value) => value is ICollection items ? items.Count : -1;

    /// <summary>A value of the type that the text names, to be seen by Python.</summary>
    public static object? Make(string type) => type switch
    {
        "null" => null,
        "bool" => true,
        "sbyte" => (sbyte)-5,
        "byte" => (byte)200,
        "short" => (short)-30000,
        "ushort" => (ushort)60000,
        "int" => -2_000_000_000,
        "uint" => 4_000_000_000u,
        "long" => long.MinValue,
        "ulong" => ulong.MaxValue,
        "float" => 0.5f,
        "double" => -0.25,
        "decimal" => 12.340m,
        "char" => 'é',
        "string" => "grün 😀",
        "bytes" => new byte[] { 1, 2, 3 },
        "date" => new DateTime(2020, 2, 29, 12, 30, 15, DateTimeKind.Unspecified),
        "utc" => new DateTime(2020, 2, 29, 12, 30, 15, DateTimeKind.Utc),
        "offset" => new DateTimeOffset(2020, 2, 29, 12, 30, 15, TimeSpan.FromHours(-3)),
        "span" => TimeSpan.FromMilliseconds(-1500),
        "guid" => Guid.Parse("00112233-4455-6677-8899-aabbccddeeff"),
        "counter" => new LoudCounter(3),
        "pair" => new Pair(1, 2),
        "enum" => Shade.Light,
        "array" => new[] { 1, 2, 3 },
        "list" => new List<object?> { 1, "two", null },
        "unbound" => new Uri("http://example.invalid/"),
        _ => throw new ArgumentException($"no value of type '{type}'", nameof(type)),
    };
}
