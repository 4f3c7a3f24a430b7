// Reads elements of one type out of Python lists and sequences.
using System.Collections;
using System.Runtime.CompilerServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// The element type <typeparamref name="T"/> of a list or array argument. Where the native side has
/// a reader for it, the element crosses in its own form and a wrong one is refused in the words of
/// that form's converter; else it crosses as a variant and is fitted here.
/// </summary>
internal static unsafe class Elements<T>
{
    // Room for the largest form that a typed reader writes, a 16-byte record.
    private const int BlockSize = 16;

    private static readonly int s_position = GenericTable.PositionOf(typeof(T));

    /// <summary>The elements of a Python list.</summary>
    public static T[] CopyList(nint list)
    {
        int length = PyApi.Collection->ListLength(list);
        if (length < 0)
        {
            throw Bridge.PythonError();
        }
        T[] items = new T[length];
        for (int i = 0; i < items.Length; i++)
        {
            items[i] = OfList(list, i);
        }
        return items;
    }

    /// <summary>The elements of a Python sequence that is no list.</summary>
    public static T[] CopySequence(nint sequence)
    {
        int length = PyApi.Collection->SequenceLength(sequence);
        if (length < 0)
        {
            throw Bridge.PythonError();
        }
        if (Reader(sequence: true) == null)
        {
            // By its iterator, which hands each item's reference over, as the indexed read does
            // not.
            var all = new List<T>(length);
            PyIteration.Each(sequence, item => all.Add(FromVariant(item)));
            return [.. all];
        }
        T[] items = new T[length];
        for (int i = 0; i < items.Length; i++)
        {
            items[i] = OfSequence(sequence, i);
        }
        return items;
    }

    /// <summary>One element of a Python list.</summary>
    public static T OfList(nint list, int index)
    {
        var reader = (delegate* unmanaged<nint, int, void*, int>)Reader(sequence: false);
        if (reader == null)
        {
            VariantArg item = default;
            Check(PyApi.List->GetItem(list, index, &item));
            return FromVariant(Args.Variant(&item));
        }
        byte* block = stackalloc byte[BlockSize];
        Prepare(block);
        Check(reader(list, index, block));
        return Decode(block);
    }

    /// <summary>One element of a Python sequence that is no list.</summary>
    public static T OfSequence(nint sequence, int index)
    {
        var reader = (delegate* unmanaged<nint, int, nint*, void*, int>)Reader(sequence: true);
        if (reader == null)
        {
            return FromVariant(PyIteration.At(sequence, index));
        }
        byte* block = stackalloc byte[BlockSize];
        Prepare(block);
        nint keep = 0;
        try
        {
            Check(reader(sequence, index, &keep, block));
            return Decode(block);
        }
        finally
        {
            PyApi.Object->XDecRef(keep);
        }
    }

    /// <summary>A value that crossed as a variant, as an element.</summary>
    public static T FromVariant(object? value)
    {
        if (value is T fitting)
        {
            return fitting;
        }
        if (value is PyItems items && typeof(T).IsArray)
        {
            return (T)(object)ToArray(items, typeof(T).GetElementType()!);
        }
        return (T)Variants.Fit(value, typeof(T))!;
    }

    private static void* Reader(bool sequence)
    {
        if (s_position < 0 || PyApi.Generic == null)
        {
            return null;
        }
        void** table = PyApi.Generic[sequence ? GenericTable.Count + s_position : s_position];
        return table == null ? null : table[0];
    }

    private static void Prepare(byte* block)
    {
        new Span<byte>(block, BlockSize).Clear();
        if (typeof(T) == typeof(string))
        {
            ((PyStringArg*)block)->Length = -1;
        }
    }

    // The form of an element is that of a parameter of its type.
    private static T Decode(byte* block)
    {
        if (typeof(T).IsPrimitive || typeof(T).IsEnum)
        {
            return Unsafe.Read<T>(block);
        }
        if (typeof(T) == typeof(string))
        {
            return (T)(object)PyStrings.Decode((PyStringArg*)block)!;
        }
        var variant = (VariantArg*)block;
        if (typeof(T) == typeof(object))
        {
            return (T)Args.Variant(variant)!;
        }
        if (typeof(T).IsArray)
        {
            return (T)DecodeArray(variant)!;
        }
        nint handle = typeof(T).IsValueType || typeof(T).IsInterface
            ? variant->Value
            : *(nint*)block;
        // None among structs has no value, as in an argument of that type.
        object? element = typeof(T).IsValueType
            ? Handles.Target<object>(handle)
            : Handles.Optional<object>(handle);
        return (T)element!;
    }

    private static object? DecodeArray(VariantArg* variant)
    {
        Type element = typeof(T).GetElementType()!;
        return (CollectionKind)variant->Kind switch
        {
            CollectionKind.PythonObject => ToArray(new PyList(variant->Value), element),
            CollectionKind.PythonSequence => ToArray(new PySequence(variant->Value), element),
            _ => Handles.Optional<object>(variant->Value),
        };
    }

    private static Array ToArray(PyItems items, Type element)
    {
        var all = new ArrayList(items.Count);
        foreach (object? item in items)
        {
            all.Add(Variants.Fit(item, element));
        }
        return all.ToArray(element);
    }

    private static void Check(int status)
    {
        if (status != 0)
        {
            throw Bridge.PythonError();
        }
    }
}
