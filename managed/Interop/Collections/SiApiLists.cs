// The entry classes of the list interface, arrays, ArrayList and the two collection bases.
using System.Collections;
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>Entries of IList.</summary>
public abstract unsafe class SiApiCntList : SiApiGrowingListEntries
{
    [UnmanagedCallersOnly]
    internal static void SqSetItemNoCheck(nint self, int index, VariantArg* value) =>
        SetItem(self, index, value);

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyList(nint list) => Adopt(list, l => new PyList(l));

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPySequence(nint sequence) =>
        Adopt(sequence, s => new PySequence(s));

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(VariantArg* value) =>
        Casts.IsAssignableVariant<IList>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<IList>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<IList>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(VariantArg* value, nint* result) =>
        Casts.CastAsVariant<IList>(value, result);
}

/// <summary>Entries of arrays, whose length is fixed.</summary>
public abstract unsafe class SiApiArray : SiApiListEntries
{
    /// <summary>Spelled as the native side binds it.</summary>
    [UnmanagedCallersOnly]
    internal static void SqSetItemNoChek(nint self, int index, VariantArg* value) =>
        SetItem(self, index, value);

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyList(nint list) =>
        Adopt(list, Elements<object>.CopyList);

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPySequence(nint sequence) =>
        Adopt(sequence, Elements<object>.CopySequence);

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(nint value) => Casts.IsAssignable<Array>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<Array>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<Array>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_ReInterpretObj(nint value, nint* result) =>
        Casts.ReInterpret<Array>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(nint value, nint* result) => Casts.CastAs<Array>(value, result);
}

/// <summary>Entries of ArrayList.</summary>
public abstract unsafe class SiApiArrayList : SiApiGrowingListEntries
{
    /// <summary>Spelled as the native side binds it.</summary>
    [UnmanagedCallersOnly]
    internal static void SqSetItemNoChek(nint self, int index, VariantArg* value) =>
        SetItem(self, index, value);

    [UnmanagedCallersOnly]
    internal static int EnsureCapacity(nint self, int capacity)
    {
        try
        {
            return ListOps<object?>.EnsureCapacity(List(self), capacity);
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyList(nint list) =>
        Adopt(list, l => ArrayList.Adapter(new PyList(l)));

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPySequence(nint sequence) =>
        Adopt(sequence, s => ArrayList.Adapter(new PySequence(s)));

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(nint value) => Casts.IsAssignable<ArrayList>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<ArrayList>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<ArrayList>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_ReInterpretObj(nint value, nint* result) =>
        Casts.ReInterpret<ArrayList>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(nint value, nint* result) =>
        Casts.CastAs<ArrayList>(value, result);
}

/// <summary>Entries of CollectionBase; its items go through those of IList.</summary>
public abstract unsafe class SiApiCollectionBase : SiApiListEntries
{
    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyList(nint list) =>
        Adopt(list, l => new PyCollectionBase(Elements<object?>.CopyList(l)));

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPySequence(nint sequence) =>
        Adopt(sequence, s => new PyCollectionBase(Elements<object?>.CopySequence(s)));

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(nint value) => Casts.IsAssignable<CollectionBase>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<CollectionBase>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<CollectionBase>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_ReInterpretObj(nint value, nint* result) =>
        Casts.ReInterpret<CollectionBase>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(nint value, nint* result) =>
        Casts.CastAs<CollectionBase>(value, result);
}

/// <summary>Entries of ReadOnlyCollectionBase; its items go through those of ICollection.</summary>
public abstract unsafe class SiApiReadOnlyCollectionBase : SiApiListEntries
{
    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPyList(nint list) =>
        Adopt(list, l => new PyReadOnlyCollectionBase(Elements<object?>.CopyList(l)));

    [UnmanagedCallersOnly]
    internal static nint CreateInstanceFromPySequence(nint sequence) =>
        Adopt(sequence, s => new PyReadOnlyCollectionBase(Elements<object?>.CopySequence(s)));

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(nint value) =>
        Casts.IsAssignable<ReadOnlyCollectionBase>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<ReadOnlyCollectionBase>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<ReadOnlyCollectionBase>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_ReInterpretObj(nint value, nint* result) =>
        Casts.ReInterpret<ReadOnlyCollectionBase>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(nint value, nint* result) =>
        Casts.CastAs<ReadOnlyCollectionBase>(value, result);
}
