// The entries of lists that can grow and shrink.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>What an array has not: entries that change the length.</summary>
public abstract unsafe class SiApiGrowingListEntries : SiApiListEntries
{
    private protected SiApiGrowingListEntries()
    {
    }

    [UnmanagedCallersOnly]
    internal static void Add(nint self, VariantArg* value)
    {
        try
        {
            List(self).Add(Args.Variant(value));
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void Insert(nint self, int index, VariantArg* value)
    {
        try
        {
            ListOps<object?>.Insert(List(self), index, Args.Variant(value));
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int Remove(nint self, VariantArg* value)
    {
        try
        {
            return ListOps<object?>.Remove(List(self), Args.Variant(value));
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int RemoveAt(nint self, int index)
    {
        try
        {
            return ListOps<object?>.RemoveAt(List(self), index);
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int Pop(nint self, int hasIndex, int index, nint* result)
    {
        *result = 0;
        try
        {
            int status = ListOps<object?>.Pop(List(self), hasIndex != 0, index, out object? item);
            return status == ListStatus.Done ? Give(item, result) : status;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void Clear(nint self)
    {
        try
        {
            List(self).Clear();
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int SqInplaceConcat(nint self, VariantArg* source)
    {
        try
        {
            object? items = Handles.Optional<object>(source->Value);
            return ListOps<object?>.Concat(List(self), items);
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void SqInplaceRepeat(nint self, int count)
    {
        try
        {
            ListOps<object?>.Repeat(List(self), count);
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void MpRemoveItems(nint self, int start, int count, int step)
    {
        try
        {
            ListOps<object?>.RemoveItems(List(self), start, count, step);
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }
}
