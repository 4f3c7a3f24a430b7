// The entry classes of the interfaces behind "with", "for" and len().
using System.Collections;
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>Entries of IDisposable.</summary>
public static unsafe class SiApiDisposable
{
    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(VariantArg* value) =>
        Casts.IsAssignableVariant<IDisposable>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<IDisposable>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<IDisposable>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(VariantArg* value, nint* result) =>
        Casts.CastAsVariant<IDisposable>(value, result);
}

/// <summary>Entries of IEnumerator.</summary>
public static unsafe class SiApiEnumerator
{
    /// <summary>0 with the item, 1 at the end, anything else with a Python error.</summary>
    [UnmanagedCallersOnly]
    internal static int MoveNext(nint self, nint* result)
    {
        *result = 0;
        try
        {
            Bridge.Enter();
            var items = Handles.Target<IEnumerator>(self);
            if (!items.MoveNext())
            {
                return 1;
            }
            *result = Results.Variant(items.Current);
            return *result != 0 ? 0 : -1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(VariantArg* value) =>
        Casts.IsAssignableVariant<IEnumerator>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<IEnumerator>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<IEnumerator>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(VariantArg* value, nint* result) =>
        Casts.CastAsVariant<IEnumerator>(value, result);
}

/// <summary>Entries of IEnumerable.</summary>
public static unsafe class SiApiEnumerable
{
    [UnmanagedCallersOnly]
    internal static int GetEnumerator(nint self, PyObjectOutArg* result)
    {
        *result = default;
        try
        {
            Bridge.Enter();
            Results.Interface(Handles.Target<IEnumerable>(self).GetEnumerator(), result);
            return 0;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyIterable(nint iterable)
    {
        try
        {
            Bridge.Enter();
            return Handles.Alloc(new PyEnumerable(iterable));
        }
        catch (Exception e)
        {
            return Bridge.Raise<nint>(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(VariantArg* value) =>
        Casts.IsAssignableVariant<IEnumerable>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<IEnumerable>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<IEnumerable>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(VariantArg* value, nint* result) =>
        Casts.CastAsVariant<IEnumerable>(value, result);
}

/// <summary>Entries of ICollection, whose items are reached by walking alone.</summary>
public static unsafe class SiApiCntCollection
{
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
            return Count(self, value, most: 1);
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
            return Count(self, value, most: int.MaxValue);
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyList(nint list) => Adopt(list);

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyIterable(nint iterable) => Adopt(iterable);

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(VariantArg* value) =>
        Casts.IsAssignableVariant<ICollection>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<ICollection>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<ICollection>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(VariantArg* value, nint* result) =>
        Casts.CastAsVariant<ICollection>(value, result);

    // How many items equal the value, counting no further than asked.
    private static int Count(nint self, VariantArg* value, int most)
    {
        Bridge.Enter();
        object? wanted = Args.Variant(value);
        int count = 0;
        foreach (object? item in Handles.Target<ICollection>(self))
        {
            if (Variants.AreEqual(item, wanted) && ++count == most)
            {
                break;
            }
        }
        return count;
    }

    private static nint Adopt(nint pyObject)
    {
        try
        {
            Bridge.Enter();
            return Handles.Alloc(new PyCollection(pyObject));
        }
        catch (Exception e)
        {
            return Bridge.Raise<nint>(e);
        }
    }
}
