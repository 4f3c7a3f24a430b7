// What a Python list does, over any managed list.
using System.Collections;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Statuses of list operations; any other number is a failure with a Python error.
/// </summary>
internal static class ListStatus
{
    public const int Done = 0;
    public const int Empty = 1;
    public const int OutOfRange = 2;
}

/// <summary>
/// The operations of a Python list over an <see cref="IList{T}"/>. Native code has added the length
/// to a negative subscript once already, so a negative index is beyond the front here; only those
/// that Python's own methods count from the end (pop, insert, index) are counted so.
/// </summary>
internal static class ListOps<T>
{
    private static readonly IComparer<T> s_order = Order();

    public static int TryGet(IList<T> list, int index, out T? item)
    {
        bool inside = IsInside(list, index);
        item = inside ? list[index] : default;
        return inside ? ListStatus.Done : ListStatus.OutOfRange;
    }

    public static int TrySet(IList<T> list, int index, T item)
    {
        if (!IsInside(list, index))
        {
            return ListStatus.OutOfRange;
        }
        list[index] = item;
        return ListStatus.Done;
    }

    public static int RemoveAt(IList<T> list, int index)
    {
        if (!IsInside(list, index))
        {
            return ListStatus.OutOfRange;
        }
        list.RemoveAt(index);
        return ListStatus.Done;
    }

    /// <summary>
    /// Takes the last item, or the one at an index, which may count from the end.
    /// </summary>
    public static int Pop(IList<T> list, bool hasIndex, int index, out T? item)
    {
        item = default;
        if (list.Count == 0)
        {
            return ListStatus.Empty;
        }
        int at = !hasIndex ? list.Count - 1 : index < 0 ? index + list.Count : index;
        int status = TryGet(list, at, out item);
        return status == ListStatus.Done ? RemoveAt(list, at) : status;
    }

    /// <summary>Inserts before an index; one outside means the nearest end.</summary>
    public static void Insert(IList<T> list, int index, T item) =>
        list.Insert(Clamp(index, list.Count), item);

    /// <summary>Removes the first equal item; 1 when there was one.</summary>
    public static int Remove(IList<T> list, T item)
    {
        int index = IndexOf(list, item, 0, list.Count);
        if (index < 0)
        {
            return 0;
        }
        list.RemoveAt(index);
        return 1;
    }

    public static int Contains(IList<T> list, T item) =>
        IndexOf(list, item, 0, list.Count) >= 0 ? 1 : 0;

    public static int CountOf(IList<T> list, T item)
    {
        int count = 0;
        foreach (T each in list)
        {
            count += AreEqual(each, item) ? 1 : 0;
        }
        return count;
    }

    /// <summary>
    /// The first equal item between two bounds, which may count from the end; or -1.
    /// </summary>
    public static int IndexBy(IList<T> list, int? start, int? stop, T item) =>
        IndexOf(list, item, Clamp(start ?? 0, list.Count), Clamp(stop ?? list.Count, list.Count));

    public static void Reverse(IList<T> list)
    {
        for (int low = 0, high = list.Count - 1; low < high; low++, high--)
        {
            (list[low], list[high]) = (list[high], list[low]);
        }
    }

    /// <summary>Sorts; equal items keep their order, backwards too, as in Python.</summary>
    public static void Sort(IList<T> list, bool reverse)
    {
        T[] sorted = reverse
            ? [.. list.OrderDescending(s_order)]
            : [.. list.Order(s_order)];
        for (int i = 0; i < sorted.Length; i++)
        {
            list[i] = sorted[i];
        }
    }

    /// <summary>Appends another managed collection; 0 when it is none that fits.</summary>
    public static int Concat(IList<T> list, object? source)
    {
        if (Snapshot(source) is not { } items)
        {
            return 0;
        }
        EnsureCapacity(list, checked(list.Count + items.Length));
        foreach (T item in items)
        {
            list.Add(item);
        }
        return 1;
    }

    /// <summary>Repeats the items in place; a count below 1 leaves none.</summary>
    public static void Repeat(IList<T> list, int count)
    {
        if (count <= 0)
        {
            list.Clear();
            return;
        }
        T[] items = [.. list];
        EnsureCapacity(list, checked(items.Length * count));
        for (int i = 1; i < count; i++)
        {
            foreach (T item in items)
            {
                list.Add(item);
            }
        }
    }

    /// <summary>
    /// Writes another managed collection of that count; 0 when it is none that fits.
    /// </summary>
    public static int SetItems(IList<T> list, object? source, int start, int count, int step)
    {
        if (Snapshot(source) is not { } items || items.Length != count)
        {
            return 0;
        }
        for (int i = 0; i < count; i++)
        {
            list[start + (i * step)] = items[i];
        }
        return 1;
    }

    /// <summary>Removes a slice, from its highest index down.</summary>
    public static void RemoveItems(IList<T> list, int start, int count, int step)
    {
        if (count <= 0)
        {
            return;
        }
        if (step > 0)
        {
            start += (count - 1) * step;
            step = -step;
        }
        if (step == -1 && list is List<T> growable)
        {
            growable.RemoveRange(start - count + 1, count);
            return;
        }
        for (int i = 0; i < count; i++)
        {
            list.RemoveAt(start + (i * step));
        }
    }

    /// <summary>Makes room; gives what room there is.</summary>
    public static int EnsureCapacity(IList<T> list, int capacity)
    {
        switch (list)
        {
            case List<T> growable:
                return growable.EnsureCapacity(capacity);
            case UntypedList { Inner: ArrayList growable }:
                growable.Capacity = Math.Max(growable.Capacity, capacity);
                return growable.Capacity;
            default:
                return list.Count;
        }
    }

    private static bool IsInside(IList<T> list, int index) => (uint)index < (uint)list.Count;

    private static int Clamp(int index, int count) =>
        Math.Clamp(index < 0 ? index + count : index, 0, count);

    private static int IndexOf(IList<T> list, T item, int start, int stop)
    {
        for (int i = start; i < stop && i < list.Count; i++)
        {
            if (AreEqual(list[i], item))
            {
                return i;
            }
        }
        return -1;
    }

    private static bool AreEqual(T left, T right) =>
        typeof(T) == typeof(object)
            ? Variants.AreEqual(left, right)
            : EqualityComparer<T>.Default.Equals(left, right);

    // The items of a managed collection, taken before anything is written: it may be the list
    // itself.
    private static T[]? Snapshot(object? source) => source switch
    {
        string => null,
        IEnumerable<T> items => [.. items],
        IEnumerable items when typeof(T) == typeof(object) => [.. items.Cast<T>()],
        _ => null,
    };

    private static IComparer<T> Order()
    {
        if (typeof(T) == typeof(object) || typeof(T) == typeof(string))
        {
            return Comparer<T>.Create((left, right) => Variants.Compare(left, right));
        }
        return Comparer<T>.Default;
    }
}
