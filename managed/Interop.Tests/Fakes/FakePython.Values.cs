// The callbacks that read and make single values.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop.Tests.Fakes;

internal static unsafe partial class FakePython
{
    // Larger than that of any interpreter, and filled to its end: memory of a size that managed
    // code believes to know would be overrun.
    private const int BufferSize = 4096;

    [UnmanagedCallersOnly]
    private static void XDecRef(nint pyObject) => Release(pyObject);

    [UnmanagedCallersOnly]
    private static void OnException(nint typeName, nint message)
    {
        Raised = (typeName == 0 ? null : (string)Take(typeName)!,
            message == 0 ? null : (string)Take(message)!);
        Error = new FakeError("RuntimeError", $"Proxy error({Raised?.Type}): {Raised?.Message}");
    }

    [UnmanagedCallersOnly]
    private static int CatchAndClear(nint* owner, PyStringArg* text)
    {
        if (Error is null)
        {
            return -1;
        }
        string all = $"{Error.Type}: {Error.Text}";
        Error = null;
        *owner = New(all);
        Lend(all, text, *owner);
        return 0;
    }

    // As the real one, which decodes strictly and has no handler for errors.
    [UnmanagedCallersOnly]
    private static nint CreateString(char* characters, int length)
    {
        string text = new(characters, 0, length);
        StringsMade++;
        if (text.EnumerateRunes().Any(rune => rune.Value == 0xFFFD) && !text.Contains('\uFFFD'))
        {
            return Fail("LookupError", "unknown error handler name ''", 0);
        }
        return New(text);
    }

    [UnmanagedCallersOnly]
    private static nint CreateU16(char* characters, int length) =>
        New(new string(characters, 0, length));

    [UnmanagedCallersOnly]
    private static nint CreateBytes(byte* data, int length) =>
        New(new ReadOnlySpan<byte>(data, length).ToArray());

    // An error that stands where a value should makes its reader fail.
    private static bool Unreadable(nint pyObject)
    {
        Error = Value(pyObject) as FakeError ?? Error;
        return Value(pyObject) is FakeError;
    }

