// A Python list as a managed one: what either side does to it, the other sees.
using System.Collections;

namespace Kelmor.WrpGen.Interop;

/// <summary>A live view of a Python list.</summary>
internal unsafe class PyList(nint pyObject) : PyItems(pyObject), IList
{
    public override int Count => Checked(PyApi.Collection->ListLength(PyObject));

    public bool IsFixedSize => false;

    public bool IsReadOnly => false;

    public object? this[int index]
    {
        get
        {
            VariantArg item = default;
            CheckIndex(PyApi.List->GetItem(PyObject, index, &item));
            return Args.Variant(&item);
        }
        set => CheckIndex(PyApi.List->SetItem(PyObject, index, NewItem(value)));
    }

    public int Add(object? value)
    {
        int length = PyApi.List->Add(PyObject, NewItem(value));
        return length >= 0 ? length - 1 : throw Bridge.PythonError();
    }

    public void Insert(int index, object? value)
    {
        // Python would take any index; a managed list takes those inside and the end.
        ArgumentOutOfRangeException.ThrowIfNegative(index);
        ArgumentOutOfRangeException.ThrowIfGreaterThan(index, Count);
        CheckIndex(PyApi.List->Insert(PyObject, index, NewItem(value)));
    }

    public void Remove(object? value)
    {
        if (Contains(value) && PyApi.List->Remove(PyObject, NewItem(value)) != 0)
        {
            throw Bridge.PythonError();
        }
    }

    public void RemoveAt(int index)
    {
        ArgumentOutOfRangeException.ThrowIfNegative(index);
        CheckIndex(PyApi.Collection->RemoveAt(PyObject, index));
    }

    public void Clear()
    {
        if (PyApi.Collection->Clear(PyObject) != 0)
        {
            throw Bridge.PythonError();
        }
    }

    public bool Contains(object? value)
    {
        int answer = PyApi.List->Contains(PyObject, NewItem(value));
        return answer >= 0 ? answer != 0 : throw Bridge.PythonError();
    }

    public int IndexOf(object? value)
    {
        int index = PyApi.List->IndexOf(PyObject, NewItem(value));
        return index >= -1 ? index : throw Bridge.PythonError();
    }

    /// <summary>A Python object of a value that goes into the list, which consumes it.</summary>
    private protected static nint NewItem(object? value) => Bridge.Checked(Results.Variant(value));

    // -2 is Python's IndexError, for which managed code has an exception of its own.
    private static void CheckIndex(int status)
    {
        if (status == 0)
        {
            return;
        }
        PythonException error = Bridge.PythonError();
        throw status == -2 ? new ArgumentOutOfRangeException("index", error.Message) : error;
    }
}

/// <summary>A live view of a Python list with elements of one type.</summary>
internal sealed class PyList<T>(nint pyObject) : PyList(pyObject), IList<T>
{
    T IList<T>.this[int index]
    {
        get
        {
            ArgumentOutOfRangeException.ThrowIfNegative(index);
            ArgumentOutOfRangeException.ThrowIfGreaterThanOrEqual(index, Count);
            return Elements<T>.OfList(PyObject, index);
        }
        set => this[index] = value;
    }

    void ICollection<T>.Add(T item) => Add(item);

    bool ICollection<T>.Contains(T item) => Contains(item);

    int IList<T>.IndexOf(T item) => IndexOf(item);

    void IList<T>.Insert(int index, T item) => Insert(index, item);

    void ICollection<T>.CopyTo(T[] array, int arrayIndex) => CopyTo(array, arrayIndex);

    bool ICollection<T>.Remove(T item)
    {
        int index = IndexOf(item);
        if (index < 0)
        {
            return false;
        }
        RemoveAt(index);
        return true;
    }

    IEnumerator<T> IEnumerable<T>.GetEnumerator() =>
        new PyEnumerator<T>(PyIteration.Start(PyObject));
}
