// The two callbacks that are called without a transition of the garbage collector, in machine code:
// a managed method must not stand behind such a call.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop.Tests.Fakes;

/// <summary>Native code for taking references to objects whose count is their first word.</summary>
internal static unsafe partial class NativeStubs
{
    private const int ReadWriteExecute = 7;
    private const int PrivateAnonymous = 0x22;

    /// <summary>test rdi, rdi; jz end; inc qword [rdi]; end: ret.</summary>
    public static nint IncRef() => Code([0x48, 0x85, 0xFF, 0x74, 0x03, 0x48, 0xFF, 0x07, 0xC3]);

    /// <summary>mov rax, value; ret.</summary>
    public static nint Return(nint value) =>
        Code([0x48, 0xB8, .. BitConverter.GetBytes((long)value), 0xC3]);

    private static nint Code(byte[] code)
    {
        void* memory = Map(null, 4096, ReadWriteExecute, PrivateAnonymous, -1, 0);
        Assert.NotEqual(-1, (nint)memory);
        code.CopyTo(new Span<byte>(memory, code.Length));
        return (nint)memory;
    }

    [DllImport("libc", EntryPoint = "mmap")]
    private static extern void* Map(
        void* address, nuint length, int protection, int flags, int file, nint offset);
}
