// Values that go in alone and come out alone, so that each way can be looked at by itself.
namespace Kelmor.Harness;

/// <summary>Takes a value of each form and gives back the one that it took last.</summary>
public static class Kept
{
    private static bool s_bool;
    private static int s_int32;
    private static double s_double;
    private static string? s_text;
    private static byte[]? s_block;
    private static DateTime s_date;
    private static TimeSpan s_span;
    private static decimal s_decimal;
    private static Guid s_guid;
    private static object? s_variant;

    /// <summary>Does nothing.</summary>
    public static void Nothing() { }

    /// <summary>Keeps the truth value.</summary>
    public static void TakeBool(bool value) => s_bool = value;

    /// <summary>The truth value kept last.</summary>
    public static bool GiveBool() => s_bool;

    /// <summary>Keeps the number.</summary>
    public static void TakeInt32(int value) => s_int32 = value;

    /// <summary>The number kept last.</summary>
    public static int GiveInt32() => s_int32;

    /// <summary>Keeps the number.</summary>
    public static void TakeDouble(double value) => s_double = value;

    /// <summary>The number kept last.</summary>
    public static double GiveDouble() => s_double;

    /// <summary>Keeps the string.</summary>
    public static void TakeText(string? value) => s_text = value;

    /// <summary>The string kept last.</summary>
    public static string? GiveText() => s_text;

    /// <summary>Keeps the bytes.</summary>
    public static void TakeBlock(byte[]? value) => s_block = value;

    /// <summary>The bytes kept last.</summary>
    public static byte[]? GiveBlock() => s_block;

    /// <summary>Keeps the date.</summary>
    public static void TakeDate(DateTime value) => s_date = value;

    /// <summary>The date kept last.</summary>
    public static DateTime GiveDate() => s_date;

    /// <summary>Keeps the span.</summary>
    public static void TakeSpan(TimeSpan value) => s_span = value;

    /// <summary>The span kept last.</summary>
    public static TimeSpan GiveSpan() => s_span;

    /// <summary>Keeps the decimal.</summary>
    public static void TakeDecimal(decimal value) => s_decimal = value;

    /// <summary>The decimal kept last.</summary>
    public static decimal GiveDecimal() => s_decimal;

    /// <summary>Keeps the GUID.</summary>
    public static void TakeGuid(Guid value) => s_guid = value;

    /// <summary>The GUID kept last.</summary>
    public static Guid GiveGuid() => s_guid;

    /// <summary>Keeps the value, whatever it is.</summary>
    public static void TakeAny(object? value) => s_variant = value;

    /// <summary>The value kept last, whatever it is.</summary>
    public static object? GiveAny() => s_variant;
}
