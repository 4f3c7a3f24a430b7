// What all adapters over Python collections have in common, and those that need nothing else.
using System.Collections;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// A live view of a Python collection: nothing is copied, what Python does to it later is seen.
/// Two views of one object are equal.
/// </summary>
internal abstract class PyItems : ICollection, IPyAdapter
{
    private readonly PyRef _python;

    protected PyItems(nint pyObject) => _python = PyRef.Borrow(pyObject);

    public nint PyObject => _python.Pointer;

    public abstract int Count { get; }

    public bool IsSynchronized => false;

    public object SyncRoot => this;

    public IEnumerator GetEnumerator() => new PyEnumerator(PyIteration.Start(PyObject));

    public void CopyTo(Array array, int index)
    {
        ArgumentNullException.ThrowIfNull(array);
        Type element = array.GetType().GetElementType()!;
        foreach (object? item in this)
        {
            array.SetValue(Variants.Fit(item, element), index++);
        }
    }

    public override bool Equals(object? obj) =>
        obj is IPyAdapter other && other.PyObject == PyObject;

    public override int GetHashCode() => PyObject.GetHashCode();

    /// <summary>A length as a callback gives it: negative stands for a Python error.</summary>
    protected static int Checked(int length) => length >= 0 ? length : throw Bridge.PythonError();
}

/// <summary>Any sized Python iterable as an ICollection.</summary>
internal sealed unsafe class PyCollection(nint pyObject) : PyItems(pyObject)
{
    public override int Count => Checked(PyApi.Collection->ObjectLength(PyObject));
}

/// <summary>Any Python iterable as an IEnumerable.</summary>
internal class PyEnumerable(nint pyObject) : IEnumerable, IPyAdapter
{
    private readonly PyRef _python = PyRef.Borrow(pyObject);

    public nint PyObject => _python.Pointer;

    public IEnumerator GetEnumerator() => new PyEnumerator(PyIteration.Start(PyObject));
}

/// <summary>Any Python iterable as an IEnumerable of one element type.</summary>
internal sealed class PyEnumerable<T>(nint pyObject) : PyEnumerable(pyObject), IEnumerable<T>
{
    IEnumerator<T> IEnumerable<T>.GetEnumerator() =>
        new PyEnumerator<T>(PyIteration.Start(PyObject));
}

/// <summary>A Python iterator as an IEnumerator; Python iterators cannot start again.</summary>
internal class PyEnumerator(PyRef iterator) : IEnumerator, IPyAdapter, IDisposable
{
    private object? _current;
    private bool _valid;

    public nint PyObject => iterator.Pointer;

    public object? Current => _valid
        ? _current
        : throw new InvalidOperationException("The enumerator is not at an element.");

    public bool MoveNext()
    {
        _valid = PyObject != 0 && PyIteration.Next(PyObject, out _current);
        return _valid;
    }

    public void Reset() => throw new NotSupportedException("A Python iterator cannot start again.");

    // Lets the iterator go at once; the Python object itself has no end of life to announce.
    public void Dispose()
    {
        _valid = false;
        iterator.Release();
    }
}

/// <summary>A Python iterator as an IEnumerator of one element type.</summary>
internal sealed class PyEnumerator<T>(PyRef iterator) : PyEnumerator(iterator), IEnumerator<T>
{
    T IEnumerator<T>.Current => Elements<T>.FromVariant(Current);
}

/// <summary>A CollectionBase with the elements of a Python sequence, copied.</summary>
internal sealed class PyCollectionBase : CollectionBase
{
    public PyCollectionBase(object?[] items) => InnerList.AddRange(items);
}

/// <summary>A ReadOnlyCollectionBase with the elements of a Python sequence, copied.</summary>
internal sealed class PyReadOnlyCollectionBase : ReadOnlyCollectionBase
{
    public PyReadOnlyCollectionBase(object?[] items) => InnerList.AddRange(items);
}
