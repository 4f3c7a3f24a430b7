// By-reference parameters of every form, alone and beside the results of a call.
namespace Kelmor.Harness;

/// <summary>Changes what it is given by reference.</summary>
public static class References
{
    /// <summary>Exchanges the two values.</summary>
    public static void SwapBool(ref bool first, ref bool second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapInt8(ref sbyte first, ref sbyte second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapUInt8(ref byte first, ref byte second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapInt16(ref short first, ref short second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapUInt16(ref ushort first, ref ushort second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapUInt32(ref uint first, ref uint second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapInt64(ref long first, ref long second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapUInt64(ref ulong first, ref ulong second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapSingle(ref float first, ref float second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapDouble(ref double first, ref double second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapChar(ref char first, ref char second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapSpan(ref TimeSpan first, ref TimeSpan second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapShade(ref Shade first, ref Shade second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapText(ref string? first, ref string? second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapBlock(ref byte[]? first, ref byte[]? second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapAny(ref object? first, ref object? second) =>
        (first, second) = (second, first);

    /// <summary>Exchanges the two values.</summary>
    public static void SwapCounter(ref Counter? first, ref Counter? second) =>
        (first, second) = (second, first);

    /// <summary>
    /// A square of the sum; out come a counter of each half and what they are called.
    /// </summary>
    public static Square Divide(
        int sum, out string? name, out Counter lower, out Shade shade, out Circle upper)
    {
        name = sum < 0 ? "\uD800" : "halves";
        lower = new Counter(sum / 2);
        upper = new Circle(sum - (sum / 2));
        shade = sum < 100 ? Shade.Light : (Shade)99;
        return new Square(sum);
    }

    /// <summary>The text behind the first blank; out come what stands before it and a counter.</summary>
    public static string? Cut(string text, out string head, out Counter length)
    {
        int blank = text.IndexOf(' ');
        head = blank < 0 ? text : text[..blank];
        length = new Counter(text.Length);
        return blank < 0 ? null : text[(blank + 1)..];
    }

    /// <summary>The figure itself; out come its area and what it calls itself.</summary>
    public static IFigure? Measure(IFigure? figure, out double area, out string? name)
    {
        area = figure?.Area ?? 0;
        name = figure?.Describe();
        return figure;
    }

    /// <summary>The number at the front of a text, or null; out comes what stands behind.</summary>
    public static int? Number(string text, out string rest)
    {
        int digits = text.TakeWhile(char.IsAsciiDigit).Count();
        rest = text[digits..];
        return digits > 0 ? int.Parse(text[..digits]) : null;
    }
}
