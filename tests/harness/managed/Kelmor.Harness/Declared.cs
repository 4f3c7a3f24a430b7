// Values that come back as what they are declared to be: collections and nullables of every form.
using System.Collections;

namespace Kelmor.Harness;

/// <summary>A collection of its own class.</summary>
public class Shelf : CollectionBase
{
    /// <summary>Puts a value on the shelf.</summary>
    public void Put(object? value) => List.Add(value);
}

/// <summary>A read-only collection of its own class.</summary>
public class Showcase : ReadOnlyCollectionBase
{
    /// <summary>A showcase with 0, 1, 2, ...</summary>
    public Showcase(int length) => InnerList.AddRange(Enumerable.Range(0, length).ToArray());
}

/// <summary>Gives each value back by its declared type.</summary>
public static class Declared
{
    /// <summary>The collection itself.</summary>
    public static ICollection? EchoCollection(ICollection? items) => items;

    /// <summary>The enumerable itself.</summary>
    public static IEnumerable? EchoEnumerable(IEnumerable? items) => items;

    /// <summary>The enumerator itself.</summary>
    public static IEnumerator? EchoEnumerator(IEnumerator? items) => items;

    /// <summary>The array itself.</summary>
    public static Array? EchoArray(Array? items) => items;

    /// <summary>The list itself.</summary>
    public static ArrayList? EchoArrayList(ArrayList? items) => items;

    /// <summary>The collection itself.</summary>
    public static CollectionBase? EchoCollectionBase(CollectionBase? items) => items;

    /// <summary>The collection itself.</summary>
    public static ReadOnlyCollectionBase? EchoReadOnlyCollectionBase(
        ReadOnlyCollectionBase? items) => items;

    /// <summary>The object itself.</summary>
    public static IDisposable? EchoDisposable(IDisposable? value) => value;

    /// <summary>The list itself.</summary>
    public static List<int>? EchoNumbers(List<int>? items) => items;

    /// <summary>The list itself.</summary>
    public static IList<string?>? EchoTexts(IList<string?>? items) => items;

    /// <summary>The enumerable itself.</summary>
    public static IEnumerable<int>? EchoSequence(IEnumerable<int>? items) => items;

    /// <summary>The enumerator itself.</summary>
    public static IEnumerator<int>? EchoWalk(IEnumerator<int>? items) => items;

    /// <summary>Rows of numbers, as they came.</summary>
    public static double[][]? EchoRows(double[][]? rows) => rows;

    /// <summary>Members, as they came.</summary>
    public static Shade[]? EchoShades(Shade[]? items) => items;

    /// <summary>Figures, as they came.</summary>
    public static IFigure?[]? EchoFigures(IFigure?[]? items) => items;

    /// <summary>Values of any form, as they came.</summary>
    public static object?[]? EchoValues(object?[]? items) => items;

    /// <summary>The number itself, or null.</summary>
    public static ulong? EchoNullableUInt64(ulong? value) => value;

    /// <summary>The number itself, or null.</summary>
    public static float? EchoNullableSingle(float? value) => value;

    /// <summary>The character itself, or null.</summary>
    public static char? EchoNullableChar(char? value) => value;

    /// <summary>The span itself, or null.</summary>
    public static TimeSpan? EchoNullableSpan(TimeSpan? value) => value;

    /// <summary>The date with its offset itself, or null.</summary>
    public static DateTimeOffset? EchoNullableOffset(DateTimeOffset? value) => value;

    /// <summary>The decimal itself, or null.</summary>
    public static decimal? EchoNullableDecimal(decimal? value) => value;

    /// <summary>The GUID itself, or null.</summary>
    public static Guid? EchoNullableGuid(Guid? value) => value;

    /// <summary>The pair itself, or null.</summary>
    public static Pair? EchoNullablePair(Pair? value) => value;
}
