// Fits values that came from Python to managed element types, and compares as Python does.
using System.Globalization;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// A Python int arrives as the narrowest integer that holds it, whatever the collection holds; so a
/// value is fitted to the element type before it is stored, and numbers are compared by value.
/// </summary>
internal static class Variants
{
    /// <summary>The value as an element of the type; throws when it does not fit.</summary>
    public static object? Fit(object? value, Type type)
    {
        Type target = Nullable.GetUnderlyingType(type) ?? type;
        if (value is null)
        {
            return !type.IsValueType || type != target ? null : throw NoFit(value, type);
        }
        if (type.IsInstanceOfType(value))
        {
            return value;
        }
        if (target.IsEnum && IsInteger(value))
        {
            return Enum.ToObject(target, Fit(value, Enum.GetUnderlyingType(target))!);
        }
        if (target == typeof(char) && value is string { Length: 1 } text)
        {
            return text[0];
        }
        if (target.IsPrimitive && IsNumber(value) && target != typeof(bool)
            && target != typeof(char) && Converts(value, target))
        {
            return Convert.ChangeType(value, target, CultureInfo.InvariantCulture);
        }
        throw NoFit(value, type);
    }

    /// <summary>Equality as Python sees it: numbers by value, everything else by Equals.</summary>
    public static bool AreEqual(object? left, object? right)
    {
        if (left is null || right is null)
        {
            return left is null && right is null;
        }
        if (left.Equals(right))
        {
            return true;
        }
        if (left.GetType() == right.GetType() || !IsNumber(left) || !IsNumber(right))
        {
            return false;
        }
        return CompareNumbers(left, right) == 0;
    }

    /// <summary>
    /// Order for sorting: text by its units and not by a culture, numbers by value, everything else
    /// by its own comparison; null comes first.
    /// </summary>
    public static int Compare(object? left, object? right)
    {
        if (left is string text && right is string other)
        {
            return string.CompareOrdinal(text, other);
        }
        if (left is not null && right is not null && left.GetType() != right.GetType()
            && IsNumber(left) && IsNumber(right))
        {
            return CompareNumbers(left, right);
        }
        return Comparer<object?>.Default.Compare(left, right);
    }

    private static int CompareNumbers(object left, object right)
    {
        if (left is double or float || right is double or float)
        {
            return ToDouble(left).CompareTo(ToDouble(right));
        }
        return ToDecimal(left).CompareTo(ToDecimal(right));
    }

    private static double ToDouble(object value) =>
        Convert.ToDouble(value, CultureInfo.InvariantCulture);

    private static decimal ToDecimal(object value) =>
        value is Enum
            ? ToDecimal(Convert.ChangeType(value, Enum.GetUnderlyingType(value.GetType())))
            : Convert.ToDecimal(value, CultureInfo.InvariantCulture);

    private static bool IsInteger(object value) =>
        value is int or long or ulong or byte or short or ushort or uint or sbyte;

    private static bool IsNumber(object value) =>
        IsInteger(value) || value is double or float or decimal or Enum;

    // A float is never cut to an integer behind the caller's back.
    private static bool Converts(object value, Type target) =>
        IsInteger(value) || target == typeof(double) || target == typeof(float);

    private static InvalidCastException NoFit(object? value, Type type) =>
        new($"A value of type '{value?.GetType().ToString() ?? "None"}' does not fit '{type}'.");
}
