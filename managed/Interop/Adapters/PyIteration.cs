// Walks a Python iterable, giving each item's reference back as soon as it is read.
namespace Kelmor.WrpGen.Interop;

/// <summary>Steps over Python iterators.</summary>
internal static unsafe class PyIteration
{
    /// <summary>An iterator over an iterable; the caller owns it.</summary>
    public static PyRef Start(nint iterable) =>
        PyRef.Steal(Bridge.Checked(PyApi.Collection->GetEnumerator(iterable)));

    /// <summary>The next item; false at the end.</summary>
    public static bool Next(nint iterator, out object? item)
    {
        nint owner = 0;
        VariantArg variant = default;
        switch (PyApi.Iter->Next(iterator, &owner, &variant))
        {
            case 0:
                try
                {
                    item = Args.Variant(&variant);
                    return true;
                }
                finally
                {
                    PyApi.Object->XDecRef(owner);
                }
            case 1:
                item = null;
                return false;
            default:
                throw Bridge.PythonError();
        }
    }

    /// <summary>Calls the action for each item.</summary>
    public static void Each(nint iterable, Action<object?> action)
    {
        PyRef iterator = Start(iterable);
        try
        {
            while (Next(iterator.Pointer, out object? item))
            {
                action(item);
            }
        }
        finally
        {
            iterator.Release();
        }
    }

    /// <summary>
    /// One item of a sequence. The indexed read leaves a reference with the value; it is given back
    /// here. For a wrapper the value is its handle, so the wrapper itself is found by walking
    /// there.
    /// </summary>
    public static object? At(nint sequence, int index)
    {
        VariantArg variant = default;
        int status = PyApi.Sequence->GetItem(sequence, index, &variant);
        if (status == -2)
        {
            _ = Bridge.PythonError();
            throw new ArgumentOutOfRangeException(nameof(index));
        }
        if (status != 0)
        {
            throw Bridge.PythonError();
        }
        var kind = (VariantKind)variant.Kind;
        bool wrapper = kind is VariantKind.Object or VariantKind.Struct;
        try
        {
            return Args.Variant(&variant);
        }
        finally
        {
            PyApi.Object->XDecRef(
                wrapper ? Wrapper(sequence, index, variant.Value) : variant.Value);
        }
    }

    // A reference to the wrapper at this place, or 0 when the sequence has changed meanwhile. It is
    // the one that the indexed read left: the walk gives its own back.
    private static nint Wrapper(nint sequence, int index, nint handle)
    {
        nint found = 0;
        PyRef iterator = Start(sequence);
        try
        {
            for (int i = 0; i <= index; i++)
            {
                nint owner = 0;
                VariantArg variant = default;
                if (PyApi.Iter->Next(iterator.Pointer, &owner, &variant) != 0)
                {
                    break;
                }
                found = i == index && variant.Value == handle ? owner : 0;
                PyApi.Object->XDecRef(owner);
            }
        }
        finally
        {
            iterator.Release();
        }
        return found;
    }
}