    [UnmanagedCallersOnly]
    private static int ReadString(nint pyObject, PyStringArg* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        Lend((string)Value(pyObject), result, pyObject);
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadBool(nint pyObject) => (bool)Value(pyObject) ? 0x101 : 0x100;

    [UnmanagedCallersOnly]
    private static int ReadVersLong(nint pyObject, ulong* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        switch (Value(pyObject))
        {
            case int number:
                *result = unchecked((ulong)number);
                return 1;
            case long number:
                *result = unchecked((ulong)number);
                return 2;
            case ulong number:
                *result = number;
                return 3;
            default:
                return Fail("TypeError", "can't build integer value", 0);
        }
    }

    [UnmanagedCallersOnly]
    private static int ReadDouble(nint pyObject, double* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        *result = (double)Value(pyObject);
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadDecimal(nint pyObject, uint* result)
    {
        if (Value(pyObject) is not decimal number)
        {
            return Fail("OverflowError", "value too large for .Net decimal", 0);
        }
        decimal.GetBits(number).CopyTo(new Span<int>(result, 4));
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadDateTime(nint pyObject, long* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        if (Value(pyObject) is DateTimeOffset aware)
        {
            result[0] = aware.Ticks;
            result[1] = aware.Offset.Ticks;
            return 2;
        }
        result[0] = ((DateTime)Value(pyObject)).Ticks;
        return 1;
    }

    // Each of these reads a value of its own, which tells the slots apart.
    [UnmanagedCallersOnly]
    private static int ReadDecimalTuple(nint pyObject, uint* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        decimal.GetBits(9.09m).CopyTo(new Span<int>(result, 4));
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadDate(nint pyObject, long* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        *result = new DateTime(2011, 11, 11).Ticks;
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadTime(nint pyObject, long* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        *result = new TimeSpan(12, 12, 12).Ticks | (1L << 62);
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadTimeDelta(nint pyObject, long* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        *result = ((TimeSpan)Value(pyObject)).Ticks;
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadGuid(nint pyObject, byte* result)
    {
        if (Unreadable(pyObject))
        {
            return 0;
        }
        ((Guid)Value(pyObject)).TryWriteBytes(new Span<byte>(result, 16));
        return 1;
    }

    [UnmanagedCallersOnly]
    private static nint WriteTpo(nint handle, long token)
    {
        nint wrapper = 0;
        int known = Wrap(handle, token, &wrapper);
        return known == 1 ? wrapper : Fail("TypeError", "unknown wrapper type", 0);
    }

    [UnmanagedCallersOnly]
    private static int TryWriteTpo(nint handle, long token, nint* result) =>
        Wrap(handle, token, result);

    // As the real one: an unknown type costs the handle.
    private static int Wrap(nint handle, long token, nint* result)
    {
        object target = Handles.Target<object>(handle);
        Assert.Equal(target.GetType().TypeHandle.Value, (nint)token);
        if (target.GetType().Namespace?.StartsWith("Kelmor") != true)
        {
            Handles.Free(handle);
            return 0;
        }
        *result = New(new FakeWrapper(handle, target is ValueType));
        return 1;
    }

    [UnmanagedCallersOnly]
    private static nint WriteBool(int value) => New((value & 0xFF) != 0);

    [UnmanagedCallersOnly]
    private static nint WriteLong(int value) => New(value);

    [UnmanagedCallersOnly]
    private static nint WriteULong(uint value) => New((long)value);

    [UnmanagedCallersOnly]
    private static nint WriteLongLong(long value) => New(value);

    [UnmanagedCallersOnly]
    private static nint WriteULongLong(ulong value) => New(value);

    [UnmanagedCallersOnly]
    private static nint WriteDouble(double value) => New(value);

    // Clears the mantissa, as the real one does.
    [UnmanagedCallersOnly]
    private static nint WriteDecimal(uint* value)
    {
        nint made = New(new decimal(new ReadOnlySpan<int>(value, 4)));
        value[0] = value[1] = value[2] = 0;
        return made;
    }

    [UnmanagedCallersOnly]
    private static nint WriteDateTime(long* value) => New((value[0], value[1]));

    [UnmanagedCallersOnly]
    private static nint WriteDateTimeOffset(long* value) =>
        New(new DateTimeOffset(value[0], new TimeSpan(value[1])));

    [UnmanagedCallersOnly]
    private static nint WriteTimeDelta(long value) => New(new TimeSpan(value));

    [UnmanagedCallersOnly]
    private static nint WriteGuid(byte* value) => New(new Guid(new ReadOnlySpan<byte>(value, 16)));

    [UnmanagedCallersOnly]
    private static nint WriteChar(int value) => New(((char)value).ToString());

    [UnmanagedCallersOnly]
    private static int BufferSizeOf() => BufferSize;

    [UnmanagedCallersOnly]
    private static int CreateBuffer(void* view)
    {
        new Span<byte>(view, BufferSize).Clear();
        return 0;
    }

    // The view keeps the exporter alive and its memory in place until it is released.
    [UnmanagedCallersOnly]
    private static int ReadBuffer(nint pyObject, void* view, PyBytesArg* result)
    {
        byte[] bytes = (byte[])Value(pyObject);
        result->Held = 1;
        if (bytes is [0xBA, 0xD0])
        {
            return Fail("BufferError", "buffer is not contiguous", 0);
        }
        Retain(pyObject);
        *(nint*)view = pyObject;
        var pin = GCHandle.Alloc(bytes, GCHandleType.Pinned);
        ((nint*)view)[1] = GCHandle.ToIntPtr(pin);
        result->Length = bytes.Length;
        result->Data = (void*)pin.AddrOfPinnedObject();
        return 1;
    }

    [UnmanagedCallersOnly]
    private static void ReleaseBuffer(void* view)
    {
        nint* words = (nint*)view;
        BuffersReleased++;
        if (words[1] != 0)
        {
            GCHandle.FromIntPtr(words[1]).Free();
            Release(words[0]);
        }
    }

    /// <summary>How often the builder of strings was called.</summary>
    public static int StringsMade { get; set; }

    /// <summary>How many views were released.</summary>
    public static int BuffersReleased { get; set; }
}
