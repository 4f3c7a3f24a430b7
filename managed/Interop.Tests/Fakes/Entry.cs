// Reaches entries as the native side does: by name, as function pointers.
using System.Reflection;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop.Tests.Fakes;

/// <summary>Entry points by class and method name.</summary>
internal static unsafe class Entry
{
    private const BindingFlags Static = BindingFlags.Static | BindingFlags.Public
        | BindingFlags.NonPublic | BindingFlags.DeclaredOnly;

    /// <summary>The address of an entry, looked for in the class and then in its bases.</summary>
    public static void* Address(string type, string method)
    {
        Type? owner = typeof(ExchangeHost).Assembly.GetType($"Kelmor.WrpGen.Interop.{type}");
        for (; owner is not null; owner = owner.BaseType)
        {
            MethodInfo[] found = [.. owner.GetMethods(Static).Where(m => m.Name == method
                && m.GetCustomAttribute<UnmanagedCallersOnlyAttribute>() is not null)];
            if (found.Length > 0)
            {
                RuntimeMethodHandle handle = Assert.Single(found).MethodHandle;
                RuntimeHelpers.PrepareMethod(handle);
                return (void*)handle.GetFunctionPointer();
            }
        }
        throw new MissingMethodException(type, method);
    }

    /// <summary>Calls an entry that takes and gives nothing.</summary>
    public static void Void(string type, string method) =>
        ((delegate* unmanaged<void>)Address(type, method))();

    /// <summary>Calls an entry that takes a handle and gives a number.</summary>
    public static int Int(string type, string method, nint self) =>
        ((delegate* unmanaged<nint, int>)Address(type, method))(self);
}
