// A Python sequence that is no list, as a managed list that cannot be changed.
using System.Collections;

namespace Kelmor.WrpGen.Interop;

/// <summary>A live, read-only view of a Python sequence.</summary>
internal unsafe class PySequence(nint pyObject) : PyItems(pyObject), IList
{
    public override int Count => Checked(PyApi.Collection->SequenceLength(PyObject));

    public bool IsFixedSize => true;

    public bool IsReadOnly => true;

    public object? this[int index]
    {
        get
        {
            // A negative index would count from the end.
            ArgumentOutOfRangeException.ThrowIfNegative(index);
            return PyIteration.At(PyObject, index);
        }
        set => throw ReadOnly();
    }

    public bool Contains(object? value)
    {
        nint item = Bridge.Checked(Results.Variant(value));
        return Found(PyApi.Sequence->Contains(PyObject, item)) > 0;
    }

    public int IndexOf(object? value)
    {
        nint item = Bridge.Checked(Results.Variant(value));
        return Found(PyApi.Sequence->IndexOf(PyObject, item));
    }

    // A comparison that raises ends the search as a find does, and a size that cannot be told as a
    // search in vain; the error tells them apart.
    private static int Found(int answer)
    {
        PythonException? error = Bridge.PendingError();
        return error is null && answer >= -1 ? answer : throw error ?? Bridge.PythonError();
    }

    public int Add(object? value) => throw ReadOnly();

    public void Clear() => throw ReadOnly();

    public void Insert(int index, object? value) => throw ReadOnly();

    public void Remove(object? value) => throw ReadOnly();

    public void RemoveAt(int index) => throw ReadOnly();

    private protected static NotSupportedException ReadOnly() =>
        new("A Python sequence that is no list cannot be changed.");
}

/// <summary>A live, read-only view of a Python sequence with elements of one type.</summary>
internal sealed class PySequence<T>(nint pyObject) : PySequence(pyObject), IList<T>
{
    T IList<T>.this[int index]
    {
        get
        {
            ArgumentOutOfRangeException.ThrowIfNegative(index);
            ArgumentOutOfRangeException.ThrowIfGreaterThanOrEqual(index, Count);
            return Elements<T>.OfSequence(PyObject, index);
        }
        set => throw ReadOnly();
    }

    bool ICollection<T>.Contains(T item) => Contains(item);

    int IList<T>.IndexOf(T item) => IndexOf(item);

    void ICollection<T>.CopyTo(T[] array, int arrayIndex) => CopyTo(array, arrayIndex);

    void ICollection<T>.Add(T item) => throw ReadOnly();

    void IList<T>.Insert(int index, T item) => throw ReadOnly();

    bool ICollection<T>.Remove(T item) => throw ReadOnly();

    IEnumerator<T> IEnumerable<T>.GetEnumerator() =>
        new PyEnumerator<T>(PyIteration.Start(PyObject));
}
