// Reads the arguments of an entry out of their wire forms.
using System.Runtime.CompilerServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// One method for each form. Everything lent is copied or, for a Python object that stays, pinned
/// by an adapter; nothing here keeps a pointer into Python's memory.
/// </summary>
internal static unsafe partial class Args
{
    // The top two bits of a DateTime word are its kind.
    private const int DateTimeKindShift = 62;
    private const long TicksMask = (1L << DateTimeKindShift) - 1;

    /// <summary>A string; null for None.</summary>
    public static string? String(PyStringArg* argument) => PyStrings.Decode(argument);

    /// <summary>A byte array of its own; null for None.</summary>
    public static byte[]? Bytes(PyBytesArg* argument) =>
        argument->Length < 0 ? null : Copy(argument);

    /// <summary>A struct argument, copied; None has no value and is refused.</summary>
    public static T Struct<T>(VariantArg* argument) where T : struct =>
        Handles.Unbox<T>(argument->Value);

    /// <summary>An interface argument; null for None, whose kind is not written.</summary>
    public static T? Interface<T>(VariantArg* argument) where T : class =>
        Handles.Optional<T>(argument->Value);

    /// <summary>A DateTime: ticks with the kind in the top two bits.</summary>
    public static DateTime DateTime(long* argument) => DateTime(*argument);

    /// <inheritdoc cref="DateTime(long*)"/>
    public static DateTime DateTime(long argument)
    {
        var kind = (DateTimeKind)((ulong)argument >> DateTimeKindShift);
        return new DateTime(argument & TicksMask, kind);
    }

    /// <summary>A DateTimeOffset: local ticks, then the offset in ticks.</summary>
    public static DateTimeOffset DateTimeOffset(long* argument) =>
        new(argument[0] & TicksMask, new TimeSpan(argument[1]));

    /// <summary>A TimeSpan in ticks.</summary>
    public static TimeSpan TimeSpan(long argument) => new(argument);

    /// <summary>A decimal: three words of mantissa, then the flags.</summary>
    public static decimal Decimal(uint* argument) => new(new ReadOnlySpan<int>(argument, 4));

    /// <summary>A Guid in its own memory order.</summary>
    public static Guid Guid(byte* argument) => new(new ReadOnlySpan<byte>(argument, 16));

    /// <summary>A version; null for None.</summary>
    public static Version? Version(PySysVersionArg* argument)
    {
        int* part = argument->Components;
        return argument->Count switch
        {
            < 0 => null,
            2 => new Version(part[0], part[1]),
            3 => new Version(part[0], part[1], part[2]),
            4 => new Version(part[0], part[1], part[2], part[3]),
            _ => throw new ArgumentException($"a version cannot have {argument->Count} parts"),
        };
    }

    /// <summary>A value of any type.</summary>
    public static object? Variant(VariantArg* argument) =>
        Variant((VariantKind)argument->Kind, argument->Value);

    private static object? Variant(VariantKind kind, nint value)
    {
        switch (kind)
        {
            case VariantKind.None:
                return null;
            case VariantKind.Object:
                return Handles.Target<object>(value);
            case VariantKind.Struct:
                // A copy, as boxing makes one: the wrapper's own value must not be shared.
                return RuntimeHelpers.GetObjectValue(Handles.Target<object>(value));
            case VariantKind.List:
                return new PyList(value);
            case VariantKind.Tuple:
                return new PySequence(value);
            case VariantKind.String:
                PyStringArg text;
                text.Length = -1;
                Check(PyApi.Read->String(value, &text));
                return PyStrings.Decode(&text);
            case VariantKind.Bytes:
                return CopyBuffer(value);
            default:
                return Scalar(kind, value);
        }
    }

    private static object Scalar(VariantKind kind, nint value)
    {
        uint* words = stackalloc uint[4];
        long* ticks = stackalloc long[2];
        double number;
        switch (kind)
        {
            case VariantKind.Bool:
                return (PyApi.Read->Bool(value) & 0xFF) != 0;
            case VariantKind.Int:
                return Integer(value);
            case VariantKind.Float:
                Check(PyApi.Read->Double(value, &number));
                return number;
            case VariantKind.Decimal:
                Check(PyApi.Read->Decimal(value, words));
                return Decimal(words);
            case VariantKind.DecimalTuple:
                Check(PyApi.Read->DecimalTuple(value, words));
                return Decimal(words);
            case VariantKind.DateTime:
                return Moment(PyApi.Read->VersDateTime(value, ticks), ticks);
            case VariantKind.Date:
                Check(PyApi.Read->VersDate(value, ticks));
                return DateTime(ticks);
            case VariantKind.Time:
                return Moment(PyApi.Read->VersTime(value, ticks), ticks);
            case VariantKind.TimeDelta:
                Check(PyApi.Read->DateTimeDelta(value, ticks));
                return TimeSpan(*ticks);
            case VariantKind.Guid:
                Check(PyApi.Read->Guid(value, (byte*)words));
                return Guid((byte*)words);
            default:
                throw new ArgumentException($"unknown kind of a value: {(int)kind}");
        }
    }

    // The narrowest of int, long and ulong that holds the Python int.
    private static object Integer(nint value)
    {
        ulong number;
        return PyApi.Read->VersLong(value, &number) switch
        {
            1 => (object)(int)number,
            2 => (long)number,
            3 => number,
            _ => throw Bridge.PythonError(),
        };
    }

    // Boxed one by one: the two types would else be converted to the one that takes both.
    private static object Moment(int form, long* ticks) => form switch
    {
        1 => (object)DateTime(ticks),
        2 => DateTimeOffset(ticks),
        _ => throw Bridge.PythonError(),
    };

    private static byte[] CopyBuffer(nint value)
    {
        byte* view = stackalloc byte[PyApi.Buffer->SizeOf()];
        PyBytesArg block = default;
        PyApi.Buffer->Create(view);
        int done = PyApi.Buffer->ReadView(value, view, &block);
        try
        {
            Check(done);
            return Copy(&block);
        }
        finally
        {
            if (block.Held != 0)
            {
                PyApi.Buffer->Release(view);
            }
        }
    }

    // Without the zeros that a new array begins with: blocks are large.
    private static byte[] Copy(PyBytesArg* block)
    {
        byte[] bytes = GC.AllocateUninitializedArray<byte>(block->Length);
        new ReadOnlySpan<byte>(block->Data, block->Length).CopyTo(bytes);
        return bytes;
    }

    private static void Check(int done)
    {
        if (done == 0)
        {
            throw Bridge.PythonError();
        }
    }
}
