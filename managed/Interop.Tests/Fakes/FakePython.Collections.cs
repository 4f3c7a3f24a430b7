// The callbacks that drive lists, sequences and iterators.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop.Tests.Fakes;

internal static unsafe partial class FakePython
{
    private const int IndexErrorStatus = -2;

    private static IList<nint> Sequence(nint pyObject) => (IList<nint>)Value(pyObject);

    private static List<nint> List(nint pyObject) => (List<nint>)Value(pyObject);

    private static bool Inside(nint pyObject, int index) =>
        (uint)index < (uint)Sequence(pyObject).Count;

    // Where Python counts from the end.
    private static int Counted(nint pyObject, int index) =>
        index < 0 ? index + Sequence(pyObject).Count : index;

    // A list or tuple that holds an error refuses every change and every search with it.
    private static bool Refuses(nint pyObject)
    {
        FakeError? error = Sequence(pyObject).Select(Value).OfType<FakeError>().FirstOrDefault();
        Error = error ?? Error;
        return error is not null;
    }

    private static int IndexError(string text) => Fail("IndexError", text, IndexErrorStatus);

    [UnmanagedCallersOnly]
    private static int IterNext(nint pyObject, nint* item, VariantArg* variant)
    {
        var iterator = (FakeIterator)Value(pyObject);
        if (!Inside(iterator.Source, iterator.Next))
        {
            return 1;
        }
        *item = Sequence(iterator.Source)[iterator.Next++];
        if (Value(*item) is FakeError error)
        {
            Error = error;
            return 2;
        }
        Retain(*item);
        *variant = Variant(*item);
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int Length(nint pyObject) =>
        Value(pyObject) is IList<nint> items ? items.Count : Fail("TypeError", "no length");

    [UnmanagedCallersOnly]
    private static long LongLength(nint pyObject) => Sequence(pyObject).Count;

    [UnmanagedCallersOnly]
    private static int RemoveAt(nint pyObject, int index)
    {
        if (Refuses(pyObject))
        {
            return -1;
        }
        index = Counted(pyObject, index);
        if (!Inside(pyObject, index))
        {
            return IndexError("pop index out of range");
        }
        Release(List(pyObject)[index]);
        List(pyObject).RemoveAt(index);
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int Clear(nint pyObject)
    {
        if (Refuses(pyObject))
        {
            return -1;
        }
        List(pyObject).ForEach(Release);
        List(pyObject).Clear();
        return 0;
    }

    [UnmanagedCallersOnly]
    private static nint GetEnumerator(nint pyObject)
    {
        if (Value(pyObject) is not IList<nint>)
        {
            return Fail("TypeError", "No iterator", 0);
        }
        Retain(pyObject);
        return New(new FakeIterator(pyObject));
    }

    [UnmanagedCallersOnly]
    private static nint* CreateFastList(int size, nint* list)
    {
        var items = new List<nint>(new nint[size]);
        *list = New(items);
        return (nint*)*list;
    }

    [UnmanagedCallersOnly]
    private static void SetFastItem(nint* slots, int index, nint item) =>
        List((nint)slots)[index] = item;

    [UnmanagedCallersOnly]
    private static int ListGetItem(nint pyObject, int index, VariantArg* result)
    {
        if (!Inside(pyObject, index))
        {
            return IndexError("list index out of range");
        }
        if (Value(List(pyObject)[index]) is FakeError error)
        {
            return Fail(error.Type, error.Text);
        }
        *result = Variant(List(pyObject)[index]);
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int ListSetItem(nint pyObject, int index, nint item)
    {
        if (!Inside(pyObject, index))
        {
            Release(item);
            return IndexError("list assignment index out of range");
        }
        Release(List(pyObject)[index]);
        List(pyObject)[index] = item;
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int ListAdd(nint pyObject, nint item)
    {
        if (Refuses(pyObject))
        {
            Release(item);
            return -1;
        }
        List(pyObject).Add(item);
        return List(pyObject).Count;
    }

    [UnmanagedCallersOnly]
    private static int ListInsert(nint pyObject, int index, nint item)
    {
        if (Refuses(pyObject))
        {
            Release(item);
            return -1;
        }
        List(pyObject).Insert(index, item);
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int ListRemove(nint pyObject, nint item)
    {
        int index = Find(pyObject, item);
        if (index < 0)
        {
            return Fail("ValueError", "list.remove(x): x not in list");
        }
        Release(List(pyObject)[index]);
        List(pyObject).RemoveAt(index);
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int Contains(nint pyObject, nint item) => Find(pyObject, item) switch
    {
        -2 => -1,
        -1 => 0,
        _ => 1,
    };

    [UnmanagedCallersOnly]
    private static int IndexOf(nint pyObject, nint item) => Find(pyObject, item);

    // Of a sequence, a comparison that raises counts as a find.
    [UnmanagedCallersOnly]
    private static int SequenceContains(nint pyObject, nint item) =>
        Find(pyObject, item) == -1 ? 0 : 1;

    [UnmanagedCallersOnly]
    private static int SequenceIndexOf(nint pyObject, nint item)
    {
        int index = Find(pyObject, item);
        return index == -2 ? 1 : index;
    }

    // The item's reference is the callee's to give back. -1 for none, -2 for an error.
    private static int Find(nint pyObject, nint item)
    {
        object wanted = Value(item);
        if (Refuses(pyObject))
        {
            Release(item);
            return -2;
        }
        int index = Sequence(pyObject).ToList()
            .FindIndex(each => Variants.AreEqual(Value(each), wanted));
        Release(item);
        return index;
    }

    [UnmanagedCallersOnly]
    private static nint WriteList(nint handle) => New(new FakeWrapper(handle));

    [UnmanagedCallersOnly]
    private static int SequenceGetItem(nint pyObject, int index, VariantArg* result)
    {
        index = Counted(pyObject, index);
        if (!Inside(pyObject, index))
        {
            return IndexError("tuple index out of range");
        }
        nint item = Sequence(pyObject)[index];
        if (Value(item) is FakeError error)
        {
            return Fail(error.Type, error.Text);
        }
        Retain(item); // stays with the value
        *result = Variant(item);
        return 0;
    }
}
