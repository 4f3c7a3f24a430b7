// The service through which the native side hands over its callbacks and gives handles back.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Bound by name at start-up. The setters keep pointers that stay valid for the life of the
/// process.
/// </summary>
public static unsafe class ExchangeHost
{
    [UnmanagedCallersOnly]
    private static nint GetTypeName(nint handle)
    {
        try
        {
            string name = TypeNames.Exposed(Handles.Target<object>(handle));
            fixed (char* characters = name)
            {
                return PyApi.CreateU16(characters, name.Length);
            }
        }
        catch (Exception e)
        {
            return Bridge.Raise<nint>(e);
        }
    }

    [UnmanagedCallersOnly]
    private static void SetExceptionCallback(void* callback) =>
        PyApi.OnException = (delegate* unmanaged<nint, nint, void>)callback;

    [UnmanagedCallersOnly]
    private static void SetCatchAndClearErrorCallback(void* callback) =>
        PyApi.CatchAndClearError = (delegate* unmanaged<nint*, PyStringArg*, int>)callback;

    [UnmanagedCallersOnly]
    private static void SetU16StrBuilderCallback(void* callback) =>
        PyApi.CreateU16 = (delegate* unmanaged<char*, int, nint>)callback;

    [UnmanagedCallersOnly]
    private static void SetPyStrBuilderCallback(void* callback) =>
        PyApi.CreateString = (delegate* unmanaged<char*, int, nint>)callback;

    [UnmanagedCallersOnly]
    private static void SetPyUnraisableStrBuilderCallback(void* callback) =>
        PyApi.CreateUnraisableString = (delegate* unmanaged<char*, int, nint>)callback;

    [UnmanagedCallersOnly]
    private static void SetPyBytesBuilderCallback(void* callback) =>
        PyApi.CreateBytes = (delegate* unmanaged<byte*, int, nint>)callback;

    [UnmanagedCallersOnly]
    private static void SetPyObjApiCallbacks(void** table) =>
        PyApi.Object = (PyObjectCallbacks*)table;

    [UnmanagedCallersOnly]
    private static void SetPyStaticCallbacks(void*** tables) => PyApi.SetStatic((void**)tables);

    [UnmanagedCallersOnly]
    private static void SetPyGenericCallbacks(void*** tables) => PyApi.Generic = tables;

    /// <summary>
    /// Lets go of handles that were made for a call which did not take place; Python objects in
    /// such records were only lent.
    /// </summary>
    [UnmanagedCallersOnly]
    private static void FreePendingArgs(VariantArg* arguments, int count)
    {
        try
        {
            for (VariantArg* argument = arguments; argument < arguments + count; argument++)
            {
                if ((VariantKind)argument->Kind is VariantKind.Object or VariantKind.Struct)
                {
                    Handles.Free(argument->Value);
                    *argument = default;
                }
            }
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    private static void FreeInstance(nint handle)
    {
        try
        {
            Bridge.Enter();
            Handles.Free(handle);
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    /// <summary>
    /// Runs when all callbacks have been handed over; a missing one is told here.
    /// </summary>
    [UnmanagedCallersOnly]
    private static void InitServices()
    {
        try
        {
            PyApi.CheckComplete();
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    /// <summary>
    /// The box of a struct's handle. Structs are boxed behind every handle, so it is the same box
    /// under a handle of its own; the given handle ends here.
    /// </summary>
    [UnmanagedCallersOnly]
    private static nint BoxStcTarget(nint handle)
    {
        try
        {
            nint boxed = Handles.Alloc(Handles.Target<object>(handle));
            Handles.Free(handle);
            return boxed;
        }
        catch (Exception e)
        {
            return Bridge.Raise<nint>(e);
        }
    }
}
