// Managed objects as native code names them.
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// A handle is a GC handle turned into a pointer; a struct is boxed behind it. Every handle that a
/// call returns is freed once, by the wrapper that got it. 0 stands for null.
/// </summary>
internal static unsafe class Handles
{
    private const string CounterName = "Kelmor.Interop.LiveHandles";

    // A handle made by one interop assembly may be freed through another, so all of a process share
    // one counter. It is touched under the interpreter lock only and needs no interlocked step.
    private static readonly long* s_live = Counter();

    /// <summary>Handles of this process that nobody has freed yet.</summary>
    public static long Live => *s_live;

    /// <summary>A new handle; 0 for null.</summary>
    public static nint Alloc(object? target)
    {
        if (target is null)
        {
            return 0;
        }
        nint handle = GCHandle.ToIntPtr(GCHandle.Alloc(target));
        ++*s_live;
        return handle;
    }

    /// <summary>Frees a handle; 0 is allowed.</summary>
    public static void Free(nint handle)
    {
        if (handle != 0)
        {
            GCHandle.FromIntPtr(handle).Free();
            --*s_live;
        }
    }

    /// <summary>
    /// The object behind a handle that must not be null, such as the self of a call.
    /// </summary>
    public static T Target<T>(nint handle) where T : class =>
        handle == 0 ? throw Missing(typeof(T)) : Cast<T>(GCHandle.FromIntPtr(handle).Target);

    /// <summary>The object behind an argument's handle; null for None.</summary>
    public static T? Optional<T>(nint handle) where T : class =>
        handle == 0 ? null : Cast<T>(GCHandle.FromIntPtr(handle).Target);

    /// <summary>
    /// The boxed struct behind a handle, in place: what is set through it is seen by all.
    /// </summary>
    public static ref T Unbox<T>(nint handle) where T : struct
    {
        if (handle == 0)
        {
            throw Missing(typeof(T));
        }
        object? target = GCHandle.FromIntPtr(handle).Target;
        if (target is not T)
        {
            throw WrongType(target, typeof(T));
        }
        return ref Unsafe.Unbox<T>(target);
    }

    private static T Cast<T>(object? target) where T : class =>
        target as T ?? throw WrongType(target, typeof(T));

    // Explicit tests, so that no path that data can reach relies on a hardware fault.
    private static NullReferenceException Missing(Type type) =>
        new($"The {type.Name} object has not been constructed: its handle is null.");

    private static InvalidCastException WrongType(object? target, Type type) =>
        new($"Unable to cast object of type '{target?.GetType()}' to type '{type}'.");

    private static long* Counter()
    {
        if (AppContext.GetData(CounterName) is nint known)
        {
            return (long*)known;
        }
        void* counter = NativeMemory.AllocZeroed(sizeof(long));
        AppDomain.CurrentDomain.SetData(CounterName, (nint)counter);
        return (long*)counter;
    }
}
