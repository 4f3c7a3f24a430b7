// What the entries of element-typed collections do; generated code adds the forms of the element.
using System.Collections;

namespace Kelmor.WrpGen.Interop;

/// <summary>Operations that typed arrays and lists share.</summary>
internal static unsafe class GenericArrayApi<T>
{
    /// <summary>The length; -1 never occurs without an exception.</summary>
    public static int Length(nint self) => List(self).Count;

    /// <summary>0 with the item, or 2 when the index is out of range.</summary>
    public static int TryGet(nint self, int index, out T? item) =>
        ListOps<T>.TryGet(List(self), index, out item);

    /// <summary>The item at an index that is known to be inside.</summary>
    public static T Get(nint self, int index) => List(self)[index];

    /// <summary>0 when set, or 2 when the index is out of range.</summary>
    public static int TrySet(nint self, int index, T item) =>
        ListOps<T>.TrySet(List(self), index, item);

    /// <summary>Sets at an index that is known to be inside.</summary>
    public static void Set(nint self, int index, T item) => List(self)[index] = item;

    /// <summary>1 or 0.</summary>
    public static int Contains(nint self, T item) => ListOps<T>.Contains(List(self), item);

    /// <summary>How many items are equal.</summary>
    public static int CountOf(nint self, T item) => ListOps<T>.CountOf(List(self), item);

    /// <summary>The first equal item between the bounds, or -1.</summary>
    public static int IndexBy(nint self, int hasStart, int start, int hasStop, int stop, T item) =>
        ListOps<T>.IndexBy(
            List(self), hasStart != 0 ? start : null, hasStop != 0 ? stop : null, item);

    /// <summary>1 when the slice was written from another managed collection, else 0.</summary>
    public static int SetItems(nint self, VariantArg* source, int start, int count, int step) =>
        ListOps<T>.SetItems(
            List(self), Handles.Optional<object>(source->Value), start, count, step);

    /// <summary>Turns the order round.</summary>
    public static void Reverse(nint self) => ListOps<T>.Reverse(List(self));

    /// <summary>Sorts, stably.</summary>
    public static void Sort(nint self, int reverse) => ListOps<T>.Sort(List(self), reverse != 0);

    private static IList<T> List(nint self)
    {
        Bridge.Enter();
        return Handles.Target<IList<T>>(self);
    }
}

/// <summary>Operations that only typed lists have.</summary>
internal static unsafe class GenericListApi<T>
{
    /// <summary>Appends.</summary>
    public static void Add(nint self, T item) => List(self).Add(item);

    /// <summary>1 when an equal item was removed, else 0.</summary>
    public static int Remove(nint self, T item) => ListOps<T>.Remove(List(self), item);

    /// <summary>Removes everything.</summary>
    public static void Clear(nint self) => List(self).Clear();

    /// <summary>Inserts; an index outside means the nearest end.</summary>
    public static void Insert(nint self, int index, T item) =>
        ListOps<T>.Insert(List(self), index, item);

    /// <summary>0 when removed, or 2 when the index is out of range.</summary>
    public static int RemoveAt(nint self, int index) => ListOps<T>.RemoveAt(List(self), index);

    /// <summary>
    /// 0 with the item, 1 when the list is empty, 2 when the index is out of range.
    /// </summary>
    public static int Pop(nint self, int hasIndex, int index, out T? item) =>
        ListOps<T>.Pop(List(self), hasIndex != 0, index, out item);

    /// <summary>1 when another managed collection was appended, else 0.</summary>
    public static int Concat(nint self, VariantArg* source) =>
        ListOps<T>.Concat(List(self), Handles.Optional<object>(source->Value));

    /// <summary>Repeats the items in place.</summary>
    public static void Repeat(nint self, int count) => ListOps<T>.Repeat(List(self), count);

    /// <summary>Removes a slice.</summary>
    public static void RemoveItems(nint self, int start, int count, int step) =>
        ListOps<T>.RemoveItems(List(self), start, count, step);

    /// <summary>Makes room; gives what room there is.</summary>
    public static int EnsureCapacity(nint self, int capacity) =>
        ListOps<T>.EnsureCapacity(List(self), capacity);

    private static IList<T> List(nint self)
    {
        Bridge.Enter();
        return Handles.Target<IList<T>>(self);
    }
}

/// <summary>Operations of typed enumerators and enumerables.</summary>
internal static unsafe class GenericEnumeratorApi<T>
{
    /// <summary>
    /// 0 with the item, 1 at the end. The enumerator need not be a typed one: that of an array
    /// comes from the interface that all collections have.
    /// </summary>
    public static int MoveNext(nint self, out T? item)
    {
        Bridge.Enter();
        var items = Handles.Target<IEnumerator>(self);
        if (!items.MoveNext())
        {
            item = default;
            return 1;
        }
        item = items is IEnumerator<T> typed
            ? typed.Current
            : Elements<T>.FromVariant(items.Current);
        return 0;
    }

    /// <summary>0 with an enumerator.</summary>
    public static int GetEnumerator(nint self, PyObjectOutArg* result)
    {
        Bridge.Enter();
        Results.Interface(Handles.Target<IEnumerable<T>>(self).GetEnumerator(), result);
        return 0;
    }
}
