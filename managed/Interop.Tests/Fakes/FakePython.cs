// A Python made of callbacks: objects with a count of references, and an error that may be pending.
using System.Runtime.InteropServices;
using System.Text;

namespace Kelmor.WrpGen.Interop.Tests.Fakes;

/// <summary>A wrapper of a managed object, as it stands in a Python list.</summary>
internal sealed record FakeWrapper(nint Handle, bool IsStruct = false);

/// <summary>A Python error: its class and its text.</summary>
internal sealed record FakeError(string Type, string Text);

/// <summary>
/// Objects are blocks of native memory with the reference count in front; what they stand for is
/// kept beside them. An object whose count drops to zero is forgotten, so a late use fails.
/// </summary>
internal static unsafe partial class FakePython
{
    private static readonly Dictionary<nint, object> s_values = [];
    private static readonly Dictionary<nint, nint> s_texts = [];

    /// <summary>None; a value of its own, since null stands for no object.</summary>
    public static readonly nint None = New(typeof(void));

    /// <summary>The pending error.</summary>
    public static FakeError? Error { get; set; }

    /// <summary>What the last exception hand-over named.</summary>
    public static (string? Type, string? Message)? Raised { get; set; }

    /// <summary>Objects that are alive, None aside.</summary>
    public static int Alive => s_values.Count - 1;

    /// <summary>A new object, whose only reference is the caller's.</summary>
    public static nint New(object value)
    {
        nint address = (nint)NativeMemory.AllocZeroed(16);
        *(long*)address = 1;
        s_values[address] = value;
        return address;
    }

    /// <summary>A Python list of new objects.</summary>
    public static nint NewList(params object[] items) => New(new List<nint>(items.Select(New)));

    /// <summary>A Python tuple of new objects.</summary>
    public static nint NewTuple(params object[] items) => New(items.Select(New).ToArray());

    public static object Value(nint pyObject) => s_values[pyObject];

    public static bool IsAlive(nint pyObject) => s_values.ContainsKey(pyObject);

    public static long Refs(nint pyObject) => *(long*)pyObject;

    /// <summary>The values of a list or tuple.</summary>
    public static object[] Items(nint pyObject) => Value(pyObject) switch
    {
        List<nint> list => [.. list.Select(Value)],
        nint[] tuple => [.. tuple.Select(Value)],
        _ => throw new InvalidOperationException("no sequence"),
    };

    /// <summary>The value of a new reference, which is given back; None is null.</summary>
    public static object? Take(nint pyObject)
    {
        Assert.NotEqual(0, pyObject);
        object value = Value(pyObject);
        Release(pyObject);
        return pyObject == None ? null : value;
    }

    public static void Retain(nint pyObject) => ++*(long*)pyObject;

    public static void Release(nint pyObject)
    {
        if (pyObject == 0)
        {
            return;
        }
        Assert.True(IsAlive(pyObject), "released too often");
        if (--*(long*)pyObject > 0)
        {
            return;
        }
        object value = s_values[pyObject];
        s_values.Remove(pyObject);
        IEnumerable<nint> owned = value switch
        {
            List<nint> list => list,
            nint[] tuple => tuple,
            FakeIterator iterator => [iterator.Source],
            _ => [],
        };
        foreach (nint item in owned.ToArray())
        {
            Release(item);
        }
        // The block stays: a stray pointer shall find a count of zero and not reused memory.
    }

    /// <summary>Sets the pending error and gives the status of failure.</summary>
    public static int Fail(string type, string text = "", int status = -1)
    {
        Error = new FakeError(type, text);
        return status;
    }

    /// <summary>Fills the form that a str crosses in.</summary>
    public static void Lend(string text, PyStringArg* result, nint owner)
    {
        byte[] bytes;
        bool latin = text.All(c => c <= 0xFF);
        bool wide = text.Any(char.IsSurrogate);
        bytes = latin
            ? Encoding.Latin1.GetBytes(text)
            : wide ? Encoding.UTF32.GetBytes(text) : Encoding.Unicode.GetBytes(text);
        nint data = (nint)NativeMemory.Alloc((nuint)bytes.Length + 1);
        Marshal.Copy(bytes, 0, data, bytes.Length);
        s_texts[owner] = data;
        result->CharSize = latin ? 1 : wide ? 4 : 2;
        result->Length = bytes.Length / result->CharSize;
        result->Data = (void*)data;
    }

    /// <summary>A variant over an object, as the converter of any value makes it.</summary>
    public static VariantArg Variant(nint pyObject)
    {
        (VariantKind kind, nint value) = Value(pyObject) switch
        {
            Type => (VariantKind.None, pyObject),
            FakeWrapper { IsStruct: true } wrapper => (VariantKind.Struct, wrapper.Handle),
            FakeWrapper wrapper => (VariantKind.Object, wrapper.Handle),
            string => (VariantKind.String, pyObject),
            byte[] => (VariantKind.Bytes, pyObject),
            bool => (VariantKind.Bool, pyObject),
            int or long or ulong => (VariantKind.Int, pyObject),
            double => (VariantKind.Float, pyObject),
            decimal => (VariantKind.Decimal, pyObject),
            DateTime or DateTimeOffset => (VariantKind.DateTime, pyObject),
            TimeSpan => (VariantKind.TimeDelta, pyObject),
            Guid => (VariantKind.Guid, pyObject),
            List<nint> => (VariantKind.List, pyObject),
            nint[] => (VariantKind.Tuple, pyObject),
            var other => throw new InvalidOperationException($"no variant of {other}"),
        };
        return new VariantArg { Kind = (int)kind, Value = value };
    }
}

/// <summary>A Python iterator over a list or tuple, which it keeps alive.</summary>
internal sealed class FakeIterator(nint source)
{
    public nint Source { get; } = source;

    public int Next { get; set; }
}
