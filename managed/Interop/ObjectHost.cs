// What System.Object offers, for any handle.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Bound by name at start-up. Each operation exists for class handles ("Obj") and for struct
/// handles ("Stc"); both are GC handles here, so a pair shares its body.
/// </summary>
public static unsafe class ObjectHost
{
    [UnmanagedCallersOnly]
    private static int ToStringOfObj(nint handle, nint* result) => ToString(handle, result);

    [UnmanagedCallersOnly]
    private static int ToStringOfStc(nint handle, nint* result) => ToString(handle, result);

    [UnmanagedCallersOnly]
    private static int GetHashOfObj(nint handle) => GetHash(handle);

    [UnmanagedCallersOnly]
    private static int GetHashOfStc(nint handle) => GetHash(handle);

    [UnmanagedCallersOnly]
    private static byte IsEqualsOfObj(nint handle, VariantArg* other) => IsEquals(handle, other);

    [UnmanagedCallersOnly]
    private static byte IsEqualsOfStc(nint handle, VariantArg* other) => IsEquals(handle, other);

    [UnmanagedCallersOnly]
    private static byte IsTypeOf(nint handle, VariantArg* type)
    {
        try
        {
            Bridge.Enter();
            object target = Handles.Target<object>(handle);
            return Handles.Target<Type>(type->Value).IsInstanceOfType(target) ? (byte)1 : (byte)0;
        }
        catch (Exception e)
        {
            return Bridge.Raise<byte>(e);
        }
    }

    [UnmanagedCallersOnly]
    private static int GetTypeName(VariantArg* value, nint* result)
    {
        *result = 0;
        try
        {
            Bridge.Enter();
            *result = Results.String(TypeNames.Exposed(Handles.Target<object>(value->Value)));
            return *result != 0 ? 1 : 0;
        }
        catch (Exception e)
        {
            return Bridge.Raise<int>(e);
        }
    }

    [UnmanagedCallersOnly]
    private static int GetObjType(nint handle, nint* result) => GetTypeOf(handle, result);

    [UnmanagedCallersOnly]
    private static int GetStcType(nint handle, nint* result) => GetTypeOf(handle, result);

    /// <summary>
    /// The end of a "with" block; an object with nothing to dispose of is left alone.
    /// </summary>
    [UnmanagedCallersOnly]
    private static void Dispose(nint handle)
    {
        try
        {
            Bridge.Enter();
            (Handles.Target<object>(handle) as IDisposable)?.Dispose();
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    private static int ToString(nint handle, nint* result)
    {
        *result = 0;
        try
        {
            Bridge.Enter();
            *result = Results.String(Handles.Target<object>(handle).ToString() ?? "");
            return *result != 0 ? 1 : 0;
        }
        catch (Exception e)
        {
            return Bridge.Raise<int>(e);
        }
    }

    private static int GetHash(nint handle)
    {
        try
        {
            Bridge.Enter();
            return Handles.Target<object>(handle).GetHashCode();
        }
        catch (Exception e)
        {
            return Bridge.Raise<int>(e);
        }
    }

    // For None only the handle is written, so the kind is not looked at.
    private static byte IsEquals(nint handle, VariantArg* other)
    {
        try
        {
            Bridge.Enter();
            object target = Handles.Target<object>(handle);
            return target.Equals(Handles.Optional<object>(other->Value)) ? (byte)1 : (byte)0;
        }
        catch (Exception e)
        {
            return Bridge.Raise<byte>(e);
        }
    }

    private static int GetTypeOf(nint handle, nint* result)
    {
        *result = 0;
        try
        {
            Bridge.Enter();
            *result = Handles.Alloc(Handles.Target<object>(handle).GetType());
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Raise<int>(e);
        }
    }
}
