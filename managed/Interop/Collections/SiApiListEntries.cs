// The entries that all managed lists share; binding by name finds them through the derived classes.
using System.Collections;
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>Entries over <see cref="IList"/>, whose elements cross as variants.</summary>
public abstract unsafe class SiApiListEntries
{
    private protected SiApiListEntries()
    {
    }

    [UnmanagedCallersOnly]
    internal static int SqLength(nint self)
    {
        try
        {
            Bridge.Enter();
            return Handles.Target<ICollection>(self).Count;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int SqContains(nint self, VariantArg* value)
    {
        try
        {
            return ListOps<object?>.Contains(List(self), Args.Variant(value));
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int CountOf(nint self, VariantArg* value)
    {
        try
        {
            return ListOps<object?>.CountOf(List(self), Args.Variant(value));
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int IndexBy(
        nint self, int hasStart, int start, int hasStop, int stop, VariantArg* value)
    {
        try
        {
            return ListOps<object?>.IndexBy(
                List(self), hasStart != 0 ? start : null, hasStop != 0 ? stop : null,
                Args.Variant(value));
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int SqGetItem(nint self, int index, nint* result)
    {
        *result = 0;
        try
        {
            int status = ListOps<object?>.TryGet(List(self), index, out object? item);
            return status == ListStatus.Done ? Give(item, result) : status;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static nint SqGetItemNoCheck(nint self, int index)
    {
        try
        {
            Bridge.Enter();
            return Results.Variant(Handles.Target<IList>(self)[index]);
        }
        catch (Exception e)
        {
            return Bridge.Raise<nint>(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int SqSetItem(nint self, int index, VariantArg* value)
    {
        try
        {
            return ListOps<object?>.TrySet(List(self), index, Args.Variant(value));
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int MpSetItems(nint self, VariantArg* source, int start, int count, int step)
    {
        try
        {
            object? items = Handles.Optional<object>(source->Value);
            return ListOps<object?>.SetItems(List(self), items, start, count, step);
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void Reverse(nint self)
    {
        try
        {
            ListOps<object?>.Reverse(List(self));
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void Sort(nint self, int reverse)
    {
        try
        {
            ListOps<object?>.Sort(List(self), reverse != 0);
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    /// <summary>The body of the entry that native code calls by two spellings.</summary>
    private protected static void SetItem(nint self, int index, VariantArg* value)
    {
        try
        {
            List(self)[index] = Args.Variant(value);
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    private protected static UntypedList List(nint self)
    {
        Bridge.Enter();
        return new UntypedList(Handles.Target<IList>(self));
    }

    /// <summary>
    /// Gives an item to Python; a Python error that making it left stays pending.
    /// </summary>
    private protected static int Give(object? item, nint* result)
    {
        *result = Results.Variant(item);
        return *result != 0 ? ListStatus.Done : -1;
    }

    /// <summary>Wraps a Python object in an adapter, and gives the adapter's handle.</summary>
    private protected static nint Adopt(nint pyObject, Func<nint, object> adapter)
    {
        try
        {
            Bridge.Enter();
            return Handles.Alloc(adapter(pyObject));
        }
        catch (Exception e)
        {
            return Bridge.Raise<nint>(e);
        }
    }
}
