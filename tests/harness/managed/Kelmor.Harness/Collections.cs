// Arrays, lists, enumerables and enumerators, in and out.
using System.Collections;

namespace Kelmor.Harness;

/// <summary>Collections, managed ones for Python and Python ones for managed code.</summary>
public static class Collections
{
    /// <summary>The array itself, also null.</summary>
    public static int[]? EchoInt32Array(int[]? items) => items;

    /// <summary>The array itself.</summary>
    public static short[] EchoInt16Array(short[] items) => items;

    /// <summary>The array itself.</summary>
    public static double[] EchoDoubleArray(double[] items) => items;

    /// <summary>The array itself.</summary>
    public static string?[] EchoStringArray(string?[] items) => items;

    /// <summary>The array itself.</summary>
    public static Counter?[] EchoCounterArray(Counter?[] items) => items;

    /// <summary>The array itself.</summary>
    public static Pair[] EchoPairArray(Pair[] items) => items;

    /// <summary>Sum of an array of numbers.</summary>
    public static long SumArray(int[] items) => items.Sum(i => (long)i);

    /// <summary>A new array 0, 1, 2, ... of this length.</summary>
    public static int[] MakeRange(int length) => Enumerable.Range(0, length).ToArray();

    /// <summary>The list itself, whoever made it.</summary>
    public static IList? EchoList(IList? items) => items;

    /// <summary>A managed list with these elements: 1, "two", null.</summary>
    public static IList MakeList() => new ArrayList { 1, "two", null };

    /// <summary>A managed array list 0, 1, 2, ...</summary>
    public static ArrayList MakeArrayList(int length) => new(Enumerable.Range(0, length).ToArray());

    /// <summary>Adds an element to the list and gives the new count.</summary>
    public static int AddTo(IList items, object? value)
    {
        items.Add(value);
        return items.Count;
    }

    /// <summary>Texts of all elements, by enumeration, joined by commas.</summary>
    public static string JoinAll(IEnumerable items) =>
        string.Join(",", items.Cast<object?>().Select(Variants.Text));

    /// <summary>Texts of all elements, by index, joined by commas.</summary>
    public static string JoinByIndex(IList items)
    {
        var texts = new List<string>();
        for (int i = 0; i < items.Count; i++) texts.Add(Variants.Text(items[i]));
        return string.Join(",", texts);
    }

    /// <summary>Number of elements of a collection.</summary>
    public static int Count(ICollection items) => items.Count;

    /// <summary>An enumerable 0, 1, 2, ...</summary>
    public static IEnumerable MakeEnumerable(int length) => Enumerable.Range(0, length);

    /// <summary>An enumerator over 0, 1, 2, ...</summary>
    public static IEnumerator MakeEnumerator(int length) =>
        ((IEnumerable)Enumerable.Range(0, length)).GetEnumerator();

    /// <summary>An enumerable that raises after this many elements.</summary>
    public static IEnumerable MakeFailing(int length)
    {
        for (int i = 0; i < length; i++) yield return i;
        throw new InvalidOperationException("the enumeration broke off");
    }

    /// <summary>Draws this many elements from an enumerator and joins their texts.</summary>
    public static string Draw(IEnumerator items, int count)
    {
        var texts = new List<string>();
        while (texts.Count < count && items.MoveNext()) texts.Add(Variants.Text(items.Current));
        return string.Join(",", texts);
    }

    /// <summary>Whether the list holds an equal element.</summary>
    public static bool Contains(IList items, object? value) => items.Contains(value);

    /// <summary>Place of the first equal element, or -1.</summary>
    public static int IndexOf(IList items, object? value) => items.IndexOf(value);

    /// <summary>Inserts before an index.</summary>
    public static void Insert(IList items, int index, object? value) => items.Insert(index, value);

    /// <summary>Replaces the element at an index.</summary>
    public static void Replace(IList items, int index, object? value) => items[index] = value;

    /// <summary>Removes the first equal element.</summary>
    public static void Remove(IList items, object? value) => items.Remove(value);

    /// <summary>Removes the element at an index.</summary>
    public static void RemoveAt(IList items, int index) => items.RemoveAt(index);

    /// <summary>Removes all elements.</summary>
    public static void Clear(IList items) => items.Clear();
}
